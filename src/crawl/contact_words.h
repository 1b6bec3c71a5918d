// Tells pages that promise contacts from others, so that a host's contact page is visited before its thousand others.
#pragma once

#include <string_view>

namespace quenlar {

// How early a page is visited among those of one depth of its host. The lowest comes first.
inline constexpr int kPromisesContacts = 0;  // contact, imprint, team and their like
inline constexpr int kMayHoldContacts = 1;   // privacy, jobs, branches and their like, and what lies below the former
inline constexpr int kNoContacts = 2;

// What a path promises (percent-encoded, as in a URL) by words in one of the six languages. A word counts where it
// begins, so "contacts" does and "subcontact" does not. One in the last name of the path counts more than one before.
[[nodiscard]] int ContactRankOfPath(std::string_view path);

// What the text of a link promises (UTF-8), in the same way. A long text promises less than a short one.
[[nodiscard]] int ContactRankOfText(std::string_view text);

}  // namespace quenlar
