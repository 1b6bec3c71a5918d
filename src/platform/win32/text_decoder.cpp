#include "platform/win32/text_decoder.h"

#include <array>
#include <limits>

#include "base/windows1252.h"
#include "platform/win32/wide.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

// The numbers of the code pages, from kFirstSystemCharset on.
constexpr std::array<UINT, 32> kNumbers = {866,   28592, 28593, 28594, 28595, 28596, 28597, 28598, 28600, 28603, 28604,
                                           28605, 28606, 20866, 21866, 10000, 10007, 874,   1250,  1251,  1253,  1254,
                                           1255,  1256,  1257,  1258,  54936, 950,   20932, 50220, 932,   949};
static_assert(kNumbers.size() ==
              static_cast<std::size_t>(kLastSystemCharset) - static_cast<std::size_t>(kFirstSystemCharset) + 1);

constexpr UINT kGb18030 = 54936, kGbk = 936;

// A system without GB 18030 has GBK, which reads all but its rare characters of four bytes alike.
UINT NumberOf(Charset charset) {
  const UINT number = kNumbers[static_cast<std::size_t>(charset) - static_cast<std::size_t>(kFirstSystemCharset)];
  return number == kGb18030 && !IsValidCodePage(number) ? kGbk : number;
}

}  // namespace

std::string Win32TextDecoder::ToUtf8(Charset charset, std::string_view bytes) const {
  const UINT number = NumberOf(charset);
  if (bytes.empty()) return {};
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    return Windows1252ToUtf8(std::string(bytes));
  }
  const int size = static_cast<int>(bytes.size());
  const int units = MultiByteToWideChar(number, 0, bytes.data(), size, nullptr, 0);
  if (units <= 0) return Windows1252ToUtf8(std::string(bytes));
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  MultiByteToWideChar(number, 0, bytes.data(), size, wide.data(), units);
  return win32::FromWide(wide);
}

}  // namespace quenlar
