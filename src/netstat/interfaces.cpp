#include "netstat/interfaces.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/ascii.h"
#include "base/product.h"
#include "netstat/last_change.h"

namespace quenlar {
namespace {

struct PropertyRow {
  const char* name;
  const char* description;
};

// `InterfaceDescription` has no text of its own. Blanks at the end belong to the texts.
constexpr PropertyRow kProperties[] = {
    {"AdapterAddress", "Specifies the physical address of the adapter for this interface."},
    {"AdminStatus", "Specifies the interface is administratively enabled or disabled. "},
    {"InterfaceIndex", "Specifies the index that identifies the interface."},
    {"DiscardedIncomingPackets",
     "Specifies the number of incoming packets that were discarded even though they did not have errors."},
    {"IncomingErrors", "Specifies the number of incoming packets that were discarded because of errors."},
    {"NonunicastPacketsReceived",
     "Specifies the number of non-unicast packets received through this interface. Broadcast and "
     "multicast packets are included."},
    {"OctetsReceived", "Specifies the number of octets of data received through this interface."},
    {"UnicastPacketsReceived", "Specifies the number of unicast packets received through this interface."},
    {"UnknownProtocolPackets",
     "Specifies the number of incoming packets that were discarded because the protocol was unknown."},
    {"LastChange", "Specifies the last time the operational status changed."},
    {"MaximumTransmissionUnit", "Specifies the Maximum Transmission Unit (MTU)."},
    {"OperationalStatus", "Specifies the operational status of the interface."},
    {"DiscardedOutgoingPackets",
     "Specifies the number of outgoing packets that were discarded even though they did not have errors."},
    {"OutgoingErrors", "Specifies the number of outgoing packets that were discarded because of errors."},
    {"NonunicastPacketsSent",
     "Specifies the number of non-unicast packets sent through this interface. Broadcast and "
     "multicast packets are included."},
    {"OctetsSent", "Specifies the number of octets of data sent through this interface."},
    {"OutputQueueLength", "Specifies the output queue length."},
    {"UnicastPacketsSent", "Specifies the number of unicast packets sent through this interface."},
    {"Speed", "Specifies the speed of the interface in bits per second."},
    {"InterfaceType", "Specifies the type of interface."},
    {"InterfaceName", "String that contains the name of the interface. "},
};

std::int32_t Signed(std::uint32_t counter) { return static_cast<std::int32_t>(counter); }

std::string AddressText(const InterfaceRow& row) {
  const std::size_t length = std::min<std::size_t>(row.physical_address_length, row.physical_address.size());
  std::string text;
  for (std::size_t i = 0; i < length; ++i) {
    if (i != 0) text += '-';
    text += kHexDigits[row.physical_address[i] >> 4];
    text += kHexDigits[row.physical_address[i] & 15];
  }
  return text;
}

bool FitsInt32(std::int64_t value) {
  return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
}

// Adds a row to a total. When the sum does not fit, the total stays as it was and the row does not count.
void AddUnlessTooLarge(std::int32_t& total, std::int32_t octets) {
  const std::int64_t sum = std::int64_t{total} + octets;
  if (FitsInt32(sum)) total = static_cast<std::int32_t>(sum);
}

}  // namespace

const char* PropertyDescription(std::string_view property) {
  for (const PropertyRow& row : kProperties) {
    if (property == row.name) return row.description;
  }
  return "";
}

CInterface FromRow(const InterfaceRow& row) {
  CInterface result;
  result.InterfaceDescription = row.description;
  result.AdapterAddress = AddressText(row);
  result.AdminStatus = Signed(row.admin_status);
  result.InterfaceIndex = Signed(row.index);
  result.DiscardedIncomingPackets = Signed(row.in_discards);
  result.IncomingErrors = Signed(row.in_errors);
  result.NonunicastPacketsReceived = Signed(row.in_nonunicast);
  result.OctetsReceived = Signed(row.in_octets);
  result.UnicastPacketsReceived = Signed(row.in_unicast);
  result.UnknownProtocolPackets = Signed(row.in_unknown);
  result.LastChange = LastChangeDate(row.last_change);
  result.MaximumTransmissionUnit = Signed(row.mtu);
  result.OperationalStatus = Signed(row.oper_status);
  result.DiscardedOutgoingPackets = Signed(row.out_discards);
  result.OutgoingErrors = Signed(row.out_errors);
  result.NonunicastPacketsSent = Signed(row.out_nonunicast);
  result.OctetsSent = Signed(row.out_octets);
  result.OutputQueueLength = Signed(row.out_queue_length);
  result.UnicastPacketsSent = Signed(row.out_unicast);
  result.Speed = Signed(row.speed);
  result.InterfaceType = Signed(row.type);
  result.InterfaceName = row.name;
  return result;
}

CInterface& CInterfaces::Add(CInterface objInterface) { return items_.emplace_back(std::move(objInterface)); }

const CInterface* CInterfaces::Item(std::size_t vntIndexKey) const {
  return vntIndexKey >= 1 && vntIndexKey <= items_.size() ? &items_[vntIndexKey - 1] : nullptr;
}

const CInterfaces& CIpHelper::Interfaces() {
  bytes_received_ = 0;
  bytes_sent_ = 0;
  interfaces_ = CInterfaces();
  if (table_.Read(rows_) == TableOutcome::kNotSupported) {
    boxes_.Show("IP Helper is not supported by this system !", kProductCaption, BoxIcon::kStop, BoxButtons::kOk);
    return interfaces_;
  }
  for (const InterfaceRow& row : rows_) {
    const CInterface& added = interfaces_.Add(FromRow(row));
    AddUnlessTooLarge(bytes_received_, added.OctetsReceived);
    AddUnlessTooLarge(bytes_sent_, added.OctetsSent);
  }
  return interfaces_;
}

std::int32_t TrafficMeter::Tick(std::int32_t bytes_received) {
  if (previous_ == 0) previous_ = bytes_received;
  // Computed in 64 bits, because the difference does not fit into 32 when a counter wraps. That tick shows a negative
  // rate.
  rate_ = static_cast<std::int32_t>((std::int64_t{bytes_received} - previous_) / 128 / 8);
  previous_ = bytes_received;
  return rate_;
}

}  // namespace quenlar
