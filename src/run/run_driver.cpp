#include "run/run_driver.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <new>
#include <utility>

#include "run/end_reasons.h"

namespace quenlar {
namespace {

constexpr int kMaxPerLevel = 2;     // downloads of one expansion level at a time
constexpr int kSearchAttempts = 4;  // for a first result page without results
constexpr int kResultsPerPage = 100;
constexpr int kLastResultOffset = 32700;  // the last one that a 16-bit number holds

// How long a wait sleeps when nothing arrives. Everything for which it waits arrives through the event loop, so this is
// not a polling interval. It only limits the harm of an event that was lost.
constexpr std::chrono::milliseconds kWaitLimit{500};

}  // namespace

RunDriver::RunDriver(EventLoop& loop, RunState& run, Project& project, SearchAddressAt search_address, ocxParseWeb& web,
                     Files& files, ProjectSaver& saver, RunHost& host)
    : loop_(loop),
      run_(run),
      project_(project),
      search_address_(std::move(search_address)),
      web_(web),
      files_(files),
      saver_(saver),
      host_(host) {}

// A run that runs out of memory ends in order, and what it has found is saved. When memory runs out for a page, only
// that page ends, in ocxParseWeb.
void RunDriver::Run() {
  try {
    if (project_.IsKeywordProject) {
      KeywordRun();
    } else {
      LinkRun();
    }
  } catch (const std::bad_alloc&) {
    CancelAll();
    End(kEndNoMemory);
  }
}

void RunDriver::KeywordRun() {
  Begin();
  run_.pending[0] = 0;
  run_.upgrade_share = 0;
  LinkQueue& sites = project_.queues[0];
  // A data file of another kind left the project new, with its search page still to be fetched.
  if (!files_.FileExists(project_.DataFile) || OnlySearchPageQueued()) {
    phase_ = Phase::kSearch;
    if (const char* reason = Search()) return End(reason);
    phase_ = Phase::kLinks;
    sites.Reverse();
  }
  if (sites.Next() < sites.Count()) saver_.SaveProjectData();
  Crawl();
}

void RunDriver::LinkRun() {
  Begin();
  Crawl();
}

// The flags are cleared here and not again at the start of the links of a keyword run: a stop that comes while the
// queues are saved in between holds. So does the wish to stop that came just before the run: StopPressed tells of it.
void RunDriver::Begin() {
  assert(!run_.running);
  run_.running = true;
  run_.stop_requested = host_.StopPressed();
  run_.off_line = false;
  run_.ScanCount = 0;
  requests_.clear();
  phase_ = Phase::kLinks;
  for (LinkQueue& queue : project_.queues) queue.RestartInFlight();
}

// --- Search phase ---

// Opening a new keyword project leaves the search page in the level-0 queue, as its only record.
bool RunDriver::OnlySearchPageQueued() const {
  const LinkQueue& sites = project_.queues[0];
  return sites.Count() == 1 && sites.Next() == 0 && !project_.search_page.empty() &&
         sites.At(0).URL == project_.search_page;
}

// Returns null when the links are to be visited next, and otherwise the reason why the run ends here.
const char* RunDriver::Search() {
  LinkQueue& sites = project_.queues[0];
  if (OnlySearchPageQueued()) sites.Clear();  // the search page is not a link to visit
  std::uint32_t seen = sites.Count();
  for (int attempts = 0; attempts < kSearchAttempts;) {
    const std::string name = "G" + project_.StartURL;
    requests_.push_back({0, std::nullopt, name});
    ++run_.pending[0];
    web_.BeginDownload(project_.StartURL, name);
    if (!WaitForSearchPage()) {
      CancelAll();
      return StopReason();
    }
    if (sites.Count() == 0) {
      ++attempts;
      continue;
    }
    if (sites.Count() <= seen || !GoToNextResultPage()) return nullptr;
    seen = sites.Count();
  }
  return kEndAllParsed;
}

// Returns false when a stop was requested meanwhile.
bool RunDriver::WaitForSearchPage() {
  do {
    if (run_.stop_requested) {
      loop_.Yield();
    } else {
      loop_.Wait(kWaitLimit);
    }
    if (run_.stop_requested) return false;
  } while (run_.LevelZeroPending());
  return true;
}

bool RunDriver::GoToNextResultPage() {
  if (project_.result_offset >= kLastResultOffset) return false;
  project_.result_offset = static_cast<std::int16_t>(project_.result_offset + kResultsPerPage);
  const std::string address = search_address_(project_.result_offset);
  if (!address.empty()) project_.StartURL = address;
  return true;
}

// --- Links ---

// Makes one pass over the queues after another. A pass that may start a page of level 0 does nothing else. Each pass
// ends with a pump. The pump sleeps when no pass could do anything before something arrives, so the order of events is
// that of a loop that never sleeps.
void RunDriver::Crawl() {
  SeedAddressProject();
  run_.baseline = static_cast<std::int32_t>(project_.found.Count());
  may_start_site_ = true;
  while (true) {
    if (may_start_site_) {
      may_start_site_ = StartSite();
    } else {
      for (int level = 1; level < kLevels; ++level) FillLevel(level);
    }
    if (run_.stop_requested || AllVisited() || SomethingToDo()) {
      loop_.Yield();
    } else {
      loop_.Wait(kWaitLimit);
    }
    if (run_.stop_requested) break;
    if (AllVisited()) break;
  }
  CancelAll();
  End(run_.stop_requested ? StopReason() : kEndAllParsed);
}

// An address project without a link left to visit begins anew at its start address.
void RunDriver::SeedAddressProject() {
  if (project_.IsKeywordProject || project_.StartURL.empty()) return;
  for (const LinkQueue& queue : project_.queues) {
    if (queue.HasUnvisited()) return;
  }
  for (LinkQueue& queue : project_.queues) queue.Clear();
  project_.queues[0].AddIfNew(project_.StartURL);
}

// Starts a page of level 0. Pumps. Returns whether another one may be started in the next pass.
bool RunDriver::StartSite() {
  const LinkQueue& sites = project_.queues[0];
  if (sites.Next() >= sites.Count() || run_.LevelZeroPending()) return false;
  loop_.Yield();
  const std::optional<char> digit = FirstEmptyLevel();
  if (!digit) return false;
  Start(0, {RequestLetter(0), *digit});
  return true;
}

// Pumps.
void RunDriver::FillLevel(int level) {
  LinkQueue& queue = project_.queues[level];
  while (run_.pending[level] < kMaxPerLevel) {
    if (queue.Next() >= queue.Count()) {
      // After a stop nothing is emptied any more: a page that the stop cut short is still to be visited.
      if (run_.pending[level] != 0 || run_.stop_requested) return;
      if (queue.Count() != 0) queue.Clear();
      may_start_site_ = true;
      return;
    }
    loop_.Yield();
    Start(level, RequestLetter(level) + std::to_string(queue.At(queue.Next()).number));
  }
}

void RunDriver::Start(int level, const std::string& tag) {
  LinkQueue& queue = project_.queues[level];
  const std::uint32_t index = queue.StartNext();
  const std::string address(queue.At(index).URL);
  requests_.push_back({level, index, tag + address});
  ++run_.pending[level];
  web_.BeginDownload(address, tag + address);
}

// Returns the digit of the first expansion level without links, where '0' is level 10. The links of the page of level 0
// that is started now will go there.
std::optional<char> RunDriver::FirstEmptyLevel() const {
  for (int level = 1; level < kLevels; ++level) {
    if (project_.queues[level].Count() == 0) return static_cast<char>('0' + level % 10);
  }
  return std::nullopt;
}

bool RunDriver::AllVisited() const {
  if (run_.LevelZeroPending()) return false;
  for (int level = 0; level < kLevels; ++level) {
    if (project_.queues[level].Next() < project_.queues[level].Count()) return false;
    if (level != 0 && run_.pending[level] != 0) return false;
  }
  return true;
}

// Returns whether one of the next passes would start a page or empty a level even if nothing arrives. A level without
// links allows a page of level 0 to start in every pass, so it does not matter whether one is allowed now.
bool RunDriver::SomethingToDo() const {
  const LinkQueue& sites = project_.queues[0];
  if (sites.Next() < sites.Count() && !run_.LevelZeroPending() && FirstEmptyLevel()) return true;
  for (int level = 1; level < kLevels; ++level) {
    const LinkQueue& queue = project_.queues[level];
    if (queue.Count() == 0) continue;
    if (run_.pending[level] < (queue.Next() < queue.Count() ? kMaxPerLevel : 1)) return true;
  }
  return false;
}

// --- What arrives ---

void RunDriver::DownloadComplete(int level, const std::string& request_name, bool whole) {
  // The share of the upgrade check, which raises no event, stays.
  if (run_.pending[level] > (level == 0 ? run_.upgrade_share : 0)) --run_.pending[level];
  const auto request = std::find_if(requests_.begin(), requests_.end(),
                                    [&](const Request& r) { return r.level == level && r.name == request_name; });
  if (request == requests_.end()) return;
  // The record of a page that a stop cut short stays in flight: a later run visits it again.
  if (whole && request->index) project_.queues[level].Finish(*request->index);
  requests_.erase(request);
}

void RunDriver::CancelStalled() {
  std::vector<std::string> abandoned = web_.pending();
  web_.CancelAllDownload();
  std::erase_if(requests_, [&](const Request& request) {
    const auto name = std::find(abandoned.begin(), abandoned.end(), request.name);
    if (name == abandoned.end()) return false;  // arrived, and being analysed: its event is still to come
    abandoned.erase(name);
    if (request.index) project_.queues[request.level].Finish(*request.index);
    return true;
  });
  CountRequests();
}

// No event comes for a cancelled download. Its record stays in flight in its queue, so a later run visits it again.
void RunDriver::CancelAll() {
  web_.CancelAllDownload();
  requests_.clear();
  CountRequests();
}

void RunDriver::CountRequests() {
  run_.pending.fill(0);
  run_.pending[0] = run_.upgrade_share;
  for (const Request& request : requests_) ++run_.pending[request.level];
}

// --- The end ---

const char* RunDriver::StopReason() const {
  if (run_.off_line) return kEndOffLine;
  return host_.StopPressed() ? kEndStopButton : kEndStopNumber;
}

void RunDriver::End(const char* reason) {
  host_.RunEnded(reason);
  if (phase_ == Phase::kLinks) {
    const auto unvisited = [](const LinkQueue& queue) { return queue.HasUnvisited(); };
    if (std::any_of(project_.queues.begin(), project_.queues.end(), unvisited)) host_.DataSaved(saver_.WriteData());
    if (project_.found.Count() >= 1 || project_.report_holds_more) host_.ReportSaved(saver_.WriteReport());
  }
  host_.Idle(phase_ == Phase::kLinks);
  run_.running = false;
  host_.RunOver();
}

}  // namespace quenlar
