#include "archive/warc_head.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "platform/answer_head.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kMark = "WARC/";

enum class LineKind { kField, kFolded, kEmpty, kOther };

LineKind KindOf(std::string_view line) {
  if (line.empty()) return LineKind::kEmpty;
  if (line[0] == ' ' || line[0] == '\t') return LineKind::kFolded;
  const std::size_t colon = FindByte(line, ':');
  return colon != kNone && colon > 0 ? LineKind::kField : LineKind::kOther;
}

// Takes the next line off `text`, without its line end. False where the text ends before the line does.
bool TakeLine(std::string_view& text, std::string_view& line) {
  const std::size_t end = FindByte(text, '\n');
  if (end == kNone) return false;
  line = text.substr(0, end);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  text.remove_prefix(end + 1);
  return true;
}

// "WARC/1.0"; drafts of the standard have other numbers.
bool IsVersion(std::string_view line) {
  line.remove_prefix(std::min(kMark.size(), line.size()));
  const std::size_t dot = line.find('.');
  return dot != kNone && dot > 0 && dot + 1 < line.size() && line.find_first_not_of("0123456789.") == kNone;
}

std::string_view WithoutAngles(std::string_view target) {
  const bool angles = target.size() >= 2 && target.front() == '<' && target.back() == '>';
  return angles ? target.substr(1, target.size() - 2) : target;
}

void TakeField(std::string_view line, WarcHead& head, bool& has_length) {
  const std::size_t colon = FindByte(line, ':');
  std::string_view name = line.substr(0, colon);
  if (name.back() == ' ' || name.back() == '\t') name = TrimHeaderBlanks(name);
  const auto value = [&] { return TrimHeaderBlanks(line.substr(colon + 1)); };
  const auto first = [&](std::string_view wanted, std::string_view& field) {
    if (name.size() == wanted.size() && field.empty() && EqualsIgnoreCase(name, wanted)) field = value();
  };
  first("WARC-Type", head.type);
  first("WARC-Target-URI", head.target);
  first("WARC-Date", head.date);
  first("Content-Type", head.content_type);
  if (!has_length && EqualsIgnoreCase(name, "Content-Length")) {
    has_length = true;
    head.length = ParseContentLength(value());
  }
}

// With `strict` every line has to be a field, and type and length have to be there. `passed` is how much of the text
// has been looked at when it is not a head: nothing in that part is the beginning of a strict one.
WarcHeadOutcome Parse(std::string_view text, bool strict, WarcHead& head, std::size_t& passed) {
  head = WarcHead();
  passed = 1;
  const std::string_view whole = text.substr(0, kMostWarcHead);
  const WarcHeadOutcome cut = whole.size() < kMostWarcHead ? WarcHeadOutcome::kCut : WarcHeadOutcome::kNotOne;
  if (!BeginsWarcHead(whole)) return WarcHeadOutcome::kNotOne;
  std::string_view rest = whole, line;
  if (!TakeLine(rest, line)) return cut;
  if (!IsVersion(line)) return WarcHeadOutcome::kNotOne;
  bool has_length = false;
  for (passed = whole.size() - rest.size(); TakeLine(rest, line); passed = whole.size() - rest.size()) {
    const LineKind kind = KindOf(line);
    if (kind == LineKind::kField) TakeField(line, head, has_length);
    if (strict && kind == LineKind::kOther) return WarcHeadOutcome::kNotOne;
    if (kind != LineKind::kEmpty) continue;
    if (strict && (head.type.empty() || !head.length)) return WarcHeadOutcome::kNotOne;
    head.target = WithoutAngles(head.target);
    head.size = whole.size() - rest.size();
    return WarcHeadOutcome::kHead;
  }
  return cut;
}

}  // namespace

bool BeginsWarcHead(std::string_view text) {
  if (text.size() <= kMark.size()) return kMark.starts_with(text);
  return text.starts_with(kMark) && IsDigit(text[kMark.size()]);
}

WarcHeadOutcome ParseWarcHead(std::string_view text, WarcHead& head) {
  std::size_t unused = 0;
  return Parse(text, false, head, unused);
}

std::size_t FindWarcHead(std::string_view text, std::size_t from) {
  WarcHead unused;
  std::size_t passed = 1;
  for (std::size_t at = FindByte(text, 'W', from); at != kNone; at = FindByte(text, 'W', at + passed)) {
    passed = 1;
    if (!BeginsWarcHead(text.substr(at, kMark.size() + 1))) continue;
    if (Parse(text.substr(at), true, unused, passed) != WarcHeadOutcome::kNotOne) return at;
  }
  return kNone;
}

}  // namespace quenlar
