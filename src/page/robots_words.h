// What a page asks of programs that read it: <meta name=robots> and the header X-Robots-Tag.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quenlar {

class RobotsWords {
 public:
  // The content of a <meta> that is for everybody or for this program, references decoded.
  void AddMeta(std::string_view content);
  // The value of one X-Robots-Tag header. "agent: word, word" is for that agent alone.
  void AddHeader(std::string_view value);

  // As they were added, in lower case.
  [[nodiscard]] const std::vector<std::string>& words() const { return words_; }
  // Whether the page's addresses may not be listed.
  [[nodiscard]] bool noindex() const { return Has("noindex") || Has("none"); }
  // Whether its links may not be followed.
  [[nodiscard]] bool nofollow() const { return Has("nofollow") || Has("none"); }

 private:
  void Add(std::string_view word);
  [[nodiscard]] bool Has(std::string_view word) const;

  std::vector<std::string> words_;
};

// Whether a <meta> of this name holds such words for this program.
[[nodiscard]] bool IsRobotsName(std::string_view name);

}  // namespace quenlar
