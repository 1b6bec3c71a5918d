// Turns the targets of anchors and frames into absolute addresses and decides which of them are queued, and where.
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

// The absolute address of `target` on the page at `page`, or "" when the target is not to be followed.
[[nodiscard]] std::string ResolveLink(std::string_view target, std::string_view page);

// The link builders drop what is not to be followed and cut a trailing "/" off the rest. A link to another site goes to
// level 0, once a site, with number 1; a URL project drops it unless CorrelationMode is 1. True when something was
// queued.

// Queues a link found on a level-0 page. `level_digit` is one character: "1" to "9" name the queue of that level,
// "0" that of level 10, anything else queues no link of the same site.
bool MakeLink(Project& project, const Settings& settings, std::string_view address, std::string_view page,
              std::string_view level_digit);

// Queues a link found on a page of `level` (1 to 10), with `number` + 1 for one of the same site.
bool MakeExpandLink(Project& project, const Settings& settings, int level, std::string_view address,
                    std::string_view page, std::int16_t number);

// What the link builder of a level would queue: the address without a trailing "/", or empty when it is dropped
// whatever the queues hold.
[[nodiscard]] std::optional<std::string_view> FollowedAddress(int level, std::string_view address);

// ResolveLink for the many targets of one page.
class LinkResolver {
 public:
  explicit LinkResolver(std::string_view page);

  // A view into `target` or into the resolver, valid until the next call.
  [[nodiscard]] std::string_view Resolve(std::string_view target);

 private:
  // What targets are put behind, one in place of the other.
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
  std::string bare_host_;  // the last target that was a host and nothing else
};

}  // namespace quenlar
