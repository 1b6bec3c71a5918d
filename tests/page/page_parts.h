// Short ways to hand parts of a page to the finder of addresses and to say what it finds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "page/address_finder.h"
#include "support/fake_idna.h"

namespace quenlar {

// A run of text in which "|" stands for a tag that does not end a word, and "^" for an element that is not shown.
class MarkedRun {
 public:
  explicit MarkedRun(std::string_view marked) {
    for (const char c : marked) {
      if (c == '|' || c == '^') {
        joints_.push_back({static_cast<std::uint32_t>(text_.size()), c == '^'});
      } else {
        text_ += c;
      }
    }
  }
  [[nodiscard]] TextRun run() const { return {.text = text_, .joints = joints_}; }

 private:
  std::string text_;
  std::vector<Joint> joints_;
};

// A finder that keeps what it needs.
struct FinderFixture {
  FakeIdna idna;
  AddressFinder finder{idna, {.decode_protected = true}};

  // "place address" each, in the order of the page.
  [[nodiscard]] std::vector<std::string> Found() const {
    std::vector<std::string> lines;
    for (const PageAddress& found : finder.Addresses()) {
      lines.push_back(std::string(PlaceName(found.place)) + ' ' + std::string(found.address));
    }
    return lines;
  }
};

// What a run of text holds, parted by blanks; protected addresses in brackets.
inline std::string InText(std::string_view marked) {
  FinderFixture fixture;
  const MarkedRun run(marked);
  fixture.finder.Text(run.run());
  std::string found;
  for (const PageAddress& address : fixture.finder.Addresses()) {
    const bool is_protected = address.place == AddressPlace::kProtected;
    found += found.empty() ? "" : " ";
    found += is_protected ? "[" + std::string(address.address) + "]" : std::string(address.address);
  }
  return found;
}

// What a part holds that `hand_over` hands to a finder: "place address" each.
template <typename HandOver>
std::vector<std::string> FoundIn(HandOver hand_over) {
  FinderFixture fixture;
  hand_over(fixture.finder);
  return fixture.Found();
}

}  // namespace quenlar
