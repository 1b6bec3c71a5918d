// Small texts out of a page: an attribute's value, the title, the text between two delimiters.
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

// The same without a copy when possible. The view points into `tag` when the value stands there unchanged; otherwise
// the value is put into `buffer` and the view points there.
[[nodiscard]] std::string_view AttributeView(std::string_view tag, std::string_view name, std::string& buffer);

// Returns the text between two delimiters, or "" when one of them is missing. From the start: it begins behind the
// first opening one and ends before the next closing one. From the end: it ends before the last closing one and begins
// behind the nearest opening one before that.
enum class SearchFrom { kStart, kEnd };
[[nodiscard]] std::string_view TextBetween(std::string_view text, std::string_view opening, std::string_view closing,
                                           SearchFrom from);

// Returns a title fit for a list: each control or non-ASCII character becomes one blank, a fixed set of entities is
// replaced, and blanks at the ends are cut.
[[nodiscard]] std::string CleanText(std::string_view text);

// Returns the title of the page after CleanText, or "" when there is none. The title is the first match of
// <TITLE>([\s\S]*?)</TITLE> with letter case ignored; of it counts what stands between the first ">" and the next "<".
[[nodiscard]] std::string GetPageTitle(std::string_view page);

}  // namespace quenlar
