// The network interfaces and the on-line state as Windows has them.
#pragma once

#include "platform/interface_table.h"

namespace quenlar {

class Win32InterfaceTable final : public InterfaceTable {
 public:
  [[nodiscard]] TableOutcome Read(std::vector<InterfaceRow>& rows) override;
  [[nodiscard]] bool IsOnline() override;

 private:
  std::vector<unsigned char> buffer_;  // kept between the many reads
};

}  // namespace quenlar
