// The finder of addresses: what it finds is an address by the letter of the pattern, and is found again when it stands
// alone. The first byte says which part of a page the others are, the second one where tags stand in it.
#include <algorithm>
#include <set>

#include "base/ascii.h"
#include "fuzz/target.h"
#include "page/address_finder.h"
#include "page/site.h"
#include "support/fake_idna.h"

using namespace quenlar;

namespace {

constexpr std::string_view kLocalSigns = ".!#$%&'*+/=?^_`{|}~-";

bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

bool IsLocalPart(std::string_view local) {
  return !local.empty() && local.size() <= 64 && local.front() != '.' && local.back() != '.' &&
         local.find("..") == local.npos && std::all_of(local.begin(), local.end(), [](char c) {
           return IsLetterOrDigit(c) || kLocalSigns.find(c) != kLocalSigns.npos;
         });
}

bool IsDomain(std::string_view domain) {
  const auto labels = Split(domain, ".");
  return labels.size() > 1 && IsTopLevelDomain(labels.back()) &&
         std::all_of(labels.begin(), labels.end(), [](std::string_view label) {
           return !label.empty() && label.size() <= 63 && label.front() != '-' && label.back() != '-' &&
                  std::all_of(label.begin(), label.end(),
                              [](char c) { return (IsLetterOrDigit(c) && ToLower(c) == c) || c == '-'; });
         });
}

void CheckAddress(std::string_view address) {
  const std::size_t sign = address.find('@');
  FUZZ_CHECK(sign != address.npos && address.size() <= 254);
  FUZZ_CHECK(IsLocalPart(address.substr(0, sign)));
  FUZZ_CHECK(IsDomain(address.substr(sign + 1)));
  const FakeIdna idna;
  AddressFinder again(idna, {});
  const std::string alone = ' ' + std::string(address) + ' ';
  again.Text({.text = alone});
  const auto found = again.Addresses();
  FUZZ_CHECK(found.size() == 1 && found.front().address == address && found.front().written == address);
}

std::vector<Joint> MakeJoints(std::uint8_t choice, std::size_t size) {
  std::vector<Joint> joints;
  for (std::size_t at = choice % 16; choice != 0 && at < size; at += 1 + choice / 16) {
    joints.push_back({static_cast<std::uint32_t>(at), at % 5 == 0});
  }
  return joints;
}

}  // namespace

QUENLAR_FUZZ_TARGET(addresses) {
  fuzz::Feed feed(bytes);
  const std::uint8_t part = feed.Byte();
  const std::vector<Joint> joints = MakeJoints(feed.Byte(), feed.Rest().size());
  const std::string_view text = feed.Rest();
  const FakeIdna idna;
  AddressFinder finder(idna, {.decode_protected = true});
  switch (part % 7) {
    case 0:
      finder.Script(text);
      break;
    case 1:
      finder.Mailto("mailto:" + std::string(text));
      break;
    case 2:
      finder.Attribute(text);
      break;
    case 3:
      finder.CfEmail(text);
      break;
    case 4:
      finder.Comment(text);
      break;
    default:
      finder.Text({.text = text, .joints = joints, .reversed = part % 7 == 5});
  }
  std::set<std::pair<std::string, AddressPlace>> known;
  std::size_t protected_ones = 0;
  for (const PageAddress& found : finder.Addresses()) {
    CheckAddress(found.address);
    FUZZ_CHECK(known.emplace(Lower(found.address), found.place).second);
    FUZZ_CHECK(!found.written.empty());
    protected_ones += found.place == AddressPlace::kProtected ? 1 : 0;
  }
  FUZZ_CHECK(finder.ProtectedCount() == protected_ones);
}
