// Turns the open project into a crawl: starts downloads level by level and decides when the run ends.
//
//   RunDriver driver(loop, run, project, search_address, web, files, saver, host);
//   web.SetEvents(&driver);     // the web control reports finished downloads to the driver
//   projects.OpenProject("www.shop.de");
//   driver.Run();               // pumps until the run has ended, and the host has been told why
//
// Inside Run the driver takes links out of the queues and starts their downloads. In its pumps pages arrive and are
// analysed, which fills the queues again, and DownloadComplete is called. The user's wish to stop, the stop number and
// the watchdog set flags of RunState; the driver sees them at its next step and ends the run in order.
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

// Schedules one run after the other over the project of its references.
//
// The driver only takes links out of the queues. Page analysis puts them in, by the link builders of web/links.h. It
// pumps right before it takes the target of an anchor or frame, and nothing runs between that pump and the duplicate
// test. So a link that another page has queued inside the pump is seen, and the driver need not pump for that.
class RunDriver final : public WebEvents {
 public:
  // Returns the address of the search engine's result page that begins with the result `result_offset`, counted from 0,
  // in the language that is set at this moment. Returns "" when the setting names no language; the driver then asks for
  // the same page again.
  using SearchAddressAt = std::function<std::string(int result_offset)>;

  // All references must outlive the driver.
  RunDriver(EventLoop& loop, RunState& run, Project& project, SearchAddressAt search_address, ocxParseWeb& web,
            Files& files, PeriodicSaver& saver, RunHost& host);

  // Makes one run: KeywordRun for a keyword project, LinkRun for any other. Pumps until the run has ended. It must not
  // be called while a run goes on. When memory runs out, the run ends in order with a reason that says so.
  void Run();
  void KeywordRun();
  void LinkRun();

  // Gives up the downloads in flight, because none of them has made progress; the watchdog calls it. Their links count
  // as done, and the run goes on. A page that is being analysed has arrived already and is not given up: the watchdog
  // may tick in one of its pumps.
  void CancelStalled();

  // WebEvents.
  void DownloadComplete(int level, const std::string& request_name, bool whole) override;

 private:
  // A download whose event has not come yet.
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
