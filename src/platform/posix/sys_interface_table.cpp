#include "platform/posix/sys_interface_table.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/socket.h>

namespace quenlar {
namespace {

// Interface types and states as the table's rows number them.
enum RowType : std::uint32_t { kOther = 1, kEthernet = 6, kPpp = 23, kLoopback = 24, kTunnel = 131, kWireless = 71 };
enum RowState : std::uint32_t { kUp = 1, kDown = 2, kNonOperational = 0, kOperational = 5 };

std::uint32_t TypeOf(unsigned short hardware) {
  switch (hardware) {
    case ARPHRD_ETHER:
      return kEthernet;
    case ARPHRD_LOOPBACK:
      return kLoopback;
    case ARPHRD_PPP:
      return kPpp;
    case ARPHRD_TUNNEL:
    case ARPHRD_TUNNEL6:
    case ARPHRD_SIT:
      return kTunnel;
    case ARPHRD_IEEE80211:
      return kWireless;
    default:
      return kOther;
  }
}

void TakeStatistics(const rtnl_link_stats64& from, InterfaceRow& row) {
  const auto low = [](std::uint64_t number) { return static_cast<std::uint32_t>(number); };
  row.in_octets = low(from.rx_bytes);
  row.in_nonunicast = low(from.multicast);
  row.in_unicast = low(from.rx_packets - from.multicast);
  row.in_discards = low(from.rx_dropped);
  row.in_errors = low(from.rx_errors);
  row.out_octets = low(from.tx_bytes);
  row.out_unicast = low(from.tx_packets);
  row.out_discards = low(from.tx_dropped);
  row.out_errors = low(from.tx_errors);
}

void TakeAttribute(const rtattr& attribute, InterfaceRow& row) {
  const char* data = static_cast<const char*>(RTA_DATA(&attribute));
  const std::size_t size = RTA_PAYLOAD(&attribute);
  switch (attribute.rta_type) {
    case IFLA_IFNAME:
      row.name.assign(data, strnlen(data, size));
      row.description = row.name;
      break;
    case IFLA_ADDRESS:
      row.physical_address_length = static_cast<std::uint32_t>(std::min(size, row.physical_address.size()));
      std::memcpy(row.physical_address.data(), data, row.physical_address_length);
      break;
    case IFLA_MTU:
      std::memcpy(&row.mtu, data, std::min(size, sizeof row.mtu));
      break;
    case IFLA_TXQLEN:
      std::memcpy(&row.out_queue_length, data, std::min(size, sizeof row.out_queue_length));
      break;
    case IFLA_STATS64: {
      rtnl_link_stats64 statistics{};
      std::memcpy(&statistics, data, std::min(size, sizeof statistics));
      TakeStatistics(statistics, row);
      break;
    }
    default:
      break;
  }
}

InterfaceRow RowOf(const nlmsghdr& message) {
  const auto& link = *static_cast<const ifinfomsg*>(NLMSG_DATA(&message));
  InterfaceRow row;
  row.index = static_cast<std::uint32_t>(link.ifi_index);
  row.type = TypeOf(link.ifi_type);
  row.admin_status = (link.ifi_flags & IFF_UP) != 0 ? kUp : kDown;
  row.oper_status =
      (link.ifi_flags & IFF_UP) != 0 && (link.ifi_flags & IFF_RUNNING) != 0 ? kOperational : kNonOperational;
  auto left = static_cast<int>(IFLA_PAYLOAD(&message));
  for (const rtattr* attribute = IFLA_RTA(&link); RTA_OK(attribute, left); attribute = RTA_NEXT(attribute, left)) {
    TakeAttribute(*attribute, row);
  }
  return row;
}

}  // namespace

SysInterfaceTable::SysInterfaceTable()
    : socket_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)), buffer_(64 * 1024) {
  const timeval patience{.tv_sec = 1, .tv_usec = 0};  // the kernel answers at once, or never
  if (socket_.valid()) setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
}

TableOutcome SysInterfaceTable::Read(std::vector<InterfaceRow>& rows) {
  rows.clear();
  if (!socket_.valid()) return TableOutcome::kNotSupported;
  if (!Ask() || !ReadAnswer(rows)) {
    rows.clear();
    return TableOutcome::kFailed;
  }
  for (InterfaceRow& row : rows) row.speed = SpeedOf(row.name);
  return TableOutcome::kRead;
}

bool SysInterfaceTable::IsOnline() {
  std::vector<InterfaceRow> rows;
  return Read(rows) == TableOutcome::kRead && std::any_of(rows.begin(), rows.end(), [](const InterfaceRow& row) {
           return row.type != kLoopback && row.oper_status == kOperational;
         });
}

bool SysInterfaceTable::Ask() {
  struct {
    nlmsghdr header;
    ifinfomsg body;
  } request{};
  request.header.nlmsg_len = NLMSG_LENGTH(sizeof request.body);
  request.header.nlmsg_type = RTM_GETLINK;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  request.header.nlmsg_seq = ++sequence_;
  return send(socket_.get(), &request, request.header.nlmsg_len, 0) > 0;
}

bool SysInterfaceTable::ReadAnswer(std::vector<InterfaceRow>& rows) {
  while (true) {
    const ssize_t size = recv(socket_.get(), buffer_.data(), buffer_.size(), 0);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return false;
    auto left = static_cast<unsigned>(size);
    const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
    for (; NLMSG_OK(message, left); message = NLMSG_NEXT(message, left)) {
      if (message->nlmsg_seq != sequence_) continue;  // of an answer that was given up
      if (message->nlmsg_type == NLMSG_DONE) return true;
      if (message->nlmsg_type == NLMSG_ERROR) return false;
      if (message->nlmsg_type == RTM_NEWLINK) rows.push_back(RowOf(*message));
    }
  }
}

std::uint32_t SysInterfaceTable::SpeedOf(const std::string& name) {
  const auto [speed, is_new] = speeds_.try_emplace(name, 0);
  if (is_new) {
    std::ifstream file("/sys/class/net/" + name + "/speed");
    std::int64_t megabits = 0;
    if (file >> megabits && megabits > 0) {
      speed->second = static_cast<std::uint32_t>(std::min<std::int64_t>(megabits * 1'000'000, UINT32_MAX));
    }
  }
  return speed->second;
}

}  // namespace quenlar
