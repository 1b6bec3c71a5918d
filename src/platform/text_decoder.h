// Text in the charsets of the web as UTF-8, by what the system knows of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quenlar {

// The encodings of the Encoding Standard (https://encoding.spec.whatwg.org/). GBK is read as GB 18030, which has it in
// it, and ISO-8859-8-I as ISO-8859-8, which differs in the order of display alone.
enum class Charset : std::uint8_t {
  kUtf8,
  kUtf16Be,
  kUtf16Le,
  kWindows1252,
  kReplacement,  // what must not be decoded
  kUserDefined,  // bytes above 127 are private characters
  // Those that the system decodes:
  kIbm866,
  kIso8859Part2,
  kIso8859Part3,
  kIso8859Part4,
  kIso8859Part5,
  kIso8859Part6,
  kIso8859Part7,
  kIso8859Part8,
  kIso8859Part10,
  kIso8859Part13,
  kIso8859Part14,
  kIso8859Part15,
  kIso8859Part16,
  kKoi8R,
  kKoi8U,
  kMacintosh,
  kMacCyrillic,
  kWindows874,
  kWindows1250,
  kWindows1251,
  kWindows1253,
  kWindows1254,
  kWindows1255,
  kWindows1256,
  kWindows1257,
  kWindows1258,
  kGb18030,
  kBig5,
  kEucJp,
  kIso2022Jp,
  kShiftJis,
  kEucKr,
};
inline constexpr Charset kFirstSystemCharset = Charset::kIbm866, kLastSystemCharset = Charset::kEucKr;

class TextDecoder {
 public:
  virtual ~TextDecoder() = default;
  // `bytes` in one of the charsets that the system decodes. Every byte sequence converts: what is malformed becomes
  // U+FFFD or a character near to it, and a charset that this system lacks is read as Windows-1252. The time is linear.
  [[nodiscard]] virtual std::string ToUtf8(Charset charset, std::string_view bytes) const = 0;
};

}  // namespace quenlar
