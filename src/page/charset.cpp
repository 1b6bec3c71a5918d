#include "page/charset.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "base/windows1252.h"
#include "page/attributes.h"
#include "page/html_blanks.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

struct Labels {
  Charset charset;
  std::string_view labels;  // in lower case, parted by blanks
};
// The table "Names and labels" of the Encoding Standard.
constexpr Labels kLabels[] = {
    {Charset::kUtf8, "unicode-1-1-utf-8 unicode11utf8 unicode20utf8 utf-8 utf8 x-unicode20utf8"},
    {Charset::kIbm866, "866 cp866 csibm866 ibm866"},
    {Charset::kIso8859Part2,
     "csisolatin2 iso-8859-2 iso-ir-101 iso8859-2 iso88592 iso_8859-2 iso_8859-2:1987 l2 latin2"},
    {Charset::kIso8859Part3,
     "csisolatin3 iso-8859-3 iso-ir-109 iso8859-3 iso88593 iso_8859-3 iso_8859-3:1988 l3 latin3"},
    {Charset::kIso8859Part4,
     "csisolatin4 iso-8859-4 iso-ir-110 iso8859-4 iso88594 iso_8859-4 iso_8859-4:1988 l4 latin4"},
    {Charset::kIso8859Part5,
     "csisolatincyrillic cyrillic iso-8859-5 iso-ir-144 iso8859-5 iso88595 iso_8859-5 iso_8859-5:1988"},
    {Charset::kIso8859Part6,
     "arabic asmo-708 csiso88596e csiso88596i csisolatinarabic ecma-114 iso-8859-6 iso-8859-6-e "
     "iso-8859-6-i iso-ir-127 iso8859-6 iso88596 iso_8859-6 iso_8859-6:1987"},
    {Charset::kIso8859Part7,
     "csisolatingreek ecma-118 elot_928 greek greek8 iso-8859-7 iso-ir-126 iso8859-7 iso88597 "
     "iso_8859-7 iso_8859-7:1987 sun_eu_greek"},
    {Charset::kIso8859Part8,
     "csiso88598e csiso88598i csisolatinhebrew hebrew iso-8859-8 iso-8859-8-e iso-8859-8-i iso-ir-138 "
     "iso8859-8 iso88598 iso_8859-8 iso_8859-8:1988 logical visual"},
    {Charset::kIso8859Part10, "csisolatin6 iso-8859-10 iso-ir-157 iso8859-10 iso885910 l6 latin6"},
    {Charset::kIso8859Part13, "iso-8859-13 iso8859-13 iso885913"},
    {Charset::kIso8859Part14, "iso-8859-14 iso8859-14 iso885914"},
    {Charset::kIso8859Part15, "csisolatin9 iso-8859-15 iso8859-15 iso885915 iso_8859-15 l9"},
    {Charset::kIso8859Part16, "iso-8859-16"},
    {Charset::kKoi8R, "cskoi8r koi koi8 koi8-r koi8_r"},
    {Charset::kKoi8U, "koi8-ru koi8-u"},
    {Charset::kMacintosh, "csmacintosh mac macintosh x-mac-roman"},
    {Charset::kWindows874, "dos-874 iso-8859-11 iso8859-11 iso885911 tis-620 windows-874"},
    {Charset::kWindows1250, "cp1250 windows-1250 x-cp1250"},
    {Charset::kWindows1251, "cp1251 windows-1251 x-cp1251"},
    {Charset::kWindows1252,
     "ansi_x3.4-1968 ascii cp1252 cp819 csisolatin1 ibm819 iso-8859-1 iso-ir-100 iso8859-1 iso88591 "
     "iso_8859-1 iso_8859-1:1987 l1 latin1 us-ascii windows-1252 x-cp1252"},
    {Charset::kWindows1253, "cp1253 windows-1253 x-cp1253"},
    {Charset::kWindows1254,
     "cp1254 csisolatin5 iso-8859-9 iso-ir-148 iso8859-9 iso88599 iso_8859-9 iso_8859-9:1989 l5 latin5 "
     "windows-1254 x-cp1254"},
    {Charset::kWindows1255, "cp1255 windows-1255 x-cp1255"},
    {Charset::kWindows1256, "cp1256 windows-1256 x-cp1256"},
    {Charset::kWindows1257, "cp1257 windows-1257 x-cp1257"},
    {Charset::kWindows1258, "cp1258 windows-1258 x-cp1258"},
    {Charset::kMacCyrillic, "x-mac-cyrillic x-mac-ukrainian"},
    {Charset::kGb18030, "chinese csgb2312 csiso58gb231280 gb18030 gb2312 gb_2312 gb_2312-80 gbk iso-ir-58 x-gbk"},
    {Charset::kBig5, "big5 big5-hkscs cn-big5 csbig5 x-x-big5"},
    {Charset::kEucJp, "cseucpkdfmtjapanese euc-jp x-euc-jp"},
    {Charset::kIso2022Jp, "csiso2022jp iso-2022-jp"},
    {Charset::kShiftJis, "csshiftjis ms932 ms_kanji shift-jis shift_jis sjis windows-31j x-sjis"},
    {Charset::kEucKr,
     "cseuckr csksc56011987 euc-kr iso-ir-149 korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 ksc_5601 "
     "windows-949"},
    {Charset::kUtf16Be, "unicodefffe utf-16be"},
    {Charset::kUtf16Le, "csunicode iso-10646-ucs-2 ucs-2 unicode unicodefeff utf-16 utf-16le"},
    {Charset::kUserDefined, "x-user-defined"},
    {Charset::kReplacement, "csiso2022kr hz-gb-2312 iso-2022-cn iso-2022-cn-ext iso-2022-kr replacement"},
};

constexpr std::size_t kPrescanned = 1024;  // bytes
constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// "Extracting a character encoding from a meta element": what follows "charset=" in a content attribute.
std::string_view CharsetInContent(std::string_view content) {
  constexpr std::string_view kName = "charset";
  for (std::size_t at = FindIgnoreCase(content, kName); at != std::string_view::npos;
       at = FindIgnoreCase(content, kName, at)) {
    at += kName.size();
    while (at < content.size() && IsHtmlBlank(content[at])) ++at;
    if (at >= content.size() || content[at] != '=') continue;
    ++at;
    while (at < content.size() && IsHtmlBlank(content[at])) ++at;
    if (at >= content.size()) return {};
    const char quote = content[at];
    if (quote == '"' || quote == '\'') {
      const std::size_t end = content.find(quote, at + 1);
      return end == std::string_view::npos ? std::string_view() : content.substr(at + 1, end - at - 1);
    }
    std::size_t end = at;
    while (end < content.size() && !IsHtmlBlank(content[end]) && content[end] != ';') ++end;
    return content.substr(at, end - at);
  }
  return {};
}

// What a <meta> says; `attributes` stands behind its name.
std::optional<Charset> CharsetOfMeta(AttributeReader& attributes) {
  bool pragma = false, named = false, has_content = false, has_pragma = false;
  std::string_view label, in_content;
  for (TagAttribute attribute; attributes.Next(attribute);) {
    if (EqualsIgnoreCase(attribute.name, "charset") && !named) {
      named = true;
      label = attribute.value;
    } else if (EqualsIgnoreCase(attribute.name, "content") && !has_content) {
      has_content = true;
      in_content = CharsetInContent(attribute.value);
    } else if (EqualsIgnoreCase(attribute.name, "http-equiv") && !has_pragma) {
      has_pragma = true;
      pragma = EqualsIgnoreCase(attribute.value, "content-type");
    }
  }
  if (!named && pragma) label = in_content;
  if (attributes.end() == std::string_view::npos) return std::nullopt;
  const std::optional<Charset> charset = CharsetOfLabel(label);
  // A page whose <meta> can be read is not in UTF-16.
  if (charset == Charset::kUtf16Be || charset == Charset::kUtf16Le) return Charset::kUtf8;
  if (charset == Charset::kUserDefined) return Charset::kWindows1252;
  return charset;
}

// "Prescan a byte stream to determine its encoding". Other than the tokenizer it knows no raw text.
std::optional<Charset> Prescan(std::string_view bytes) {
  for (std::size_t at = FindByte(bytes, '<'); at < bytes.size(); at = FindByte(bytes, '<', at)) {
    const std::string_view rest = bytes.substr(at + 1);
    if (rest.starts_with("!--")) {
      at = bytes.find("-->", at + 2);
      if (at == std::string_view::npos) break;
      continue;
    }
    const bool end_tag = rest.starts_with("/");
    const std::size_t letter = at + (end_tag ? 2 : 1);
    if (letter < bytes.size() && IsLetter(bytes[letter])) {
      std::size_t name_end = letter;
      while (name_end < bytes.size() && !IsHtmlBlank(bytes[name_end]) && bytes[name_end] != '>' &&
             bytes[name_end] != '/') {
        ++name_end;
      }
      AttributeReader attributes(bytes, name_end);
      if (!end_tag && EqualsIgnoreCase(bytes.substr(letter, name_end - letter), "meta")) {
        if (const std::optional<Charset> charset = CharsetOfMeta(attributes)) return charset;
      } else {
        for (TagAttribute attribute; attributes.Next(attribute);) {
        }
      }
      at = attributes.end();
      if (at == std::string_view::npos) break;
    } else if (!rest.empty() && (rest[0] == '!' || rest[0] == '/' || rest[0] == '?')) {
      at = FindByte(bytes, '>', at);
      if (at == std::string_view::npos) break;
    } else {
      ++at;
    }
  }
  return std::nullopt;
}

struct ByteOrderMark {
  std::string_view bytes;
  Charset charset;
};
constexpr ByteOrderMark kByteOrderMarks[] = {
    {"\xEF\xBB\xBF", Charset::kUtf8}, {"\xFE\xFF", Charset::kUtf16Be}, {"\xFF\xFE", Charset::kUtf16Le}};

std::string FromUtf16(std::string_view bytes, bool big_endian) {
  std::string text;
  text.reserve(bytes.size() / 2);
  const auto unit = [&](std::size_t at) -> char32_t {
    const auto first = static_cast<unsigned char>(bytes[at]), second = static_cast<unsigned char>(bytes[at + 1]);
    return big_endian ? first << 8 | second : second << 8 | first;
  };
  std::size_t at = 0;
  for (; at + 1 < bytes.size(); at += 2) {
    char32_t code = unit(at);
    const char32_t next = code >= 0xD800 && code < 0xDC00 && at + 3 < bytes.size() ? unit(at + 2) : 0;
    if (next >= 0xDC00 && next < 0xE000) {
      code = 0x10000 + ((code - 0xD800) << 10) + (next - 0xDC00);
      at += 2;
    }
    AppendUtf8(code >= 0xD800 && code < 0xE000 ? 0xFFFD : code, text);
  }
  if (at < bytes.size()) text += kReplacementCharacter;
  return text;
}

std::string FromUserDefined(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(byte < 0x80 ? byte : 0xF700u + byte, text);
  }
  return text;
}

}  // namespace

std::optional<Charset> CharsetOfLabel(std::string_view label) {
  const std::string wanted = Lower(TrimHtmlBlanks(label));
  if (wanted.empty() || wanted.find(' ') != std::string::npos) return std::nullopt;
  for (const Labels& row : kLabels) {
    for (std::size_t at = row.labels.find(wanted); at != std::string_view::npos; at = row.labels.find(wanted, at + 1)) {
      const std::size_t end = at + wanted.size();
      if ((at == 0 || row.labels[at - 1] == ' ') && (end == row.labels.size() || row.labels[end] == ' ')) {
        return row.charset;
      }
    }
  }
  return std::nullopt;
}

ContentType ParseContentType(std::string_view value) {
  ContentType parsed;
  const std::size_t type_end = std::min(value.find(';'), value.size());
  parsed.type = TrimHtmlBlanks(value.substr(0, type_end));
  for (std::size_t at = type_end; at < value.size();) {
    const std::size_t name_begin = at + 1;
    const std::size_t name_end = value.find_first_of("=;", name_begin);
    if (name_end == std::string_view::npos) break;
    at = name_end;
    if (value[name_end] == ';') continue;
    std::size_t begin = name_end + 1;
    while (begin < value.size() && IsHtmlBlank(value[begin])) ++begin;
    std::string_view parameter;
    if (begin < value.size() && value[begin] == '"') {
      const std::size_t end = std::min(value.find('"', begin + 1), value.size());
      parameter = value.substr(begin + 1, end - begin - 1);
      at = std::min(value.find(';', end), value.size());
    } else {
      at = std::min(value.find(';', begin), value.size());
      parameter = TrimHtmlBlanks(value.substr(begin, at - begin));
    }
    if (!EqualsIgnoreCase(TrimHtmlBlanks(value.substr(name_begin, name_end - name_begin)), "charset")) continue;
    parsed.charset = parameter;
    break;
  }
  return parsed;
}

Charset CharsetOfPage(std::string_view bytes, std::string_view content_type) {
  for (const ByteOrderMark& mark : kByteOrderMarks) {
    if (bytes.starts_with(mark.bytes)) return mark.charset;
  }
  if (const auto charset = CharsetOfLabel(ParseContentType(content_type).charset)) return *charset;
  return Prescan(bytes.substr(0, kPrescanned)).value_or(Charset::kWindows1252);
}

bool MayNotBeAscii(std::string_view bytes, std::string_view content_type) {
  // A <meta> can name one such charset alone, whose labels have this number in them.
  constexpr std::string_view kNumber = "2022";
  const bool may_be_named = bytes.substr(0, kPrescanned).find(kNumber) != std::string_view::npos;
  const bool marked = bytes.starts_with('\xFE') || bytes.starts_with('\xFF');
  if (!marked && !may_be_named && ParseContentType(content_type).charset.empty()) return false;
  const Charset charset = CharsetOfPage(bytes, content_type);
  return charset == Charset::kUtf16Be || charset == Charset::kUtf16Le || charset == Charset::kIso2022Jp;
}

std::string_view PageAsUtf8(std::string_view bytes, Charset charset, const TextDecoder& decoder, std::string& storage) {
  for (const ByteOrderMark& mark : kByteOrderMarks) {
    if (mark.charset == charset && bytes.starts_with(mark.bytes)) bytes.remove_prefix(mark.bytes.size());
  }
  switch (charset) {
    case Charset::kUtf8:
      return bytes;
    case Charset::kUtf16Be:
    case Charset::kUtf16Le:
      storage = FromUtf16(bytes, charset == Charset::kUtf16Be);
      return storage;
    case Charset::kReplacement:
      storage = bytes.empty() ? std::string_view() : kReplacementCharacter;
      return storage;
    case Charset::kIso2022Jp:  // its bytes are ASCII, but do not mean it
      break;
    default:
      if (IsAscii(bytes)) return bytes;
  }
  if (charset == Charset::kWindows1252)
    storage = Windows1252ToUtf8(std::string(bytes));
  else if (charset == Charset::kUserDefined)
    storage = FromUserDefined(bytes);
  else
    storage = decoder.ToUtf8(charset, bytes);
  return storage;
}

std::string_view WellFormed(std::string_view text, std::string& storage) {
  if (IsAscii(text)) return text;
  storage.clear();
  bool malformed = false;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t bytes = DecodeUtf8(text.substr(at)).bytes;
    malformed = malformed || bytes == 0;
    storage += bytes == 0 ? kReplacementCharacter : text.substr(at, bytes);
    at += std::max<std::size_t>(bytes, 1);
  }
  return malformed ? std::string_view(storage) : text;
}

}  // namespace quenlar
