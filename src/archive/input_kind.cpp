#include "archive/input_kind.h"

#include <algorithm>
#include <array>

#include "archive/member_source.h"
#include "archive/warc_head.h"
#include "base/ascii.h"
#include "page/html_blanks.h"

namespace quenlar {
namespace {

// What may stand before the first record of an archive.
constexpr std::string_view kPadding("\r\n\0", 3);

// The "binary data bytes" of the MIME Sniffing Standard.
bool IsBinaryByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte <= 8 || byte == 0x0B || (byte >= 0x0E && byte <= 0x1A) || (byte >= 0x1C && byte <= 0x1F);
}

bool IsUtf16(std::string_view bytes) { return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE"); }

// Documents that begin as text does.
bool IsOtherDocument(std::string_view bytes) {
  constexpr std::array<std::string_view, 3> kBeginnings = {"%PDF-", "%!PS-", "{\\rtf"};
  return std::any_of(kBeginnings.begin(), kBeginnings.end(),
                     [bytes](std::string_view beginning) { return bytes.starts_with(beginning); });
}

// The first text is a tag, a comment or a declaration.
bool IsMarkup(std::string_view text) {
  text = TrimHtmlBlanks(text);
  if (text.size() < 2 || text[0] != '<') return false;
  return IsLetter(text[1]) || text[1] == '!' || text[1] == '?' || text[1] == '/';
}

InputKind KindOfPage(std::string_view bytes) {
  if (IsUtf16(bytes)) {
    std::string text;
    for (const char c : bytes.substr(2)) {
      if (c != '\0') text += c;
    }
    return IsMarkup(text) ? InputKind::kHtml : InputKind::kText;
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return IsMarkup(bytes) ? InputKind::kHtml : InputKind::kText;
}

}  // namespace

InputKind KindOfStream(std::string_view beginning) {
  if (beginning.empty()) return InputKind::kEmpty;
  const std::size_t head = std::min(beginning.find_first_not_of(kPadding), beginning.size());
  if (beginning.size() - head > 6 && BeginsWarcHead(beginning.substr(head))) return InputKind::kWarc;
  if (beginning.starts_with("filedesc://")) return InputKind::kArc;
  if (BeginsGzipMember(beginning)) return InputKind::kGzip;
  if (BeginsZstdFrame(beginning)) return InputKind::kZstd;
  return KindOfPage(beginning);
}

InputKind KindOfInput(std::string_view beginning) {
  const InputKind kind = KindOfStream(beginning);
  if (kind != InputKind::kHtml && kind != InputKind::kText) return kind;
  if (IsUtf16(beginning)) return kind;
  const bool binary = std::any_of(beginning.begin(), beginning.end(), IsBinaryByte);
  return binary || IsOtherDocument(beginning) ? InputKind::kOther : kind;
}

}  // namespace quenlar
