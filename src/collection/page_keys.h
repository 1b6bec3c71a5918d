// The numbers by which a collection finds its pages.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/text_hash.h"

namespace quenlar {

// A hash of a page's identity (Url::PageKey) in 64 bits. Each collection draws its own seeds, so that nobody who writes
// a page can make two pages meet.
class PageKeys {
 public:
  PageKeys() = default;
  // As NewSeed has made them, and the collection's table of facts keeps them.
  PageKeys(std::string_view first_seed, std::string_view second_seed);

  [[nodiscard]] std::int64_t Of(std::string_view text) const;
  // A random number in decimal digits.
  [[nodiscard]] static std::string NewSeed();

 private:
  TextHash first_, second_;
};

}  // namespace quenlar
