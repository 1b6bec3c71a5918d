// In which charset a page is written, and its bytes as UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/text_decoder.h"

namespace quenlar {

// The charset that a label of the Encoding Standard names, in any letter case and with blanks around it.
[[nodiscard]] std::optional<Charset> CharsetOfLabel(std::string_view label);

// A Content-Type header's value. Views into it.
struct ContentType {
  std::string_view type;     // "text/html", as it is written
  std::string_view charset;  // of the first parameter of this name, without quotes; may be empty
};
[[nodiscard]] ContentType ParseContentType(std::string_view value);

// A page says in which charset it is by its byte order mark, or by its Content-Type, or by a <meta> that begins in its
// first 1,024 bytes. Otherwise it is Windows-1252.
[[nodiscard]] Charset CharsetOfPage(std::string_view bytes, std::string_view content_type);

// Whether the bytes of a page below 128 may mean something else than those of ASCII, as in UTF-16. Told at a glance: at
// times of a page whose charset is another one after all.
[[nodiscard]] bool MayNotBeAscii(std::string_view bytes, std::string_view content_type);

// `bytes` without their byte order mark, as UTF-8. A view of them where that is what they are already (in UTF-8 also
// where they are malformed), otherwise of `storage`.
[[nodiscard]] std::string_view PageAsUtf8(std::string_view bytes, Charset charset, const TextDecoder& decoder,
                                          std::string& storage);

// `text` with U+FFFD in place of what is malformed; a view of `storage` where anything is.
[[nodiscard]] std::string_view WellFormed(std::string_view text, std::string& storage);

}  // namespace quenlar
