#include "web/tag_text.h"

#include "base/ascii.h"
#include "base/byte_search.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Returns the value of an attribute: the text up to its closing quote, a blank or a line end ("\r\n"), whichever comes
// first. For a value without quotes `quote` is a blank.
std::string_view ValueAt(std::string_view tag, std::size_t begin, char quote) {
  for (std::size_t end = begin;; ++end) {
    end = FindOneOf(tag, {quote, ' ', '\r'}, end);
    if (end == kNone) return tag.substr(begin);
    if (tag[end] != '\r' || tag.substr(end).starts_with("\r\n")) return tag.substr(begin, end - begin);
  }
}

// Characters that CleanText keeps: printable ASCII without the blank.
constexpr bool IsPlain(char c) { return c >= 33 && c < 127; }
constexpr bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Puts one blank in place of each character, and not of each byte.
std::string BlankOut(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (!IsContinuation(c)) result += IsPlain(c) ? c : ' ';
  }
  return result;
}

// The entities are replaced one after the other, so "&amp;gt;" becomes ">". The star is not ASCII and stays all the
// same, because it is put in last.
constexpr struct {
  std::string_view entity, text;
} kEntities[] = {{"&#9733;", "\xE2\x98\x85"},
                 {"&#8250;", ">"},
                 {"&laquo;", "<<"},
                 {"&amp;", "&"},
                 {"&#038;", "&"},
                 {"&#38;", "&"},
                 {"&#10;", " "},
                 {"&gt;", ">"},
                 {"&nbsp;", " "}};

}  // namespace

std::string GetAttributeValue(std::string_view tag, std::string_view name) {
  std::string buffer;
  return std::string(AttributeView(tag, name, buffer));
}

std::string_view AttributeView(std::string_view tag, std::string_view name, std::string& buffer) {
  constexpr std::string_view kEntityRest = "amp;";
  const std::size_t at = FindIgnoreCase(tag, name);
  if (at == kNone) return {};
  const std::size_t begin = at + name.size();
  const bool quoted = begin < tag.size() && (tag[begin] == '"' || tag[begin] == '\'');
  const std::string_view value = quoted ? ValueAt(tag, begin + 1, tag[begin]) : ValueAt(tag, begin, ' ');
  if (FindByte(value, ';') == kNone || value.find(kEntityRest) == kNone) return value;  // ";" is rarer than "a"
  buffer = ReplaceAll(value, kEntityRest, "");
  return buffer;
}

std::string_view TextBetween(std::string_view text, std::string_view opening, std::string_view closing,
                             SearchFrom from) {
  std::size_t open = kNone, close = kNone;
  if (from == SearchFrom::kStart) {
    open = text.find(opening);
    if (open != kNone) close = text.find(closing, open + opening.size());
  } else {
    close = text.rfind(closing);
    if (close != kNone) open = text.substr(0, close).rfind(opening);
  }
  if (open == kNone || close == kNone) return {};
  const std::size_t begin = open + opening.size();
  return text.substr(begin, close - begin);
}

std::string CleanText(std::string_view text) {
  std::string clean = BlankOut(text);
  if (clean.find('&') == kNone) return std::string(TrimBlanks(clean));
  for (const auto& [entity, replacement] : kEntities) {
    if (clean.find(entity) != kNone) clean = ReplaceAll(clean, entity, replacement);
  }
  return std::string(TrimBlanks(clean));
}

std::string GetPageTitle(std::string_view page) {
  constexpr std::string_view kOpening = "<title>", kClosing = "</title>";
  const std::size_t open = FindIgnoreCase(page, kOpening);
  if (open == kNone) return {};
  const std::size_t close = FindIgnoreCase(page, kClosing, open + kOpening.size());
  if (close == kNone) return {};  // no later opening delimiter has a closing one either
  return CleanText(TextBetween(page.substr(open, close + kClosing.size() - open), ">", "<", SearchFrom::kStart));
}

}  // namespace quenlar
