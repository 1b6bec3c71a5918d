#include "platform/posix/iconv_text_decoder.h"

#include <array>
#include <cerrno>

#include <iconv.h>

#include "base/windows1252.h"

namespace quenlar {
namespace {

// The C library's names, from kFirstSystemCharset on.
constexpr std::array kNames = {"IBM866",      "ISO-8859-2", "ISO-8859-3",  "ISO-8859-4",  "ISO-8859-5",  "ISO-8859-6",
                               "ISO-8859-7",  "ISO-8859-8", "ISO-8859-10", "ISO-8859-13", "ISO-8859-14", "ISO-8859-15",
                               "ISO-8859-16", "KOI8-R",     "KOI8-U",      "MACINTOSH",   "MAC-UK",      "CP874",
                               "CP1250",      "CP1251",     "CP1253",      "CP1254",      "CP1255",      "CP1256",
                               "CP1257",      "CP1258",     "GB18030",     "BIG5-HKSCS",  "EUC-JP-MS",   "ISO-2022-JP",
                               "CP932",       "UHC"};
static_assert(kNames.size() ==
              static_cast<std::size_t>(kLastSystemCharset) - static_cast<std::size_t>(kFirstSystemCharset) + 1);

constexpr std::string_view kMalformed = "\xEF\xBF\xBD";  // U+FFFD

class Conversion {
 public:
  explicit Conversion(const char* charset) : handle_(iconv_open("UTF-8", charset)) {}
  ~Conversion() {
    if (ok()) iconv_close(handle_);
  }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  [[nodiscard]] bool ok() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts as much of `bytes` as it can and cuts that off; null writes what the conversion has kept back. Returns 0
  // or the cause of the stop.
  int Append(std::string_view* bytes, std::string& to) {
    std::array<char, 8192> buffer;
    char* out = buffer.data();
    std::size_t room = buffer.size();
    char* in = bytes == nullptr ? nullptr : const_cast<char*>(bytes->data());  // iconv does not write there
    std::size_t left = bytes == nullptr ? 0 : bytes->size();
    const std::size_t result = iconv(handle_, in == nullptr ? nullptr : &in, &left, &out, &room);
    const int cause = result == static_cast<std::size_t>(-1) ? errno : 0;
    to.append(buffer.data(), buffer.size() - room);
    if (bytes != nullptr) bytes->remove_prefix(bytes->size() - left);
    return cause;
  }

 private:
  iconv_t handle_;
};

}  // namespace

std::string IconvTextDecoder::ToUtf8(Charset charset, std::string_view bytes) const {
  Conversion conversion(kNames[static_cast<std::size_t>(charset) - static_cast<std::size_t>(kFirstSystemCharset)]);
  if (!conversion.ok()) return Windows1252ToUtf8(std::string(bytes));
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 2);
  while (!bytes.empty()) {
    const int cause = conversion.Append(&bytes, text);
    if (cause == 0 || cause == E2BIG || bytes.empty()) continue;
    text += kMalformed;
    bytes.remove_prefix(cause == EINVAL ? bytes.size() : 1);  // EINVAL: the text breaks off within a character
  }
  conversion.Append(nullptr, text);
  return text;
}

}  // namespace quenlar
