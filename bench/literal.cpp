#define PCRE2_CODE_UNIT_WIDTH 8
#include "bench/literal.h"

#include <cstdlib>

#include <hs/hs.h>
#include <pcre2.h>
#include <re2/re2.h>

#include "base/ascii.h"
#include "state/get_host.h"
#include "web/address_scan.h"
#include "web/links.h"
#include "web/tag_text.h"

namespace quenlar::bench {
namespace {

class Pcre2Pattern final : public Pattern {
 public:
  explicit Pcre2Pattern(const char* pattern) {
    int error = 0;
    PCRE2_SIZE offset = 0;
    code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED, PCRE2_CASELESS, &error, &offset,
                          nullptr);
    if (code_ == nullptr || pcre2_jit_compile(code_, PCRE2_JIT_COMPLETE) != 0) std::abort();
    data_ = pcre2_match_data_create_from_pattern(code_, nullptr);
    context_ = pcre2_match_context_create(nullptr);
    stack_ = pcre2_jit_stack_create(32 * 1024, 64 * 1024 * 1024, nullptr);
    pcre2_jit_stack_assign(context_, nullptr, stack_);
  }
  ~Pcre2Pattern() override {
    pcre2_jit_stack_free(stack_);
    pcre2_match_context_free(context_);
    pcre2_match_data_free(data_);
    pcre2_code_free(code_);
  }
  std::string_view Find(std::string_view text, std::size_t from) override {
    const int rc =
        pcre2_jit_match(code_, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), from, 0, data_, context_);
    if (rc < 0) {
      gave_up = gave_up || rc != PCRE2_ERROR_NOMATCH;
      return {};
    }
    const PCRE2_SIZE* ends = pcre2_get_ovector_pointer(data_);
    return text.substr(ends[0], ends[1] - ends[0]);
  }

 private:
  pcre2_code* code_;
  pcre2_match_data* data_;
  pcre2_match_context* context_;
  pcre2_jit_stack* stack_;
};

RE2::Options Re2Options() {
  RE2::Options options;
  options.set_case_sensitive(false);
  options.set_encoding(RE2::Options::EncodingLatin1);
  options.set_max_mem(64 << 20);
  return options;
}

class Re2Pattern final : public Pattern {
 public:
  explicit Re2Pattern(const char* pattern) : re_(pattern, Re2Options()) {
    if (!re_.ok()) std::abort();
  }
  std::string_view Find(std::string_view text, std::size_t from) override {
    re2::StringPiece match;
    if (!re_.Match({text.data(), text.size()}, from, text.size(), RE2::UNANCHORED, &match, 1)) return {};
    return {match.data(), match.size()};
  }

 private:
  RE2 re_;
};

struct PageLists {
  std::vector<std::string> tag, text;
  std::unordered_set<std::string> tag_seen, text_seen;

  void AddTag(std::string_view address) {
    if (tag_seen.insert(Lower(address)).second) tag.emplace_back(address);
  }
  void AddText(std::string_view address) {
    if (text_seen.insert(Lower(address)).second) text.emplace_back(address);
  }
  void MoveTo(FoundSet& found) {
    for (std::string& address : text) Insert(found, std::move(address));
    for (std::string& address : tag) {
      if (text_seen.count(Lower(address)) == 0) Insert(found, std::move(address));
    }
  }
  static void Insert(FoundSet& found, std::string address) {
    if (found.lower.insert(Lower(address)).second) found.in_order.push_back(std::move(address));
  }
};

bool IsMailAnchor(std::string_view match) {
  const std::string lower = Lower(match);
  return lower.find("mailto:") != lower.npos && lower.find("<a") != lower.npos;
}

bool IsLocal(char c) { return IsWord(c) || c == '.' || c == '%' || c == '+' || c == '-'; }
bool IsDomain(char c) { return IsLetter(c) || IsDigit(c) || c == '.' || c == '-'; }

// Whether the part of the pattern around the "@" at `at` matches within [first, end).
bool OuterMatch(std::string_view page, std::size_t first, std::size_t at, std::size_t end) {
  if (at == first || !IsLocal(page[at - 1])) return false;
  std::size_t letters = 0;
  bool dot = false;
  for (std::size_t i = at + 1; i < end && IsDomain(page[i]); ++i) {
    if (page[i] == '.' && i > at + 1) {
      dot = true;
      letters = 0;
    } else if (dot && IsLetter(page[i])) {
      if (++letters == 2) return true;
    } else {
      dot = false;
    }
  }
  return false;
}

}  // namespace

std::unique_ptr<Pattern> Pcre2Jit(const char* pattern) { return std::make_unique<Pcre2Pattern>(pattern); }
std::unique_ptr<Pattern> Re2(const char* pattern) { return std::make_unique<Re2Pattern>(pattern); }

LiteralHarvest::LiteralHarvest(const MakePattern& make)
    : tag_(make(kTagPattern)),
      text_(make(kTextPattern)),
      address_(make(kAddressPattern)),
      title_(make(kTitlePattern)) {}

bool LiteralHarvest::gave_up() const { return tag_->gave_up || text_->gave_up || address_->gave_up || title_->gave_up; }

std::string LiteralHarvest::Title(std::string_view page) {
  const std::string_view match = title_->Find(page, 0);
  return match.data() == nullptr ? "" : CleanText(TextBetween(match, ">", "<", SearchFrom::kStart));
}

void LiteralHarvest::Page(std::string_view page, FoundSet& found) {
  PageLists lists;
  for (std::size_t from = 0;;) {
    const std::string_view match = tag_->Find(page, from);
    if (match.data() == nullptr) break;
    const std::string_view address = address_->Find(match, 0);
    if (address.data() != nullptr) IsMailAnchor(match) ? lists.AddText(address) : lists.AddTag(address);
    from = static_cast<std::size_t>(match.data() - page.data()) + match.size();
  }
  for (std::size_t from = 0;;) {
    const std::string_view match = text_->Find(page, from);
    if (match.data() == nullptr) break;
    const std::string_view address = address_->Find(match, 0);
    if (address.data() != nullptr) lists.AddText(address);
    from = static_cast<std::size_t>(match.data() - page.data()) + match.size();
  }
  lists.MoveTo(found);
}

struct HyperscanHarvest::Impl {
  hs_database_t* database = nullptr;
  hs_scratch_t* scratch = nullptr;
  std::vector<std::size_t> at;
};

HyperscanHarvest::HyperscanHarvest() : impl_(std::make_unique<Impl>()) {
  hs_compile_error_t* error = nullptr;
  if (hs_compile("[a-z0-9._%+-]@[a-z0-9.-]", HS_FLAG_CASELESS, HS_MODE_BLOCK, nullptr, &impl_->database, &error) !=
          HS_SUCCESS ||
      hs_alloc_scratch(impl_->database, &impl_->scratch) != HS_SUCCESS) {
    std::abort();
  }
}

HyperscanHarvest::~HyperscanHarvest() {
  hs_free_scratch(impl_->scratch);
  hs_free_database(impl_->database);
}

void HyperscanHarvest::Page(std::string_view page, FoundSet& found) {
  impl_->at.clear();
  const auto on_match = [](unsigned, unsigned long long, unsigned long long to, unsigned, void* context) {
    static_cast<std::vector<std::size_t>*>(context)->push_back(static_cast<std::size_t>(to) - 2);
    return 0;
  };
  if (hs_scan(impl_->database, page.data(), static_cast<unsigned>(page.size()), 0, impl_->scratch, on_match,
              &impl_->at) != HS_SUCCESS) {
    std::abort();
  }
  PageLists lists;
  std::vector<std::string_view> text_matches;
  std::size_t done_tags = 0;  // segments before this offset have their match in tags
  std::size_t done_text = 0;
  for (const std::size_t at : impl_->at) {
    const std::size_t less = page.rfind('<', at);
    const std::size_t first = less == page.npos ? 0 : less + 1;
    const std::size_t end = std::min(page.find('<', at), page.size());
    if (less != page.npos && less >= done_tags && OuterMatch(page, first, at, end)) {
      const std::size_t greater = page.find('>', at);
      if (greater < end) {
        done_tags = less + 1;
        const std::string_view match = page.substr(less, greater - less + 1);
        const std::string_view address = NextAddress(match);
        if (!address.empty()) IsMailAnchor(match) ? lists.AddText(address) : lists.AddTag(address);
      }
    }
    const std::size_t open = page.substr(0, at).find('>', first);
    if (end < page.size() && first >= done_text && open != page.npos && OuterMatch(page, open + 1, at, end)) {
      done_text = first + 1;
      text_matches.push_back(page.substr(open, end - open + 1));
    }
  }
  for (const std::string_view match : text_matches) {
    const std::string_view address = NextAddress(match);
    if (!address.empty()) lists.AddText(address);
  }
  lists.MoveTo(found);
}

void LiteralTagWalk(std::string_view page, std::string_view address, LiteralLinks& links) {
  const std::string lower = Lower(page);
  std::size_t less = page.find('<');
  while (less != page.npos) {
    const std::size_t greater = page.find('>', less);
    if (greater == page.npos) return;
    const std::string tag(TrimBlanks(page.substr(less + 1, greater - less - 1)));
    const std::string name(Split(ReplaceAll(Lower(tag), "&nbsp;", " "), " ").front());
    std::string target;
    if (name == "a") {
      target = GetAttributeValue(tag, "href=");
      if (lower.find("</a", greater) == lower.npos) return;
    } else if (name == "frame") {
      target = GetAttributeValue(tag, "src=");
    }
    if (name == "a" || name == "frame") {
      std::string resolved = ResolveLink(target, address);
      if (!resolved.empty() && resolved.find("/#") == resolved.npos) {
        if (resolved.back() == '/') resolved.pop_back();
        if (GetHost(resolved) == GetHost(address)) {
          links.links.insert(std::move(resolved));
        } else {
          links.hosts.insert(GetHost(resolved));
        }
      }
    }
    less = page.find('<', greater);
  }
}

}  // namespace quenlar::bench
