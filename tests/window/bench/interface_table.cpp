// An interface table that costs nothing, in the place of the system's. Linked into the program that bench/window.sh
// measures beside the real one, to tell what the system's table takes from what the program takes.
#include "platform/win32/interface_table.h"

namespace quenlar {

TableOutcome Win32InterfaceTable::Read(std::vector<InterfaceRow>& rows) {
  rows.resize(4);
  for (InterfaceRow& row : rows) ++row.in_octets;
  return TableOutcome::kRead;
}

bool Win32InterfaceTable::IsOnline() { return true; }

}  // namespace quenlar
