// Asynchronous page downloads. Each has a key, which is any text. The transport follows redirects and keeps limits of
// its own; it does not know what the pages are for.
#pragma once

#include <string>

namespace quenlar {

// The status codes of a download, with the numbers that the program publishes.
enum class FetchCode {
  kError = 0,          // the download has failed; no completion follows
  kRedirecting = 3,    // `text` is the absolute address of the next hop, as found in the answer
  kDataAvailable = 14  // the first bytes of the final body have arrived
};

// Receives the reports of downloads. Every call is made inside a pump and never inside a member of PageFetcher. `key`
// stays valid during the call, even when the call cancels the download.
class FetchListener {
 public:
  virtual ~FetchListener() = default;
  virtual void OnFetchProgress(const std::string& key, FetchCode code, const std::string& text) = 0;
  // The download is complete. `body` is the whole decoded body, byte for byte as the server has sent it. Called once
  // for each download, and never after kError.
  virtual void OnFetchComplete(const std::string& key, std::string body) = 0;
};

// The limits that every implementation keeps. A download that passes one fails.
inline constexpr int kMaxRedirects = 20;
inline constexpr std::size_t kMaxBodyBytes = 64u << 20;  // decoded bytes

class PageFetcher {
 public:
  virtual ~PageFetcher() = default;

  virtual void SetListener(FetchListener* listener) = 0;

  // Starts one GET of `address` and returns at once. The address is UTF-8, as it was found on a page. What a request
  // line cannot hold, such as blanks, quotes, control and non-ASCII characters, is percent-encoded on the wire, and a
  // fragment is not sent (platform/wire_address.h). A second download with the same key is independent of the first.
  //
  // A download fails when its page cannot be delivered: the address has no host or another scheme than http and https,
  // the connection is refused or reset, the body is cut short or malformed or in an unknown encoding, a certificate is
  // not valid, a proxy asks for a password (407), https redirects to plain http, or a limit is passed. A page with an
  // HTTP error status is a page. Every failure is reported inside a later pump.
  virtual void Start(const std::string& address, const std::string& key) = 0;

  // Cancels every download with this key. No report of them is made any more, even of one that has arrived already. An
  // unknown key is ignored.
  virtual void Cancel(const std::string& key) = 0;
};

}  // namespace quenlar
