// Turns the targets of anchors and frames into absolute addresses, and decides which of them are queued, and where.
//
//   const std::string address = ResolveLink("c.html", "http://shop.de/a/b.html");  // "http://shop.de/a/c.html"
//   if (!address.empty()) QueueLink(project, settings, address, "http://shop.de/a/b.html", "1");
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "state/run_state.h"
#include "state/settings.h"

namespace quenlar {

// Returns the absolute address of `target`, a target on the page at the address `page`. Returns "" for a target that is
// never followed, such as "javascript:" and "mailto:". The rules are the program's own and simpler than those of RFC
// 3986; tests/web/links_test.cpp has them as a table.
[[nodiscard]] std::string ResolveLink(std::string_view target, std::string_view page);

// The two link builders. Both drop an address that is not to be followed, and cut one trailing "/" off any other. A
// link to another site goes to level 0 with number 1, and only one link of each site; a project by address drops it
// unless CorrelationMode is 1. Both return whether they have queued the address. They do not pump.

// Queues a link that stands on a page of level 0. `level_digit` is one character that names the queue for links to the
// page's own site: "1" to "9" for the levels 1 to 9, "0" for level 10. Any other character drops such links.
bool QueueLink(Project& project, const Settings& settings, std::string_view address, std::string_view page,
               std::string_view level_digit);

// Queues a link that stands on a page of `level` (1 to 10). A link to the page's own site goes to the same level with
// `number` + 1, where `number` is that of the page.
bool QueueExpandLink(Project& project, const Settings& settings, int level, std::string_view address,
                     std::string_view page, std::int16_t number);

// Returns what the link builder of `level` would queue for `address`: a view of it without its trailing "/". Empty when
// it would drop the address whatever the queues hold.
[[nodiscard]] std::optional<std::string_view> FollowedAddress(int level, std::string_view address);

// ResolveLink for the many targets of one page, almost without copies: what stands in front of a target is prepared
// once for the page.
class LinkResolver {
 public:
  // `page` is the page's address. It is copied.
  explicit LinkResolver(std::string_view page);

  // The same as ResolveLink. The result points into `target` or into the resolver and is valid until the next call.
  [[nodiscard]] std::string_view Resolve(std::string_view target);

 private:
  // A text behind which one target after the other is put.
  class Front {
   public:
    explicit Front(std::string text) : text_(std::move(text)), length_(text_.size()) {}
    std::string_view With(std::string_view target) {
      text_.resize(length_);
      return text_.append(target);
    }

   private:
    std::string text_;
    std::size_t length_;
  };

  Front page_, site_, root_, folder_;
  std::string bare_host_;  // the last target that was just a host, with the "/" that it needs
};

}  // namespace quenlar
