// quenlar net: the network interfaces, their totals and the rate of the traffic.
#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "netstat/interfaces.h"
#include "platform/event_loop.h"
#include "platform/message_boxes.h"

namespace quenlar {
namespace {

int ShowTable(Invocation& invocation, CIpHelper& helper, bool on_line) {
  const CInterfaces& interfaces = helper.Interfaces();
  invocation.Print(
      fmt::format("{:<6}{:>12}{:>12}{:>12}  {:<24}{}", "Index", "Received", "Sent", "Speed", "Address", "Description"));
  for (std::size_t i = 1; i <= interfaces.Count(); ++i) {
    const CInterface& row = *interfaces.Item(i);
    invocation.Print(fmt::format("{:<6}{:>12}{:>12}{:>12}  {:<24}{}", row.InterfaceIndex, row.OctetsReceived,
                                 row.OctetsSent, row.Speed, row.AdapterAddress, row.InterfaceDescription));
  }
  invocation.Print(fmt::format("{:<6}{:>12}{:>12}  {}", "Total", helper.BytesReceived(), helper.BytesSent(),
                               on_line ? "on line" : "off line"));
  return kExitDone;
}

// Until it is stopped, or nobody reads.
int Watch(Invocation& invocation, const Platform& platform, CIpHelper& helper) {
  TrafficMeter meter;
  bool stopped = false, read = true;
  invocation.system().OnStop([&stopped] { stopped = true; });
  const auto timer = platform.loop.MakeTimer(std::chrono::milliseconds(500), [&] {
    helper.Interfaces();
    read = invocation.Print(fmt::format("{} Kbps", meter.Tick(helper.BytesReceived())));
  });
  timer->SetEnabled(true);
  while (!stopped && read) platform.loop.Wait(std::chrono::seconds(1));
  return stopped ? kExitStopped : kExitDone;
}

}  // namespace

int Net(Invocation& invocation, bool watch) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return invocation.Fail(platform.status());
  const Platform& p = platform.value();
  CIpHelper helper(p.interfaces, p.boxes);
  return watch ? Watch(invocation, p, helper) : ShowTable(invocation, helper, p.interfaces.IsOnline());
}

}  // namespace quenlar
