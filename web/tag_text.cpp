#include "web/tag_text.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// What lies between the first and the second `quote`; up to the end where there is no second one.
std::string_view Quoted(std::string_view value, char quote) {
  value.remove_prefix(1);
  return value.substr(0, value.find(quote));
}

// Characters that CleanText keeps: printable ASCII without the blank.
constexpr bool IsPlain(char c) { return c >= 33 && c < 127; }
constexpr bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// One blank a character, not a byte.
std::string BlankOut(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (!IsContinuation(c)) result += IsPlain(c) ? c : ' ';
  }
  return result;
}

// One after the other, so that "&amp;gt;" becomes ">". The star stays, although it is not ASCII: it is put in last.
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
  std::string_view value = tag.substr(at + name.size());
  if (!value.empty() && (value.front() == '"' || value.front() == '\'')) value = Quoted(value, value.front());
  value = value.substr(0, value.find(' '));
  value = value.substr(0, value.find("\r\n"));
  if (value.find(';') == kNone || value.find(kEntityRest) == kNone) return value;  // ";" is rarer than "a"
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
  if (close == kNone) return {};  // no later opening can have a closing either
  return CleanText(TextBetween(page.substr(open, close + kClosing.size() - open), ">", "<", SearchFrom::kStart));
}

}  // namespace quenlar
