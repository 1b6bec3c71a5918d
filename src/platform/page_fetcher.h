// Asynchronous page downloads, keyed by text. The transport behind it follows redirects, keeps its own limits and
// knows nothing of what the pages are for.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// The status codes of an asynchronous read, by the numbers that the download manager knows.
enum class FetchCode {
  kError = 0,          // the download has failed; no completion follows
  kRedirecting = 3,    // `text` is the absolute address of the next hop, as found in the answer
  kDataAvailable = 14  // the first bytes of the final body have arrived
};

// Who hears of downloads. Every call is made inside EventLoop::Yield or Wait, never inside a member of PageFetcher.
// `key` outlives the call, whatever the call does.
class FetchListener {
 public:
  virtual ~FetchListener() = default;
  virtual void OnFetchProgress(const std::string& key, FetchCode code, const std::string& text) = 0;
  // The whole decoded body, bytes as they came; ownership passes. Called once a key, never after kError.
  virtual void OnFetchComplete(const std::string& key, std::string body) = 0;
};

// Limits that every implementation keeps (each is a failure when passed).
inline constexpr int kMaxRedirects = 20;
inline constexpr std::size_t kMaxBodyBytes = 64u << 20;  // decoded bytes

class PageFetcher {
 public:
  virtual ~PageFetcher() = default;

  virtual void SetListener(FetchListener* listener) = 0;

  // Starts one GET of `address` (UTF-8, as found on a page; blanks, quotes, control and non-ASCII characters and
  // everything else a request line cannot hold are percent-encoded on the wire, a fragment is not sent). Returns at
  // once; even an address that cannot be spoken (a scheme other than http and https, no host) fails later, inside a
  // pump. A key that is already under way gets a second, independent download under the same key.
  //
  // Failure is what cannot be delivered: no host, refused, reset, body cut short or malformed, more than
  // kMaxRedirects, a redirect from https to plain http, more than kMaxBodyBytes, an unknown scheme or content encoding,
  // certificate not valid, a proxy that asks for a password (407). A page with an HTTP error status and a body is a
  // page.
  virtual void Start(const std::string& address, const std::string& key) = 0;

  // Forgets every download of this key at once: no call is made for it any more, not even one that has already
  // arrived. Unknown keys are ignored.
  virtual void Cancel(const std::string& key) = 0;
};

}  // namespace quenlar
