// The network interfaces as the kernel lists them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/interface_table.h"
#include "platform/posix/descriptor.h"

namespace quenlar {

// Asks the kernel over a netlink socket that stays open: the table is read every few milliseconds.
class SysInterfaceTable : public InterfaceTable {
 public:
  SysInterfaceTable();

  // In the kernel's order, which begins with the loopback interface. Numbers are the low 32 bits of the kernel's.
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
  std::map<std::string, std::uint32_t> speeds_;  // bits a second; asked for once, since asking is slow
};

}  // namespace quenlar
