#include "support/reference_pattern.h"

#include <boost/regex.hpp>

namespace quenlar {
namespace {

class BoostReference final : public ReferencePattern {
 public:
  explicit BoostReference(const char* pattern) : regex_(pattern, boost::regex::perl | boost::regex::icase) {}

  [[nodiscard]] std::optional<std::string_view> Find(std::string_view text, std::size_t from) const override {
    boost::cmatch match;
    const auto flags = from == 0 ? boost::match_default : boost::match_default | boost::match_prev_avail;
    const char* end = text.data() + text.size();
    if (!boost::regex_search(text.data() + from, end, match, regex_, flags)) return std::nullopt;
    return std::string_view(match[0].first, static_cast<std::size_t>(match[0].length()));
  }

 private:
  boost::regex regex_;
};

}  // namespace

std::vector<std::string_view> ReferencePattern::FindAll(std::string_view text) const {
  std::vector<std::string_view> all;
  std::size_t from = 0;
  while (const auto match = Find(text, from)) {
    all.push_back(*match);
    from = static_cast<std::size_t>(match->data() - text.data()) + match->size();
  }
  return all;
}

std::unique_ptr<ReferencePattern> BoostPattern(const char* pattern) {
  return std::make_unique<BoostReference>(pattern);
}

}  // namespace quenlar
