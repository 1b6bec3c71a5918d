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

#include "base/status.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "state/project_saver.h"
#include "state/run_state.h"
#include "web/ocx_parse_web.h"

namespace quenlar {

// What the driver asks of the front end that it runs under, and tells it. The front end decides what to show of it, and
// which of its controls can be used; what it does not override shows nothing.
//
// At the end of a run the calls come in the order of their declaration: RunEnded; DataSaved and ReportSaved for the
// files that were saved; Idle; RunOver.
class RunHost {
 public:
  virtual ~RunHost() = default;
  // True once the user has asked this run to stop.
  [[nodiscard]] virtual bool StopPressed() const { return false; }
  // The run has ended, for this reason, a sentence. Nothing has been saved yet. May pump.
  virtual void RunEnded(const std::string& /*reason*/) {}
  // The file has been saved, or could not be. May pump.
  virtual void DataSaved(const Status& /*saved*/) {}
  virtual void ReportSaved(const Status& /*saved*/) {}
  // Everything is done, and `running` still holds. `links_visited`: the run did not end in its search phase.
  virtual void Idle(bool /*links_visited*/) {}
  // `running` does not hold any more.
  virtual void RunOver() {}
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
            Files& files, ProjectSaver& saver, RunHost& host);

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
  ProjectSaver& saver_;
  RunHost& host_;
  std::vector<Request> requests_;
  Phase phase_ = Phase::kLinks;
  bool may_start_site_ = false;
};

}  // namespace quenlar
