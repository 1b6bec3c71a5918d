#include "page/url.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>

#include "base/ascii.h"
#include "page/url_bytes.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestText = std::size_t{512} << 20;

constexpr std::uint16_t StandardPort(bool secure) { return secure ? 443 : 80; }

bool IsSlash(char c) { return c == '/' || c == '\\'; }

std::string_view TrimmedControls(std::string_view text) {
  const auto control = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!text.empty() && control(text.front())) text.remove_prefix(1);
  while (!text.empty() && control(text.back())) text.remove_suffix(1);
  return text;
}

// True when a byte below 0x0E is there, as tabs and line ends are.
bool MayHoldLineEnds(std::string_view text) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  std::uint64_t low = 0;
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data() + at, 8);
    low |= (bytes - kOnes * 0x0E) & ~bytes & (kOnes * 0x80);
  }
  for (; at < text.size(); ++at) low |= static_cast<unsigned char>(text[at]) < 0x0E;
  return low != 0;
}

std::string WithoutLineEnds(std::string_view text) {
  std::string clean;
  clean.reserve(text.size());
  for (const char c : text) {
    if (c != '\t' && c != '\n' && c != '\r') clean += c;
  }
  return clean;
}

// The length of "name" in "name:" at the beginning; 0 where there is no scheme.
std::size_t SchemeLength(std::string_view text) {
  if (text.empty() || !IsLetter(text.front())) return 0;
  for (std::size_t at = 1; at < text.size(); ++at) {
    const char c = text[at];
    if (c == ':') return at;
    if (!IsLetter(c) && !IsDigit(c) && c != '+' && c != '-' && c != '.') return 0;
  }
  return 0;
}

void AppendEncoded(std::string_view text, std::uint8_t sets, std::string& out) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && !IsUrlByte(text[end], sets)) ++end;
    out.append(text, at, end - at);
    if (end < text.size()) AppendPercentEncoded(text[end], out);
    at = end + 1;
  }
}

// The number of dots that a path segment consists of, each written "." or "%2e"; 0 for any other segment. More than
// two are another segment.
int DotsOf(std::string_view segment) {
  int dots = 0;
  for (; !segment.empty(); ++dots) {
    const std::size_t length = segment.front() == '.' ? 1 : StartsWithIgnoreCase(segment, "%2e") ? 3 : 0;
    if (length == 0 || dots == 2) return 0;
    segment.remove_prefix(length);
  }
  return dots;
}

// How much of a path can be copied as it is: ends at the last slash before something that needs a closer look, or at
// the end of the path.
std::size_t PlainPathLength(std::string_view rest) {
  std::size_t segment = 0;
  for (std::size_t at = 0; at < rest.size(); ++at) {
    const char c = rest[at];
    if (!IsUrlByte(c, kEncodedInPath | kEndsSegment)) continue;
    if (c == '?' || c == '#') return at;
    if (c != '/') return segment;
    segment = at;
    if (at + 1 < rest.size() && (rest[at + 1] == '.' || rest[at + 1] == '%')) return segment;
  }
  return rest.size();
}

}  // namespace

// Builds one URL out of a text that is trimmed and free of line ends.
class UrlParser {
 public:
  UrlParser(std::string_view text, const Url* base, const Idna& idna) : rest_(text), base_(base), idna_(idna) {}

  std::optional<Url> Parse() {
    if (!ParseBeginning()) return std::nullopt;
    if (rest_.starts_with('?')) {
      rest_.remove_prefix(1);
      url_.href_ += '?';
      AppendEncoded(rest_.substr(0, rest_.find('#')), kEncodedInQuery, url_.href_);
    }
    return std::move(url_);
  }

 private:
  // Everything up to the query; a query that is taken from the base is part of the beginning.
  bool ParseBeginning() {
    const std::size_t scheme = SchemeLength(rest_);
    if (scheme > 0) {
      const bool secure = scheme == 5;
      if (!EqualsIgnoreCase(rest_.substr(0, scheme), secure ? "https" : "http")) return false;
      rest_.remove_prefix(scheme + 1);
      // "http:page" is relative to a base of the same scheme, for what that is worth today.
      if (!base_ || base_->secure() != secure) return ParseAuthority(secure);
    }
    if (!base_) return false;
    const bool rooted = !rest_.empty() && IsSlash(rest_.front());
    if (rooted && rest_.size() > 1 && IsSlash(rest_[1])) return ParseAuthority(base_->secure());
    TakeFromBase(rooted);
    return true;
  }

  void TakeFromBase(bool rooted) {
    const bool same_path = rest_.empty() || rest_.front() == '?' || rest_.front() == '#';
    const bool same_query = rest_.empty() || rest_.front() == '#';
    const std::size_t folder = base_->path_begin_ + base_->path().rfind('/');
    const std::size_t taken = rooted       ? base_->path_begin_
                              : same_query ? base_->href_.size()
                              : same_path  ? base_->query_begin_
                                           : folder;
    url_.href_.reserve(taken + rest_.size() + 1);
    url_.href_.assign(base_->href_, 0, taken);
    url_.host_begin_ = base_->host_begin_;
    url_.host_end_ = base_->host_end_;
    url_.path_begin_ = base_->path_begin_;
    url_.query_begin_ = base_->query_begin_;
    url_.port_ = base_->port_;
    if (same_path) return;
    if (rooted) rest_.remove_prefix(1);
    AppendPath();
  }

  bool ParseAuthority(bool secure) {
    std::size_t slashes = 0;
    while (slashes < rest_.size() && IsSlash(rest_[slashes])) ++slashes;
    rest_.remove_prefix(slashes);
    std::size_t end = 0;
    while (end < rest_.size() && !IsUrlByte(rest_[end], kEndsSegment)) ++end;
    std::string_view authority = rest_.substr(0, end);
    rest_.remove_prefix(end);

    std::string& href = url_.href_;
    href.reserve(authority.size() + rest_.size() + 9);
    href = secure ? "https://" : "http://";
    if (const std::size_t at = authority.rfind('@'); at != authority.npos) {
      AppendUserinfo(authority.substr(0, at));
      authority.remove_prefix(at + 1);
    }
    const std::size_t host_length = HostLength(authority);
    Mark(url_.host_begin_);
    if (!AppendHost(authority.substr(0, host_length), idna_, href)) return false;
    Mark(url_.host_end_);
    url_.port_ = StandardPort(secure);
    if (host_length < authority.size() && !AppendPort(authority.substr(host_length + 1))) return false;
    Mark(url_.path_begin_);
    if (!rest_.empty() && IsSlash(rest_.front())) rest_.remove_prefix(1);
    AppendPath();
    return true;
  }

  void AppendUserinfo(std::string_view userinfo) {
    const std::size_t colon = std::min(userinfo.find(':'), userinfo.size());
    const std::string_view name = userinfo.substr(0, colon);
    const std::string_view password = userinfo.substr(std::min(colon + 1, userinfo.size()));
    if (name.empty() && password.empty()) return;
    AppendEncoded(name, kEncodedInUserinfo, url_.href_);
    if (!password.empty()) {
      url_.href_ += ':';
      AppendEncoded(password, kEncodedInUserinfo, url_.href_);
    }
    url_.href_ += '@';
  }

  // Up to the first colon that is not in brackets.
  static std::size_t HostLength(std::string_view authority) {
    bool bracketed = false;
    for (std::size_t at = 0; at < authority.size(); ++at) {
      if (authority[at] == ':' && !bracketed) return at;
      if (authority[at] == '[') bracketed = true;
      if (authority[at] == ']') bracketed = false;
    }
    return authority.size();
  }

  bool AppendPort(std::string_view digits) {
    if (digits.empty()) return true;
    unsigned port = 0;
    for (const char c : digits) {
      if (!IsDigit(c)) return false;
      port = std::min(port * 10 + static_cast<unsigned>(c - '0'), 65536u);
    }
    if (port > 65535) return false;
    if (port == url_.port_) return true;
    url_.port_ = static_cast<std::uint16_t>(port);
    char text[8];
    url_.href_ += ':';
    url_.href_.append(text, std::to_chars(text, std::end(text), port).ptr);
    return true;
  }

  // Takes the path from the rest and appends it, "/" in front, to what there is of it already. The rest begins with the
  // first segment.
  void AppendPath() {
    std::string& href = url_.href_;
    for (bool more = true; more;) {
      const std::size_t before = href.size();
      href += '/';
      const bool dots_ahead = !rest_.empty() && (rest_.front() == '.' || rest_.front() == '%');
      const std::size_t plain = dots_ahead ? 0 : PlainPathLength(rest_);
      href.append(rest_, 0, plain);
      rest_.remove_prefix(plain);
      if (plain == 0) AppendSegment();
      more = !rest_.empty() && IsSlash(rest_.front());
      if (more) rest_.remove_prefix(1);
      const int dots = plain > 0 ? 0 : DotsOf(std::string_view(href).substr(before + 1));
      if (dots == 0) continue;
      href.resize(before);
      if (dots == 2) DropLastSegment();
      if (!more) href += '/';
    }
    Mark(url_.query_begin_);
  }

  void AppendSegment() {
    std::size_t end = 0;
    while (end < rest_.size() && !IsUrlByte(rest_[end], kEndsSegment)) ++end;
    AppendEncoded(rest_.substr(0, end), kEncodedInPath, url_.href_);
    rest_.remove_prefix(end);
  }

  void DropLastSegment() {
    if (url_.href_.size() > url_.path_begin_) url_.href_.resize(url_.href_.rfind('/'));
  }

  void Mark(std::uint32_t& place) const { place = static_cast<std::uint32_t>(url_.href_.size()); }

  std::string_view rest_;
  const Url* base_;
  const Idna& idna_;
  Url url_;
};

std::string Url::Origin() const {
  std::string origin(Part(0, secure() ? 8 : 7));
  return origin += Part(host_begin_, path_begin_);
}

std::optional<Url> ParseUrl(std::string_view text, const Url* base, const Idna& idna) {
  text = TrimmedControls(text);
  if (text.size() > kLongestText) return std::nullopt;
  if (!MayHoldLineEnds(text)) return UrlParser(text, base, idna).Parse();
  return UrlParser(WithoutLineEnds(text), base, idna).Parse();
}

}  // namespace quenlar
