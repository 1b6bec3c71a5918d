// The web control: downloads pages by request name, hands each page to the parser of its request, and reports the end
// of each download. Names of members and events are those that the program publishes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/code_page.h"
#include "platform/page_fetcher.h"
#include "web/page_analysis.h"

namespace quenlar {

// Receives the ends of downloads. Called inside a pump, after the page has been analysed.
class WebEvents {
 public:
  virtual ~WebEvents() = default;
  // A download has ended, by success or failure. This is the event of its level: DownloadTovasperComplete for level 0,
  // and DownloadTovasperExpand1Complete to DownloadTovasperExpand10Complete for the others. `whole` is false when a
  // stop or a lack of memory has dropped a part of the page.
  virtual void DownloadComplete(int level, const std::string& request_name, bool whole) = 0;
};

// Returns "DownloadTovasperComplete" for level 0, and "DownloadTovasperExpand<level>Complete" for the others.
[[nodiscard]] std::string DownloadEventName(int level);

class ocxParseWeb final : private FetchListener {
 public:
  // What the upgrade check does: `parse_upgrade` receives the text of its page, and `upgrade_failed` is called when the
  // page could not be downloaded.
  struct UpgradeHandler {
    std::function<void(const std::string& page)> parse_upgrade;
    std::function<void()> upgrade_failed;
  };

  ocxParseWeb(PageFetcher& fetcher, const CodePage& code_page, AnalysisContext context);
  ~ocxParseWeb() override;
  ocxParseWeb(const ocxParseWeb&) = delete;
  ocxParseWeb& operator=(const ocxParseWeb&) = delete;

  void SetEvents(WebEvents* events) { events_ = events; }
  // Sets a function that is called for every finished or failed download, after it has been handled.
  void SetResetStallCounter(std::function<void()> reset) { reset_stall_counter_ = std::move(reset); }
  void SetUpgradeHandler(UpgradeHandler handler) { upgrade_ = std::move(handler); }

  // Starts a download and returns at once. The caller limits how many run at a time. `request_name` is a letter for the
  // parser ("M" for level 0, "X" to "T" for the others, "G" for a search page, "U" for the upgrade check), then a digit
  // and the address for a page of a level.
  void BeginDownload(const std::string& address, const std::string& request_name);

  void ParseUpgradeHtml(const std::string& page);

  // Published properties that are stored and that nothing reads.
  bool SaveFile = false;
  std::int32_t AsyncReadOptions = 0;
  std::string Pattern;
  std::string Channel;
  std::int16_t LinkDepth = 1;

  bool ParseGoogleHtml(std::string_view page);
  void CollectResultLinks(std::string_view page);

  // Cancels every pending download. No event comes for them.
  void CancelAllDownload();

  // Link builders, see web/links.h. They cut a trailing "/" off the address where they do not drop it.
  void MakeLink(std::string& address, std::string_view page, std::string_view level_digit);
  void MakeExpandLink(int level, std::string& address, std::string_view page, std::int16_t number);
  // clang-format off
  void MakeExpand1Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(1, address, page, number); }
  void MakeExpand2Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(2, address, page, number); }
  void MakeExpand3Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(3, address, page, number); }
  void MakeExpand4Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(4, address, page, number); }
  void MakeExpand5Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(5, address, page, number); }
  void MakeExpand6Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(6, address, page, number); }
  void MakeExpand7Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(7, address, page, number); }
  void MakeExpand8Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(8, address, page, number); }
  void MakeExpand9Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(9, address, page, number); }
  void MakeExpand10Link(std::string& address, std::string_view page, std::int16_t number) { MakeExpandLink(10, address, page, number); }
  // clang-format on

  // The request names of downloads that have not ended, in the order in which they were started.
  [[nodiscard]] const std::vector<std::string>& pending() const { return pending_; }

  // What the end of a download has caused, for front ends that answer page by page.
  struct Outcome {
    int level = -1;       // the event raised, or -1
    bool parsed = false;  // a parser ran to its return
    bool result = false;  // its result
  };
  // Handle a completion, a redirect or a failure as if the transport had reported it. Complete takes the body as bytes
  // in the ANSI code page, and CompleteText takes it as UTF-8. All but Redirect pump. `request_name` must stay valid
  // during the call, even when the download is cancelled inside it.
  Outcome Complete(const std::string& request_name, std::string body);
  Outcome CompleteText(const std::string& request_name, const std::string& text);
  void Redirect(const std::string& request_name, std::string new_address);
  Outcome Fail(const std::string& request_name);

 private:
  struct Parsed {
    bool result;
    bool whole;
  };
  Parsed Parse(const std::string& request_name, const std::string& text);
  template <typename Parser>
  Outcome Analyze(const std::string& request_name, Parser parse);
  void ShowStage(const char* text);
  void EndUpgradeCheck();
  Outcome Finish(const std::string& request_name, Outcome outcome, bool whole);
  void RemovePending(const std::string& request_name);
  void OnFetchProgress(const std::string& key, FetchCode code, const std::string& text) override;
  void OnFetchComplete(const std::string& key, std::string body) override;

  PageFetcher& fetcher_;
  const CodePage& code_page_;
  AnalysisContext context_;
  WebEvents* events_ = nullptr;
  std::function<void()> reset_stall_counter_;
  UpgradeHandler upgrade_;
  std::vector<std::string> pending_;
};

}  // namespace quenlar
