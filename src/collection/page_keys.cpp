#include "collection/page_keys.h"

#include <charconv>
#include <random>

namespace quenlar {
namespace {

TextHash HashWithSeed(std::string_view number) {
  std::uint64_t seed = 0;
  std::from_chars(number.data(), number.data() + number.size(), seed);
  return TextHash(seed);
}

}  // namespace

PageKeys::PageKeys(std::string_view first_seed, std::string_view second_seed)
    : first_(HashWithSeed(first_seed)), second_(HashWithSeed(second_seed)) {}

std::int64_t PageKeys::Of(std::string_view text) const {
  return static_cast<std::int64_t>(std::uint64_t{first_.Exact(text)} << 32 | second_.Exact(text));
}

std::string PageKeys::NewSeed() {
  std::random_device source;
  return std::to_string(static_cast<std::uint64_t>(source()) << 32 | source());
}

}  // namespace quenlar
