// Web addresses by the WHATWG URL Standard (https://url.spec.whatwg.org/), http and https alone, without fragments.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "page/url_host.h"
#include "platform/idna.h"
#include "platform/ip_address.h"

namespace quenlar {

// An absolute http or https URL in its serialised form, which is ASCII. The views live as long as the URL stays as it
// is.
class Url {
 public:
  [[nodiscard]] const std::string& href() const { return href_; }
  [[nodiscard]] bool secure() const { return href_[4] == 's'; }
  [[nodiscard]] std::string_view scheme() const { return Part(0, secure() ? 5 : 4); }   // "http" or "https"
  [[nodiscard]] std::string_view host() const { return Part(host_begin_, host_end_); }  // IPv6 in its brackets
  [[nodiscard]] std::uint16_t port() const { return port_; }                            // the scheme's own without one
  [[nodiscard]] std::string_view path() const { return Part(path_begin_, query_begin_); }    // begins with "/"
  [[nodiscard]] std::string_view query() const { return Part(query_begin_, href_.size()); }  // with its "?"
  [[nodiscard]] std::string_view target() const { return Part(path_begin_, href_.size()); }  // path and query

  // What makes two URLs one page: host, port, path and query. The scheme, the user name and the password are left out.
  // A port that is written is part of it, so http://h/ and https://h/ are one page, http://h:81/ and https://h/ are
  // two.
  [[nodiscard]] std::string_view PageKey() const { return Part(host_begin_, href_.size()); }

  // Scheme, host and port as "https://host:8080"; the port is left out when it is the scheme's own.
  [[nodiscard]] std::string Origin() const;

  // The address that the host is; empty for a domain.
  [[nodiscard]] std::optional<IpAddress> ip() const { return ParseIpAddress(host()); }

  bool operator==(const Url& other) const { return href_ == other.href_; }

 private:
  friend class UrlParser;

  [[nodiscard]] std::string_view Part(std::size_t begin, std::size_t end) const {
    return std::string_view(href_).substr(begin, end - begin);
  }

  std::string href_;
  std::uint32_t host_begin_ = 0, host_end_ = 0, path_begin_ = 0, query_begin_ = 0;
  std::uint16_t port_ = 0;
};

// The URL that `text` (UTF-8) is, or that it means on the page at `base`, which may be null. Empty when the standard
// refuses it, when it is relative and there is no base, when its scheme is not http or https, and beyond 512 MiB. The
// query is encoded as UTF-8. Bytes that are not UTF-8 are percent-encoded as they are. Takes time in proportion to the
// text, whatever it is.
[[nodiscard]] std::optional<Url> ParseUrl(std::string_view text, const Url* base, const Idna& idna);

}  // namespace quenlar
