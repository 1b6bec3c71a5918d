#include "page/page_endings.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/ascii.h"

namespace quenlar {
namespace {

// The ending as one number; 0 for what is too long for one.
constexpr std::uint64_t KeyOf(std::string_view ending) {
  std::uint64_t key = 0;
  if (ending.size() > 5) return 0;
  for (const char c : ending) key = key << 8 | static_cast<unsigned char>(ToLower(c));
  return key;
}

constexpr std::string_view kEndings =
    "gif jpg jpeg bmp png pcx tif tiff wmf exe zip pdf doc avi mpg mpeg wmv rmvb mp3 wav "
    "webp avif heic svg ico psd eps mp4 m4a m4v mov mkv webm ogg oga ogv opus flac aac css js mjs map json xml rss "
    "atom "
    "woff woff2 ttf otf eot 7z gz tgz bz2 xz zst tar rar iso img dmg msi apk deb rpm jar docx xls xlsx ppt pptx odt "
    "ods "
    "odp epub mobi ics vcf bin swf ";

constexpr auto kKeys = [] {
  std::array<std::uint64_t, std::count(kEndings.begin(), kEndings.end(), ' ')> keys{};
  std::size_t begin = 0;
  for (std::uint64_t& key : keys) {
    const std::size_t end = kEndings.find(' ', begin);
    key = KeyOf(kEndings.substr(begin, end - begin));
    begin = end + 1;
  }
  std::sort(keys.begin(), keys.end());
  return keys;
}();

}  // namespace

bool HasEndingOfNoPage(std::string_view path) {
  const std::size_t dot = path.find_last_of("./");
  if (dot == std::string_view::npos || path[dot] == '/') return false;
  return std::binary_search(kKeys.begin(), kKeys.end(), KeyOf(path.substr(dot + 1)));
}

}  // namespace quenlar
