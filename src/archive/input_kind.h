// What an input is, by its first bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

enum class InputKind {
  kEmpty,
  kWarc,
  kArc,  // the format before WARC, which is not read
  kHtml,
  kText,
  kGzip,  // of any of the others
  kZstd,  // the same
  kOther,
};

inline constexpr std::size_t kKindBytes = 2048;  // that are looked at

// `beginning` has kKindBytes bytes, or all that there are.
[[nodiscard]] InputKind KindOfInput(std::string_view beginning);

// The same, but what is neither an archive nor packed is a page.
[[nodiscard]] InputKind KindOfStream(std::string_view beginning);

}  // namespace quenlar
