#include "page/page_title.h"

#include <algorithm>
#include <cstddef>

#include "page/html_blanks.h"
#include "page/references.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr std::size_t kMostCharacters = 500;

class TitleText {
 public:
  [[nodiscard]] bool full() const { return characters_ == kMostCharacters; }

  void Add(char32_t code) {
    if (code < 0x80 && IsHtmlBlank(static_cast<char>(code))) {
      blank_ = characters_ > 0;
      return;
    }
    if (blank_) Append(' ');
    blank_ = false;
    if (!full()) Append(code);
  }
  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  void Append(char32_t code) {
    if (code < 0x80)
      text_ += static_cast<char>(code);
    else
      AppendUtf8(code, text_);
    ++characters_;
  }

  std::string text_;
  std::size_t characters_ = 0;
  bool blank_ = false;  // comes before the next character
};

}  // namespace

std::string ShownTitle(std::string_view raw) {
  TitleText title;
  while (!raw.empty() && !title.full()) {
    if (raw[0] == '&') {
      const Reference reference = ReadReference(raw, ReferencePlace::kText);
      if (reference.length > 0) {
        for (const char32_t code : reference.codes) {
          if (code != 0 && !title.full()) title.Add(code);
        }
        raw.remove_prefix(reference.length);
        continue;
      }
    }
    const Utf8Character character = DecodeUtf8(raw);
    title.Add(character.bytes == 0 || character.code == 0 ? 0xFFFD : character.code);
    raw.remove_prefix(std::max<std::size_t>(character.bytes, 1));
  }
  return title.take();
}

}  // namespace quenlar
