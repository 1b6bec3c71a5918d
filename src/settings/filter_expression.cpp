#include "settings/filter_expression.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iterator>
#include <locale>

#include <boost/regex.hpp>

#include "base/ascii.h"

namespace quenlar {
namespace {

using Regex = boost::basic_regex<char, boost::cpp_regex_traits<char>>;

constexpr std::int64_t kFewestSteps = 200'000;

// The engine's own limit of steps grows with the square of the pattern's length. A long list of words with one bad word
// in it would take minutes. So the text is read through an iterator that counts the steps.
struct StepLimit {};

class CountingIterator {
 public:
  using iterator_category = std::random_access_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator() = default;
  CountingIterator(const char* at, std::int64_t* steps_left) : at_(at), steps_left_(steps_left) {}

  // Throws only once, because the engine may read again while it cleans up.
  reference operator*() const {
    if (--*steps_left_ == 0) throw StepLimit();
    return *at_;
  }
  pointer operator->() const { return &**this; }
  reference operator[](difference_type n) const { return *(*this + n); }
  CountingIterator& operator++() { return ++at_, *this; }
  CountingIterator& operator--() { return --at_, *this; }
  CountingIterator operator++(int) { return {at_++, steps_left_}; }
  CountingIterator operator--(int) { return {at_--, steps_left_}; }
  CountingIterator& operator+=(difference_type n) { return at_ += n, *this; }
  CountingIterator& operator-=(difference_type n) { return at_ -= n, *this; }
  friend CountingIterator operator+(CountingIterator a, difference_type n) { return a += n; }
  friend CountingIterator operator+(difference_type n, CountingIterator a) { return a += n; }
  friend CountingIterator operator-(CountingIterator a, difference_type n) { return a -= n; }
  friend difference_type operator-(CountingIterator a, CountingIterator b) { return a.at_ - b.at_; }
  friend bool operator==(CountingIterator a, CountingIterator b) { return a.at_ == b.at_; }
  friend auto operator<=>(CountingIterator a, CountingIterator b) { return a.at_ <=> b.at_; }

 private:
  const char* at_ = nullptr;
  std::int64_t* steps_left_ = nullptr;
};

// Whether the pattern may refer to its own groups, which then have to be remembered.
bool UsesGroups(std::string_view pattern) {
  if (pattern.find("(?") != std::string_view::npos) return true;
  for (std::size_t i = 0; i + 1 < pattern.size(); ++i) {
    if (pattern[i] != '\\') continue;
    const char next = pattern[++i];
    if (IsDigit(next) || next == 'g' || next == 'k') return true;
  }
  return false;
}

// The engine's first sentence, in lower case and without its full stop.
std::string Reason(const std::exception& error) {
  std::string text = error.what();
  text = text.substr(0, text.find(".  "));
  if (!text.empty()) text[0] = ToLower(text[0]);
  return text;
}

}  // namespace

struct FilterExpression::Compiled {
  Regex regex;
  std::int64_t length;
};

FilterExpression::FilterExpression(std::unique_ptr<Compiled> compiled) : compiled_(std::move(compiled)) {}
FilterExpression::FilterExpression(FilterExpression&&) noexcept = default;
FilterExpression& FilterExpression::operator=(FilterExpression&&) noexcept = default;
FilterExpression::~FilterExpression() = default;

Result<FilterExpression> FilterExpression::Compile(const std::string& pattern) {
  try {
    auto compiled = std::make_unique<Compiled>();
    auto flags = boost::regex_constants::perl | boost::regex_constants::icase;
    if (!UsesGroups(pattern)) flags |= boost::regex_constants::nosubs;
    compiled->regex.imbue(std::locale::classic());
    compiled->regex.assign(pattern, flags);
    compiled->length = static_cast<std::int64_t>(pattern.size());
    return FilterExpression(std::move(compiled));
  } catch (const std::bad_alloc&) {
    throw;  // no fault of the pattern
  } catch (const std::exception& error) {
    return Status(StatusKind::kFormat, Reason(error));
  }
}

FilterAnswer FilterExpression::Find(std::string_view text) const {
  const auto length = static_cast<std::int64_t>(text.size()) + 1;
  std::int64_t steps_left = kFewestSteps + compiled_->length * length;
  try {
    const CountingIterator begin(text.data(), &steps_left), end(text.data() + text.size(), &steps_left);
    boost::match_results<CountingIterator> match;
    const auto flags = boost::regex_constants::match_default | boost::regex_constants::match_single_line;
    return boost::regex_search(begin, end, match, compiled_->regex, flags) ? FilterAnswer::kMatch
                                                                           : FilterAnswer::kNoMatch;
  } catch (const StepLimit&) {
    return FilterAnswer::kTooManySteps;
  } catch (const std::bad_alloc&) {
    throw;  // an answer would keep or drop an address that nothing was found out about
  } catch (const std::exception&) {
    return FilterAnswer::kTooManySteps;  // the engine's own limits of steps and memory
  }
}

}  // namespace quenlar
