// The network interfaces as the kernel lists them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/interface_table.h"
#include "platform/posix/descriptor.h"

namespace quenlar {

// Asks the kernel over a netlink socket that stays open: the table is read every few milliseconds.
class SysInterfaceTable : public InterfaceTable {
 public:
  SysInterfaceTable();

  // The rows come in the kernel's order, which begins with the loopback interface. A number is the low 32 bits of the
  // kernel's 64.
  [[nodiscard]] TableOutcome Read(std::vector<InterfaceRow>& rows) override;
  // True when an interface other than loopback is up and connected.
  [[nodiscard]] bool IsOnline() override;

 private:
  [[nodiscard]] bool Ask();
  [[nodiscard]] bool ReadAnswer(std::vector<InterfaceRow>& rows);
  [[nodiscard]] std::uint32_t SpeedOf(const std::string& name);

  Descriptor socket_;
  std::uint32_t sequence_ = 0;
  std::vector<char> buffer_;
  std::map<std::string, std::uint32_t> speeds_;  // in bits a second; kept, because asking for one is slow
};

}  // namespace quenlar
