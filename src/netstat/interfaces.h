// The object model over the operating system's table of network interfaces. Names of classes and properties are those
// that the program publishes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/interface_table.h"
#include "platform/message_boxes.h"

namespace quenlar {

// One row of the interface table. The system's unsigned counters are stored bit for bit in signed properties, so a
// large counter is negative.
struct CInterface {
  std::string InterfaceDescription;
  std::string AdapterAddress;  // "00-1A-..."
  std::int32_t AdminStatus = 0, InterfaceIndex = 0, DiscardedIncomingPackets = 0, IncomingErrors = 0;
  std::int32_t NonunicastPacketsReceived = 0, OctetsReceived = 0, UnicastPacketsReceived = 0;
  std::int32_t UnknownProtocolPackets = 0;
  std::optional<double> LastChange;  // days since 1899-12-30 (netstat/last_change.h); empty when it is not a date
  std::int32_t MaximumTransmissionUnit = 0, OperationalStatus = 0, DiscardedOutgoingPackets = 0, OutgoingErrors = 0;
  std::int32_t NonunicastPacketsSent = 0, OctetsSent = 0, OutputQueueLength = 0, UnicastPacketsSent = 0;
  std::int32_t Speed = 0, InterfaceType = 0;
  std::string InterfaceName;
};

// Returns the description of a property, such as "OctetsSent". Empty for "InterfaceDescription" and unknown names.
[[nodiscard]] const char* PropertyDescription(std::string_view property);

// The interfaces of one reading, in the system's order.
class CInterfaces {
 public:
  CInterface& Add(CInterface objInterface);
  // Positions count from 1. Null when there is no interface at this one. Valid until the next Add.
  [[nodiscard]] const CInterface* Item(std::size_t vntIndexKey) const;
  [[nodiscard]] std::size_t Count() const { return items_.size(); }

 private:
  std::vector<CInterface> items_;
};

// Reads the interface table and sums its traffic.
class CIpHelper {
 public:
  // Both references must outlive the object.
  CIpHelper(InterfaceTable& table, MessageBoxes& boxes) : table_(table), boxes_(boxes) {}

  // Reads the table and rebuilds the whole collection. On a system without such a table a message box says so at every
  // call, and pumps; otherwise the call does not pump. The result is empty when the table cannot be read.
  const CInterfaces& Interfaces();
  void SetInterfaces(CInterfaces interfaces) { interfaces_ = std::move(interfaces); }

  // The bytes received and sent, summed over all rows of the last reading. A row whose counter would make the sum
  // overflow is left out.
  [[nodiscard]] std::int32_t BytesReceived() const { return bytes_received_; }
  [[nodiscard]] std::int32_t BytesSent() const { return bytes_sent_; }

 private:
  InterfaceTable& table_;
  MessageBoxes& boxes_;
  CInterfaces interfaces_;
  std::vector<InterfaceRow> rows_;
  std::int32_t bytes_received_ = 0;
  std::int32_t bytes_sent_ = 0;
};

// The meter behind panel 4. It shows kilobytes received per half second. The panel labels them "Kbps", which they are
// not; users know the figure under that name. Kept: TrayTest.TheMeterShowsKilobytesPerHalfSecond.
class TrafficMeter {
 public:
  // Returns the new rate. tmrFlux calls it every half second with the sum of CIpHelper::BytesReceived. The first tick
  // gives 0, and a sum of 0 counts as "not measured yet".
  std::int32_t Tick(std::int32_t bytes_received);
  [[nodiscard]] std::int32_t rate() const { return rate_; }

 private:
  std::int32_t previous_ = 0;  // 0: none yet
  std::int32_t rate_ = 0;
};

// Returns the same row in the form of the object model.
[[nodiscard]] CInterface FromRow(const InterfaceRow& row);

}  // namespace quenlar
