#include "platform/win32/interface_table.h"

#include <algorithm>
#include <cstring>

#include "platform/win32/code_page.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

static_assert(sizeof(MIB_IFROW) == 860);

InterfaceRow Converted(const MIB_IFROW& from, const CodePage& code_page) {
  InterfaceRow row;
  row.name = win32::FromWide(std::wstring_view(from.wszName, wcsnlen(from.wszName, std::size(from.wszName))));
  const auto* description = reinterpret_cast<const char*>(from.bDescr);
  const std::size_t length = std::min<std::size_t>(from.dwDescrLen, std::size(from.bDescr));
  row.description = code_page.ToUtf8(std::string(description, strnlen(description, length)));
  std::copy(std::begin(from.bPhysAddr), std::end(from.bPhysAddr), row.physical_address.begin());
  row.physical_address_length = from.dwPhysAddrLen;
  row.index = from.dwIndex;
  row.type = from.dwType;
  row.mtu = from.dwMtu;
  row.speed = from.dwSpeed;
  row.admin_status = from.dwAdminStatus;
  row.oper_status = from.dwOperStatus;
  row.last_change = from.dwLastChange;
  row.in_octets = from.dwInOctets;
  row.in_unicast = from.dwInUcastPkts;
  row.in_nonunicast = from.dwInNUcastPkts;
  row.in_discards = from.dwInDiscards;
  row.in_errors = from.dwInErrors;
  row.in_unknown = from.dwInUnknownProtos;
  row.out_octets = from.dwOutOctets;
  row.out_unicast = from.dwOutUcastPkts;
  row.out_nonunicast = from.dwOutNUcastPkts;
  row.out_discards = from.dwOutDiscards;
  row.out_errors = from.dwOutErrors;
  row.out_queue_length = from.dwOutQLen;
  return row;
}

}  // namespace

TableOutcome Win32InterfaceTable::Read(std::vector<InterfaceRow>& rows) {
  rows.clear();
  DWORD size = 0;
  const DWORD asked = GetIfTable(nullptr, &size, FALSE);
  if (asked == ERROR_NOT_SUPPORTED) return TableOutcome::kNotSupported;
  // The buffer holds 32-bit numbers; what the allocator gives is aligned for them.
  buffer_.resize(std::max<std::size_t>(size, sizeof(MIB_IFTABLE)));
  auto* table = reinterpret_cast<MIB_IFTABLE*>(buffer_.data());
  if (GetIfTable(table, &size, FALSE) != NO_ERROR) return TableOutcome::kFailed;
  const Win32CodePage code_page;
  rows.reserve(table->dwNumEntries);
  for (DWORD i = 0; i < table->dwNumEntries; ++i) rows.push_back(Converted(table->table[i], code_page));
  return TableOutcome::kRead;
}

bool Win32InterfaceTable::IsOnline() {
  DWORD flags = 0;
  return ::IsNetworkAlive(&flags) != FALSE;
}

}  // namespace quenlar
