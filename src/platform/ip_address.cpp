#include "platform/ip_address.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>

namespace quenlar {
namespace {

constexpr std::size_t kGroups = 8;  // of an IPv6 address, two bytes each

std::optional<IpAddress> ParseV4(std::string_view text) {
  IpAddress address;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::string_view part = text.substr(0, text.find('.'));
    unsigned number = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    if (error != std::errc() || end != part.data() + part.size() || number > 255 || part.size() > 3) return {};
    address.bytes[i] = static_cast<std::uint8_t>(number);
    text.remove_prefix(part.size());
    if (i == 3) break;
    if (text.empty()) return {};
    text.remove_prefix(1);
  }
  return text.empty() ? std::optional(address) : std::nullopt;
}

// Adds the groups of "a:b:c"; false when they are none or too many. At the end of an address the last group may be an
// IPv4 address.
bool AddGroups(std::string_view text, bool at_end, std::array<std::uint8_t, 16>& bytes, std::size_t& size) {
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find(':'));
    const bool last = part.size() == text.size();
    if (last && at_end && part.find('.') != part.npos) {
      const auto tail = ParseV4(part);
      if (!tail || size + 4 > bytes.size()) return false;
      std::copy_n(tail->bytes.begin(), 4, bytes.begin() + static_cast<std::ptrdiff_t>(size));
      size += 4;
      return true;
    }
    unsigned number = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number, 16);
    if (error != std::errc() || end != part.data() + part.size() || part.size() > 4) return false;
    if (size + 2 > bytes.size()) return false;
    bytes[size++] = static_cast<std::uint8_t>(number >> 8);
    bytes[size++] = static_cast<std::uint8_t>(number & 0xFF);
    if (last) return true;
    text.remove_prefix(part.size() + 1);
    if (text.empty()) return false;
  }
  return true;
}

std::optional<IpAddress> ParseV6(std::string_view text) {
  IpAddress address{.v6 = true};
  std::size_t size = 0;
  const std::size_t gap = text.find("::");
  if (gap == text.npos) {
    return AddGroups(text, true, address.bytes, size) && size == 16 ? std::optional(address) : std::nullopt;
  }
  std::array<std::uint8_t, 16> behind = {};
  std::size_t behind_size = 0;
  if (!AddGroups(text.substr(0, gap), false, address.bytes, size)) return {};
  if (!AddGroups(text.substr(gap + 2), true, behind, behind_size) || size + behind_size > 14) return {};
  std::copy_n(behind.begin(), behind_size, address.bytes.end() - static_cast<std::ptrdiff_t>(behind_size));
  return address;
}

std::string TextOfV6(const std::array<std::uint8_t, 16>& bytes) {
  std::array<unsigned, kGroups> groups = {};
  for (std::size_t i = 0; i < kGroups; ++i) groups[i] = bytes[2 * i] * 256u + bytes[2 * i + 1];
  std::size_t gap = kGroups, gap_size = 1;  // the first longest run of at least two zeros
  for (std::size_t i = 0; i < kGroups; ++i) {
    std::size_t end = i;
    while (end < kGroups && groups[end] == 0) ++end;
    if (end - i > gap_size) {
      gap = i;
      gap_size = end - i;
    }
  }
  std::string text;
  for (std::size_t i = 0; i < kGroups; ++i) {
    if (i == gap) {
      text += "::";
      i += gap_size - 1;
      continue;
    }
    if (!text.empty() && text.back() != ':') text += ':';
    char hex[4];
    text.append(hex, std::to_chars(hex, std::end(hex), groups[i], 16).ptr);
  }
  return text;
}

struct Block {
  std::string_view prefix;
  int bits;
  AddressKind kind;
};

using enum AddressKind;

// In each list the first block that holds the address decides.
constexpr Block kBlocksV4[] = {
    {"0.0.0.0", 8, kReserved},     {"10.0.0.0", 8, kPrivate},       {"100.64.0.0", 10, kPrivate},
    {"127.0.0.0", 8, kLoopback},   {"169.254.0.0", 16, kLinkLocal}, {"172.16.0.0", 12, kPrivate},
    {"192.0.0.9", 32, kPublic},    {"192.0.0.10", 32, kPublic},     {"192.0.0.0", 24, kReserved},
    {"192.0.2.0", 24, kReserved},  {"192.88.99.0", 24, kReserved},  {"192.168.0.0", 16, kPrivate},
    {"198.18.0.0", 15, kReserved}, {"198.51.100.0", 24, kReserved}, {"203.0.113.0", 24, kReserved},
    {"224.0.0.0", 4, kReserved},   {"240.0.0.0", 4, kReserved},
};
constexpr Block kBlocksV6[] = {
    {"::1", 128, kLoopback},       {"64:ff9b:1::", 48, kPrivate}, {"2001:1::1", 128, kPublic},
    {"2001:1::2", 128, kPublic},   {"2001:1::3", 128, kPublic},   {"2001:3::", 32, kPublic},
    {"2001:4:112::", 48, kPublic}, {"2001:20::", 28, kPublic},    {"2001:30::", 28, kPublic},
    {"2001::", 23, kReserved},     {"2001:db8::", 32, kReserved}, {"3fff::", 20, kReserved},
    {"2000::", 3, kPublic},        {"fc00::", 7, kPrivate},       {"fe80::", 10, kLinkLocal},
    {"fec0::", 10, kPrivate},
};

bool Holds(const Block& block, const IpAddress& address) {
  const auto prefix = ParseIpAddress(block.prefix);
  const auto whole = static_cast<std::size_t>(block.bits / 8);
  if (!std::equal(prefix->bytes.begin(), prefix->bytes.begin() + static_cast<std::ptrdiff_t>(whole),
                  address.bytes.begin())) {
    return false;
  }
  const int rest = block.bits % 8;
  return rest == 0 || (prefix->bytes[whole] >> (8 - rest)) == (address.bytes[whole] >> (8 - rest));
}

IpAddress EmbeddedV4(const IpAddress& address, std::ptrdiff_t from) {
  IpAddress inner;
  std::copy_n(address.bytes.begin() + from, 4, inner.bytes.begin());
  return inner;
}

}  // namespace

std::string IpAddress::Text() const {
  if (v6) return TextOfV6(bytes);
  std::string text;
  for (std::size_t i = 0; i < 4; ++i) text += (i == 0 ? "" : ".") + std::to_string(bytes[i]);
  return text;
}

std::optional<IpAddress> ParseIpAddress(std::string_view text) {
  if (text.starts_with('[') && text.ends_with(']')) return ParseV6(text.substr(1, text.size() - 2));
  return text.find(':') == text.npos ? ParseV4(text) : ParseV6(text);
}

AddressKind KindOf(const IpAddress& address) {
  if (!address.v6) {
    const auto* const block =
        std::find_if(std::begin(kBlocksV4), std::end(kBlocksV4), [&](const Block& b) { return Holds(b, address); });
    return block == std::end(kBlocksV4) ? kPublic : block->kind;
  }
  static constexpr Block kMapped{"::ffff:0:0", 96, kReserved}, kNat64{"64:ff9b::", 96, kReserved},
      kSixToFour{"2002::", 16, kReserved};
  if (Holds(kMapped, address) || Holds(kNat64, address)) return KindOf(EmbeddedV4(address, 12));
  if (Holds(kSixToFour, address)) return KindOf(EmbeddedV4(address, 2));
  const auto* const block =
      std::find_if(std::begin(kBlocksV6), std::end(kBlocksV6), [&](const Block& b) { return Holds(b, address); });
  return block == std::end(kBlocksV6) ? kReserved : block->kind;  // only 2000::/3 is in use
}

bool IsLoopbackName(std::string_view host) {
  if (host.ends_with('.')) host.remove_suffix(1);
  return host == "localhost" || host.ends_with(".localhost");
}

}  // namespace quenlar
