// The operating system's network interfaces, one row each, and its on-line state.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quenlar {

// One row, field for field as the operating system's table (MIB_IFROW) has it. Systems without a field leave it 0.
struct InterfaceRow {
  std::string name;         // UTF-8
  std::string description;  // UTF-8
  std::array<std::uint8_t, 8> physical_address{};
  std::uint32_t physical_address_length = 0;  // bytes; may claim more than 8
  std::uint32_t index = 0, type = 0, mtu = 0, speed = 0;
  std::uint32_t admin_status = 0, oper_status = 0, last_change = 0;
  std::uint32_t in_octets = 0, in_unicast = 0, in_nonunicast = 0, in_discards = 0, in_errors = 0, in_unknown = 0;
  std::uint32_t out_octets = 0, out_unicast = 0, out_nonunicast = 0, out_discards = 0, out_errors = 0;
  std::uint32_t out_queue_length = 0;
};

enum class TableOutcome { kRead, kNotSupported, kFailed };

class InterfaceTable {
 public:
  virtual ~InterfaceTable() = default;
  // Replaces the contents of `rows` with the system's table, in the system's order. `rows` is empty unless the outcome
  // is kRead. kNotSupported: this system has no such table.
  [[nodiscard]] virtual TableOutcome Read(std::vector<InterfaceRow>& rows) = 0;
  // Whether the system reports a network connection of any kind.
  [[nodiscard]] virtual bool IsOnline() = 0;
};

}  // namespace quenlar
