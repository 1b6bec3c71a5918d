#include "base/ascii.h"

#include <cstring>

namespace quenlar {

std::string Lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = ToLower(c);
  return result;
}

namespace {

inline bool SameEight(const char* a, const char* b) {
  std::uint64_t eight_a, eight_b;
  std::memcpy(&eight_a, a, 8);
  std::memcpy(&eight_b, b, 8);
  return eight_a == eight_b || LowerEight(eight_a) == LowerEight(eight_b);
}

}  // namespace

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  const std::size_t size = a.size();
  if (size != b.size()) return false;
  if (size < 8) {
    for (std::size_t i = 0; i < size; ++i) {
      if (ToLower(a[i]) != ToLower(b[i])) return false;
    }
    return true;
  }
  for (std::size_t i = 0; i + 8 < size; i += 8) {
    if (!SameEight(a.data() + i, b.data() + i)) return false;
  }
  return SameEight(a.data() + size - 8, b.data() + size - 8);  // the last eight overlap the ones before
}

bool EndsWithIgnoreCase(std::string_view text, std::string_view lower_suffix) {
  return text.size() >= lower_suffix.size() &&
         StartsWithIgnoreCase(text.substr(text.size() - lower_suffix.size()), lower_suffix);
}

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ReplaceAll(std::string_view text, std::string_view needle, std::string_view replacement) {
  std::string result;
  std::size_t from = 0;
  for (;;) {
    const std::size_t at = text.find(needle, from);
    result.append(text.substr(from, at == std::string_view::npos ? at : at - from));
    if (at == std::string_view::npos) return result;
    result.append(replacement);
    from = at + needle.size();
  }
}

std::vector<std::string_view> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  std::size_t from = 0;
  for (;;) {
    const std::size_t at = text.find(separator, from);
    if (at == std::string_view::npos) {
      pieces.push_back(text.substr(from));
      return pieces;
    }
    pieces.push_back(text.substr(from, at - from));
    from = at + separator.size();
  }
}

}  // namespace quenlar
