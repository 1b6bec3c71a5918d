// Addresses by the URL Standard: what is accepted is clean ASCII, is the same when it is read again, with any base, and
// its parts make up the whole.
#include <optional>
#include <string>

#include "fuzz/target.h"
#include "page/url.h"
#include "page/url_host.h"
#include "support/fake_idna.h"

using namespace quenlar;

namespace {

void CheckParts(const Url& url) {
  for (const char c : url.href()) FUZZ_CHECK(c > 0x20 && c < 0x7F);
  FUZZ_CHECK(url.href().find_first_of("#<>") == std::string::npos);
  const std::string target = std::string(url.path()) + std::string(url.query());
  FUZZ_CHECK(target == url.target() && url.href().ends_with(target));
  FUZZ_CHECK(url.target().find('"') == std::string::npos);
  FUZZ_CHECK(url.path().starts_with('/') && url.path().find_first_of("?\\ {}^`") == std::string::npos);
  FUZZ_CHECK(url.query().empty() || url.query().starts_with('?'));
  FUZZ_CHECK(("/" + std::string(url.path().substr(1)) + "/").find("/../") == std::string::npos);
  FUZZ_CHECK((std::string(url.path()) + "/").find("/./") == std::string::npos);
  FUZZ_CHECK(!url.host().empty() && url.host().find_first_of("/?#@\\% ABCXYZ") == std::string::npos);
  FUZZ_CHECK(url.PageKey().starts_with(url.host()) && url.href().ends_with(url.PageKey()));
  FUZZ_CHECK(url.href().starts_with(std::string(url.scheme()) + "://"));
  FUZZ_CHECK(url.ip().has_value() || url.host().front() != '[');
}

void CheckAgain(const Url& url, const Idna& idna) {
  const std::optional<Url> other = ParseUrl("https://other:81/a/b?c", nullptr, idna);
  for (const Url* base : {static_cast<const Url*>(nullptr), &*other, &url}) {
    const std::optional<Url> again = ParseUrl(url.href(), base, idna);
    FUZZ_CHECK(again && *again == url);
    FUZZ_CHECK(again->host() == url.host() && again->port() == url.port() && again->path() == url.path());
    FUZZ_CHECK(again->query() == url.query());
  }
  // Relative to itself it is found again by its path and query, and by nothing.
  const std::optional<Url> empty = ParseUrl("", &url, idna);
  FUZZ_CHECK(empty && *empty == url && empty->host() == url.host() && empty->target() == url.target());
  if (!url.path().starts_with("//")) {
    const std::optional<Url> rooted = ParseUrl(url.target(), &url, idna);
    FUZZ_CHECK(rooted && *rooted == url);
  }
  const std::optional<Url> origin = ParseUrl(url.Origin(), nullptr, idna);
  FUZZ_CHECK(origin && origin->Origin() == url.Origin() && origin->port() == url.port());
}

void CheckUrl(const std::optional<Url>& url, const Idna& idna) {
  if (!url) return;
  CheckParts(*url);
  CheckAgain(*url, idna);
}

}  // namespace

QUENLAR_FUZZ_TARGET(url) {
  const FakeIdna idna;
  fuzz::Feed feed(bytes);
  const std::string_view base_text = feed.Text();
  const std::string_view text = feed.Rest();
  CheckUrl(ParseUrl(base_text, nullptr, idna), idna);
  const std::optional<Url> base = ParseUrl("http://" + std::string(base_text), nullptr, idna);
  CheckUrl(base, idna);
  const std::optional<Url> url = ParseUrl(text, base ? &*base : nullptr, idna);
  CheckUrl(url, idna);
  // Fragments and blanks around a text make no difference.
  if (!url || (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ')) return;
  FUZZ_CHECK(ParseUrl(" \n" + std::string(text) + "#f \t", base ? &*base : nullptr, idna) == url);
}
