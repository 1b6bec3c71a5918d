// Sites: what is found is the end of the host, its own site, and the same one label further down.
#include <string>
#include <string_view>

#include "fuzz/target.h"
#include "page/site.h"
#include "page/url_host.h"
#include "platform/ip_address.h"
#include "support/fake_idna.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(site) {
  const std::string_view raw = RegistrableDomain(bytes);
  FUZZ_CHECK(raw.empty() || (raw.data() >= bytes.data() && raw.data() + raw.size() <= bytes.data() + bytes.size()));
  std::string host;
  if (!AppendHost(bytes, FakeIdna(), host)) return;
  const std::string_view site = RegistrableDomain(host);
  if (site.empty()) {
    FUZZ_CHECK(!IsTopLevelDomain(host) || host.find('.') == std::string::npos);
    return;
  }
  FUZZ_CHECK(!ParseIpAddress(host));
  const std::string name = host.ends_with('.') ? host.substr(0, host.size() - 1) : host;
  FUZZ_CHECK(name == site || name.ends_with("." + std::string(site)));
  FUZZ_CHECK(site.find('.') != site.npos && site.front() != '.' && site.back() != '.');
  FUZZ_CHECK(RegistrableDomain(site) == site);
  // Below a site may be public suffixes: kobe.jp is a site, and *.kobe.jp are suffixes.
  const std::string below_name = "www." + name;
  const std::string_view below = RegistrableDomain(below_name);
  FUZZ_CHECK(below == site || (below.empty() && name == site));
  FUZZ_CHECK(RegistrableDomain(name + ".") == site);
  // The labels behind the first one of a site are a public suffix, which has no site, or the end of an exception.
  const std::string_view suffix = site.substr(site.find('.') + 1);
  const std::string_view above = RegistrableDomain(suffix);
  FUZZ_CHECK(above.empty() || above.size() < site.size());
}
