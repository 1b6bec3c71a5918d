// Where on a page an e-mail address may stand, plain or protected, found without reading its markup.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// Goes through the signs of a page from its beginning. A sign is an "@", or what may become one:
//   &#64; &#x40; &commat; and references to brackets and percent signs, %40, \u0040, \x40, cfemail,
//   a word for "at" behind an opening bracket, a word for "dot" not far behind a word for "at".
// A page without a sign has no address in it, and no protected one. Not every sign has an address. The page is UTF-8;
// it is searched once, as far as is asked for, in linear time.
class PageSigns {
 public:
  explicit PageSigns(std::string_view page) : page_(page) { Find(0); }

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
  [[nodiscard]] bool IsSign(std::size_t at);
  [[nodiscard]] bool IsDot(std::size_t at);

  std::string_view page_;
  std::size_t next_ = 0;
  std::size_t words_looked_for_ = 0;                   // so far, words for "at" have been looked for
  std::size_t last_at_word_ = std::string_view::npos;  // that was found
};

}  // namespace quenlar
