// Turns the opened project into a crawl: schedules downloads level by level and decides when the run ends.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/files.h"
#include "run/end_reasons.h"
#include "state/run_state.h"
#include "web/ocx_parse_web.h"

namespace quenlar {

// What the driver needs of the front end that it runs under.
class RunHost {
 public:
  virtual ~RunHost() = default;
  // True while the Extract button still reads "&Stop" (the user has not pressed it).
  [[nodiscard]] virtual bool StopButtonShown() const = 0;
  // Tells the user why the run has ended. May pump.
  virtual void ShowEnd(const std::string& reason) = 0;
  // Saves, at the end of a run; failures are told to the user. Pump.
  virtual void SaveDataAtEnd() = 0;
  virtual void SaveReportAtEnd() = 0;
  // Puts the controls back to idle; export only after a link run.
  virtual void RestoreIdle(bool enable_export) = 0;
  // "Extract process ended at" and the time, in panel 1.
  virtual void ShowEndTime() = 0;
  virtual void EnableExit() = 0;
};

// The driver only takes links out of the queues. They come in (QueueLink, one operation a level) through the link
// builders of the web control. The yield that goes before each of them is page analysis's own: it pumps at every tag
// and again at every anchor and frame, right before it takes the target, and nothing runs between that pump and the
// duplicate test; so a link that a nested page has queued meanwhile is seen. A second yield would change nothing.
class RunDriver final : public WebEvents {
 public:
  // The address of the result page that begins `result_offset` results on, in the language chosen at this moment; ""
  // for a language that is none (the address then stays as it was).
  using SearchAddressAt = std::function<std::string(int result_offset)>;

  RunDriver(EventLoop& loop, RunState& run, Project& project, SearchAddressAt search_address, ocxParseWeb& web,
            Files& files, PeriodicSaver& saver, RunHost& host);

  // What tmrExtract's tick does after it has disabled itself: KeywordRun for a keyword project, else LinkRun.
  // Pumps until the run has ended. Not to be called while a run goes on. Memory that cannot be had ends it in order.
  void Run();
  void KeywordRun();
  void LinkRun();

  // CancelAllDownload on behalf of the watchdog: the pages in flight are done, the counters hold what is still in
  // flight, the run goes on. A page that is being analysed at this moment (the watchdog ticks in its pumps too) has
  // arrived already and is not cancelled.
  void CancelStalled();

  // WebEvents.
  void DownloadComplete(int level, const std::string& request_name, bool whole) override;

 private:
  // A download that was started and whose event has not come.
  struct Request {
    int level;
    std::optional<std::uint32_t> index;  // of the record in its queue; none for a search page
    std::string name;
  };
  enum class Phase { kSearch, kLinks };

  void Begin();
  [[nodiscard]] bool OnlySearchPageQueued() const;
  const char* Search();
  bool WaitForSearchPage();
  bool GoToNextResultPage();
  void Crawl();
  void SeedAddressProject();
  bool StartSite();
  void FillLevel(int level);
  void Start(int level, const std::string& tag);
  [[nodiscard]] std::optional<char> FirstEmptyLevel() const;
  [[nodiscard]] bool AllVisited() const;
  [[nodiscard]] bool SomethingToDo() const;
  void CancelAll();
  void CountRequests();
  [[nodiscard]] const char* StopReason() const;
  void End(const char* reason);

  EventLoop& loop_;
  RunState& run_;
  Project& project_;
  SearchAddressAt search_address_;
  ocxParseWeb& web_;
  Files& files_;
  PeriodicSaver& saver_;
  RunHost& host_;
  std::vector<Request> requests_;
  Phase phase_ = Phase::kLinks;
  bool may_start_site_ = false;
};

}  // namespace quenlar
