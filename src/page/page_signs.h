// Where on a page an e-mail address may stand, plain or protected, found without reading its markup.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

enum class PageSignKind {
  kAll,    // of plain addresses and protected ones
  kPlain,  // of plain addresses alone; an "@" has to stand between what may be characters of one, with a dot behind it
};

// Goes through the signs of a page from its beginning. A sign is an "@", or what may become one:
//   &#64; &#x40; &commat; and references to brackets and percent signs, %40, \u0040, \x40, cfemail,
//   a word for "at" behind an opening bracket, a word for "dot" not far behind a word for "at".
// A page without a sign has no address in it, and no protected one. Not every sign has an address. The page is UTF-8;
// it is searched once, as far as is asked for, in linear time.
class PageSigns {
 public:
  explicit PageSigns(std::string_view page, PageSignKind kind = PageSignKind::kAll) : page_(page), kind_(kind) {
    Find(0);
  }

  // The next sign, or npos behind the last one.
  [[nodiscard]] std::size_t next() const { return next_; }
  // Whether a sign stands before `end`; then those before it are gone by.
  bool PassBefore(std::size_t end) {
    if (next_ >= end) return false;
    Find(end);
    return true;
  }

 private:
  void Find(std::size_t from);
  [[nodiscard]] bool IsPlainSign(std::size_t at) const;
  [[nodiscard]] bool IsSign(std::size_t at);
  [[nodiscard]] bool IsDot(std::size_t at);

  std::string_view page_;
  PageSignKind kind_;
  std::size_t next_ = 0;
  std::size_t words_looked_for_ = 0;                   // so far, words for "at" have been looked for
  std::size_t last_at_word_ = std::string_view::npos;  // that was found
};

// Whether a page, in whatever charset whose bytes below 128 are those of ASCII, may have a plain address in it. Its
// bytes need not be converted for that.
[[nodiscard]] bool MayHoldPlainAddress(std::string_view bytes);

}  // namespace quenlar
