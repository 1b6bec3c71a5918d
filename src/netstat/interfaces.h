// The object model over the operating system's interface table.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/interface_table.h"
#include "platform/message_boxes.h"

namespace quenlar {

// One row of the interface table. Unsigned counters of the system are stored bit for bit in signed properties.
struct CInterface {
  std::string InterfaceDescription;
  std::string AdapterAddress;  // "00-1A-..."
  std::int32_t AdminStatus = 0, InterfaceIndex = 0, DiscardedIncomingPackets = 0, IncomingErrors = 0;
  std::int32_t NonunicastPacketsReceived = 0, OctetsReceived = 0, UnicastPacketsReceived = 0;
  std::int32_t UnknownProtocolPackets = 0;
  std::optional<double> LastChange;  // a date as days since 1899-12-30; unset where the text is no date
  std::int32_t MaximumTransmissionUnit = 0, OperationalStatus = 0, DiscardedOutgoingPackets = 0, OutgoingErrors = 0;
  std::int32_t NonunicastPacketsSent = 0, OctetsSent = 0, OutputQueueLength = 0, UnicastPacketsSent = 0;
  std::int32_t Speed = 0, InterfaceType = 0;
  std::string InterfaceName;
};

// The description text of a property, by its name; empty for InterfaceDescription and unknown names.
[[nodiscard]] const char* PropertyDescription(std::string_view property);

class CInterfaces {
 public:
  CInterface& Add(CInterface objInterface);
  // 1-based. Empty when there is none at this position.
  [[nodiscard]] const CInterface* Item(std::size_t vntIndexKey) const;
  [[nodiscard]] std::size_t Count() const { return items_.size(); }

 private:
  std::vector<CInterface> items_;
};

class CIpHelper {
 public:
  CIpHelper(InterfaceTable& table, MessageBoxes& boxes) : table_(table), boxes_(boxes) {}

  // Rebuilds the whole collection from the operating system. Pumps only where the system has no such table (a message
  // box says so, on every read).
  const CInterfaces& Interfaces();
  void SetInterfaces(CInterfaces interfaces) { interfaces_ = std::move(interfaces); }

  // Sums over all rows of the last rebuild; an addition that would overflow is skipped for its row.
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
  // One tick of tmrFlux: the new rate.
  std::int32_t Tick(std::int32_t bytes_received);
  [[nodiscard]] std::int32_t rate() const { return rate_; }

 private:
  std::int32_t previous_ = 0;  // 0: none yet
  std::int32_t rate_ = 0;
};

// A row that differs from the operating system's only in form.
[[nodiscard]] CInterface FromRow(const InterfaceRow& row);

}  // namespace quenlar
