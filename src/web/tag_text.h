// Small texts out of a page: an attribute's value, the title, what stands between two delimiters.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// Returns the value of an attribute of one tag, or "" when the tag does not have it. `name` is in lower case and ends
// in "=" ("href="). `tag` is the text between "<" and ">".
//
// The name is found anywhere in the tag, so "href=" also matches inside "data-href=". Which value is read decides which
// links are followed, so the rule stays as it is. Kept: GetAttributeValue.ReadsQuotedAndBareValues.
[[nodiscard]] std::string GetAttributeValue(std::string_view tag, std::string_view name);

// The same as a view: into `tag` where the value stands there as it is, else into `buffer`, which then is overwritten.
[[nodiscard]] std::string_view AttributeView(std::string_view tag, std::string_view name, std::string& buffer);

// The text between two delimiters: behind the first opening one and before the next closing one, or, searched from the
// end, before the last closing one and behind the opening one before it. "" when either is missing.
enum class SearchFrom { kStart, kEnd };
[[nodiscard]] std::string_view TextBetween(std::string_view text, std::string_view opening, std::string_view closing,
                                           SearchFrom from);

// Blanks out control and non-ASCII characters (one blank a character), replaces a fixed set of entities, trims.
[[nodiscard]] std::string CleanText(std::string_view text);

// The cleaned inner text of the first match of <TITLE>([\s\S]*?)</TITLE> (case-insensitive), from the match's first
// ">" to the next "<"; "" without a match.
[[nodiscard]] std::string GetPageTitle(std::string_view page);

}  // namespace quenlar
