// Tells pages that promise contacts from others, so that a host's contact page is visited before its thousand others.
#pragma once

#include <string_view>

namespace quenlar {

// Whether a path (percent-encoded, as in a URL) or the text of a link (UTF-8) has a word such as contact, imprint or
// team in one of the six languages. A word counts where it begins, so "contacts" does and "subcontact" does not.
[[nodiscard]] bool PromisesContacts(std::string_view path_or_text);

}  // namespace quenlar
