// The names of tags that matter when a page is read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/ascii.h"

namespace quenlar {

// What is special about an element, as bits.
enum TagTrait : std::uint8_t {
  kInline = 1,       // its tags do not end a word
  kNoContent = 2,    // "void" in the HTML Standard: it has no end tag
  kEndsForeign = 4,  // its start tag ends svg and math around it
  kBlock = 8,        // its start tag ends an open <p>
  kRawText = 16,     // its content is text up to its end tag
  kOutOfPlace = 32,  // its tags are passed over in a body outside of tables
};

// `tag_names::kList` has their spellings, in the same order.
enum class TagName : std::uint8_t {
  kOther,
  // Inline
  kA,
  kAbbr,
  kB,
  kBdi,
  kBdo,
  kBig,
  kCite,
  kCode,
  kDel,
  kEm,
  kFont,
  kI,
  kIns,
  kKbd,
  kLabel,
  kMark,
  kQ,
  kS,
  kSamp,
  kSmall,
  kSpan,
  kStrong,
  kSub,
  kSup,
  kTt,
  kU,
  kVar,
  kWbr,
  // Links, titles and words for robots
  kArea,
  kBase,
  kFrame,
  kIframe,
  kLink,
  kMeta,
  kTitle,
  // Raw text; <title> and <iframe> are as well
  kScript,
  kStyle,
  kTextarea,
  kXmp,
  kNoembed,
  kNoframes,
  kPlaintext,
  // Foreign content, and where HTML begins again in it
  kSvg,
  kMath,
  kForeignObject,
  kDesc,
  kAnnotationXml,
  kMi,
  kMo,
  kMn,
  kMs,
  kMtext,
  // Blocks
  kAddress,
  kArticle,
  kAside,
  kBlockquote,
  kBody,
  kCenter,
  kDetails,
  kDialog,
  kDir,
  kDiv,
  kDl,
  kFieldset,
  kFigcaption,
  kFigure,
  kFooter,
  kForm,
  kH1,
  kH2,
  kH3,
  kH4,
  kH5,
  kH6,
  kHead,
  kHeader,
  kHgroup,
  kHr,
  kHtml,
  kListing,
  kMain,
  kMenu,
  kNav,
  kOl,
  kP,
  kPre,
  kSearch,
  kSection,
  kSummary,
  kTable,
  kUl,
  // Others that end themselves, or each other
  kBr,
  kCol,
  kDd,
  kDt,
  kEmbed,
  kImg,
  kInput,
  kLi,
  kNobr,
  kOptgroup,
  kOption,
  kParam,
  kRuby,
  kSource,
  kStrike,
  kTd,
  kTh,
  kTr,
  kTrack,
  kCount
};

namespace tag_names {

struct Entry {
  std::string_view text;
  std::uint8_t traits;
};

inline constexpr std::array<Entry, static_cast<std::size_t>(TagName::kCount)> kList = {{
    {"", 0},
    {"a", kInline},
    {"abbr", kInline},
    {"b", kInline | kEndsForeign},
    {"bdi", kInline},
    {"bdo", kInline},
    {"big", kInline | kEndsForeign},
    {"cite", kInline},
    {"code", kInline | kEndsForeign},
    {"del", kInline},
    {"em", kInline | kEndsForeign},
    {"font", kInline},
    {"i", kInline | kEndsForeign},
    {"ins", kInline},
    {"kbd", kInline},
    {"label", kInline},
    {"mark", kInline},
    {"q", kInline},
    {"s", kInline | kEndsForeign},
    {"samp", kInline},
    {"small", kInline | kEndsForeign},
    {"span", kInline | kEndsForeign},
    {"strong", kInline | kEndsForeign},
    {"sub", kInline | kEndsForeign},
    {"sup", kInline | kEndsForeign},
    {"tt", kInline | kEndsForeign},
    {"u", kInline | kEndsForeign},
    {"var", kInline | kEndsForeign},
    {"wbr", kInline | kNoContent},
    {"area", kNoContent},
    {"base", kNoContent},
    {"frame", kNoContent},
    {"iframe", kRawText},
    {"link", kNoContent},
    {"meta", kNoContent | kEndsForeign},
    {"title", kRawText},
    {"script", kRawText},
    {"style", kRawText},
    {"textarea", kRawText},
    {"xmp", kRawText | kBlock},
    {"noembed", kRawText},
    {"noframes", kRawText},
    {"plaintext", kRawText | kBlock},
    {"svg", 0},
    {"math", 0},
    {"foreignobject", 0},
    {"desc", 0},
    {"annotation-xml", 0},
    {"mi", 0},
    {"mo", 0},
    {"mn", 0},
    {"ms", 0},
    {"mtext", 0},
    {"address", kBlock},
    {"article", kBlock},
    {"aside", kBlock},
    {"blockquote", kBlock | kEndsForeign},
    {"body", kEndsForeign | kOutOfPlace},
    {"center", kBlock | kEndsForeign},
    {"details", kBlock},
    {"dialog", kBlock},
    {"dir", kBlock},
    {"div", kBlock | kEndsForeign},
    {"dl", kBlock | kEndsForeign},
    {"fieldset", kBlock},
    {"figcaption", kBlock},
    {"figure", kBlock},
    {"footer", kBlock},
    {"form", kBlock},
    {"h1", kBlock | kEndsForeign},
    {"h2", kBlock | kEndsForeign},
    {"h3", kBlock | kEndsForeign},
    {"h4", kBlock | kEndsForeign},
    {"h5", kBlock | kEndsForeign},
    {"h6", kBlock | kEndsForeign},
    {"head", kEndsForeign | kOutOfPlace},
    {"header", kBlock},
    {"hgroup", kBlock},
    {"hr", kBlock | kNoContent | kEndsForeign},
    {"html", kOutOfPlace},
    {"listing", kBlock | kEndsForeign},
    {"main", kBlock},
    {"menu", kBlock | kEndsForeign},
    {"nav", kBlock},
    {"ol", kBlock | kEndsForeign},
    {"p", kBlock | kEndsForeign},
    {"pre", kBlock | kEndsForeign},
    {"search", kBlock},
    {"section", kBlock},
    {"summary", kBlock},
    {"table", kBlock | kEndsForeign},
    {"ul", kBlock | kEndsForeign},
    {"br", kNoContent | kEndsForeign},
    {"col", kNoContent},
    {"dd", kEndsForeign},
    {"dt", kEndsForeign},
    {"embed", kNoContent | kEndsForeign},
    {"img", kNoContent | kEndsForeign},
    {"input", kNoContent},
    {"li", kEndsForeign},
    {"nobr", kEndsForeign},
    {"optgroup", 0},
    {"option", 0},
    {"param", kNoContent},
    {"ruby", kEndsForeign},
    {"source", kNoContent},
    {"strike", kEndsForeign},
    {"td", kOutOfPlace},
    {"th", kOutOfPlace},
    {"tr", kOutOfPlace},
    {"track", kNoContent},
}};

// The first eight letters in one word, small; a shorter name is filled up with zeros.
constexpr std::uint64_t KeyOf(std::string_view lower_name) {
  std::uint64_t key = 0;
  for (std::size_t i = 0; i < lower_name.size() && i < 8; ++i) {
    key |= static_cast<std::uint64_t>(static_cast<unsigned char>(lower_name[i])) << (8 * i);
  }
  return key;
}

inline constexpr std::size_t kSlots = 1024;

struct Slot {
  std::uint64_t key = 0;
  std::uint32_t size = 0;
  TagName name = TagName::kOther;
};

constexpr std::size_t SlotOf(std::uint64_t key, std::uint64_t factor) { return key * factor >> 54; }

// A factor that puts every name into a slot of its own. The search begins at the one found for today's list, so that it
// stays within the steps that compilers allow.
inline constexpr std::uint64_t kFactor = [] {
  for (std::uint64_t factor = 0x935C7B21058CB2A3u;; factor += 0xD6E8FEB86659FD92u) {
    std::array<bool, kSlots> used{};
    bool alone = true;
    for (std::size_t i = 1; i < kList.size() && alone; ++i) {
      bool& slot = used[SlotOf(KeyOf(kList[i].text), factor)];
      alone = !slot;
      slot = true;
    }
    if (alone) return factor;
  }
}();

inline constexpr auto kTable = [] {
  std::array<Slot, kSlots> table{};
  for (std::size_t i = 1; i < kList.size(); ++i) {
    const std::uint64_t key = KeyOf(kList[i].text);
    table[SlotOf(key, kFactor)] = {key, static_cast<std::uint32_t>(kList[i].text.size()), static_cast<TagName>(i)};
  }
  return table;
}();

}  // namespace tag_names

[[nodiscard]] constexpr std::string_view TagText(TagName name) {
  return tag_names::kList[static_cast<std::size_t>(name)].text;
}
[[nodiscard]] constexpr bool Has(TagName name, std::uint8_t traits) {
  return (tag_names::kList[static_cast<std::size_t>(name)].traits & traits) != 0;
}

// A number for a tag's name, `text` as written: one a name, except that two unusual names may share one.
[[nodiscard]] inline std::uint32_t TagId(TagName name, std::string_view text) {
  if (name != TagName::kOther) return static_cast<std::uint32_t>(name);
  std::uint32_t id = 2166136261u;
  for (const char c : text) id = (id ^ static_cast<unsigned char>(ToLower(c))) * 16777619u;
  return id | 0x10000u;
}

// The name page[begin, begin + size) in any letter case; kOther where it is not in the list. `size` is not 0.
[[nodiscard]] inline TagName FindTagName(std::string_view page, std::size_t begin, std::size_t size) {
  const std::string_view name = page.substr(begin, size);
  std::uint64_t key = 0;
  if (page.size() - begin >= sizeof key)
    std::memcpy(&key, name.data(), sizeof key);
  else
    std::memcpy(&key, name.data(), page.size() - begin);
  if (size < sizeof key) key &= (std::uint64_t{1} << (8 * size)) - 1;
  key = LowerEight(key);
  const tag_names::Slot& slot = tag_names::kTable[tag_names::SlotOf(key, tag_names::kFactor)];
  // Both are compared before either is judged: which names come next is nothing that a processor can foresee.
  const bool known = static_cast<unsigned>(slot.key == key) & static_cast<unsigned>(slot.size == size);
  const TagName found = known ? slot.name : TagName::kOther;
  if (size <= sizeof key || !known) return found;
  return EqualsIgnoreCase(TagText(found), name) ? found : TagName::kOther;
}

namespace tag_names {

// A letter of a name by its lowest five bits. 0 stands for what is not a letter, behind the end of a name.
constexpr std::size_t LetterOf(char c) { return c >= '@' ? static_cast<std::size_t>(c & 31) : 0; }

// Sets of beginnings of names: bit `third` of word [first][second] stands for the first three letters.
using Beginnings = std::array<std::array<std::uint32_t, 32>, 32>;

constexpr bool HasBeginning(const Beginnings& beginnings, char first, char second, char third) {
  return (beginnings[LetterOf(first)][LetterOf(second)] >> LetterOf(third) & 1) != 0;
}

// Adds the beginning of a name of the list. Behind the end of a short one anything may stand.
constexpr void AddBeginning(Beginnings& beginnings, std::string_view name) {
  std::uint32_t& thirds = beginnings[LetterOf(name[0])][name.size() > 1 ? LetterOf(name[1]) : 0];
  thirds |= name.size() > 2 ? std::uint32_t{1} << LetterOf(name[2]) : name.size() == 2 ? 1 : ~std::uint32_t{0};
}

// Of the names that matter for the title, the words for robots and the base, and of what holds no markup or another
// kind of it. `links`: of those that matter for links besides.
constexpr Beginnings WantedBeginnings(bool links) {
  Beginnings beginnings{};
  for (std::size_t i = 1; i < kList.size(); ++i) {
    if ((kList[i].traits & kRawText) != 0) AddBeginning(beginnings, kList[i].text);
  }
  for (const std::string_view name : {"base", "meta", "svg", "math"}) AddBeginning(beginnings, name);
  if (!links) return beginnings;
  for (const std::string_view name : {"a", "area", "frame", "iframe", "link"}) AddBeginning(beginnings, name);
  return beginnings;
}
inline constexpr Beginnings kWithLinks = WantedBeginnings(true), kWithoutLinks = WantedBeginnings(false);

// Of the names that are not those of inline elements, by their first two letters in the same way.
inline constexpr auto kNotInline = [] {
  std::array<std::uint32_t, 32> beginnings{};
  for (std::size_t i = 1; i < kList.size(); ++i) {
    const std::string_view name = kList[i].text;
    if ((kList[i].traits & kInline) == 0) continue;
    beginnings[LetterOf(name[0])] |= std::uint32_t{1} << (name.size() > 1 ? LetterOf(name[1]) : 0);
  }
  for (std::uint32_t& seconds : beginnings) seconds = ~seconds;
  return beginnings;
}();

}  // namespace tag_names

// Whether a tag whose name begins with these two bytes, the first one a letter, is certainly not that of an inline
// element.
[[nodiscard]] constexpr bool IsSurelyNotInline(char first, char second) {
  return (tag_names::kNotInline[tag_names::LetterOf(first)] >> tag_names::LetterOf(second) & 1) != 0;
}

}  // namespace quenlar
