#include "cli/analyze_session.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "cli/analyze_request.h"
#include "cli/json_text.h"
#include "cli/workplace.h"
#include "platform/code_page.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/message_boxes.h"
#include "platform/page_fetcher.h"
#include "project/project_store.h"
#include "settings/filter_words.h"
#include "state/get_host.h"
#include "web/links.h"
#include "web/ocx_parse_web.h"

namespace quenlar {
namespace {

// Nothing ever arrives: every page is handed over by a request.
class IdleLoop final : public EventLoop {
 public:
  void Yield() override {}
  void Wait(std::chrono::milliseconds) override {}
  void Post(std::function<void()>) override {}
  std::unique_ptr<LoopTimer> MakeTimer(std::chrono::milliseconds, std::function<void()>) override {
    return std::make_unique<StoppedTimer>();
  }

 private:
  class StoppedTimer final : public LoopTimer {
   public:
    void SetEnabled(bool) override {}
    bool enabled() const override { return false; }
  };
};

class IdleFetcher final : public PageFetcher {
 public:
  void SetListener(FetchListener*) override {}
  void Start(const std::string&, const std::string&) override {}
  void Cancel(const std::string&) override {}
};

class FixedCodePage final : public CodePage {
 public:
  std::string ToUtf8(std::string bytes) const override { return Windows1252ToUtf8(std::move(bytes)); }
  std::string FromUtf8(std::string text) const override { return Utf8ToWindows1252(std::move(text)); }
};

class KeptMessages final : public MessageBoxes {
 public:
  BoxAnswer Show(const std::string& text, const std::string&, BoxIcon, BoxButtons buttons) override {
    texts.push_back(text);
    return buttons == BoxButtons::kOk ? BoxAnswer::kOk : BoxAnswer::kNo;
  }
  std::vector<std::string> texts;
};

// What the status bar would show.
class KeptPanels final : public RunView {
 public:
  void ShowStage(const std::string& text) override { panel1.push_back(text); }
  void ShowAddressCount(std::uint32_t count) override { panel2 = fmt::format("{} Address", count); }
  void ShowScanCount(std::int64_t count) override { panel3 = fmt::format("Scan {}", count); }

  std::vector<std::string> panel1;  // every text since the request came
  std::string panel2 = "0 Address";
  std::string panel3 = "Scan 0";
};

Platform WithoutTheComputer(const Platform& lent, IdleLoop& loop, IdleFetcher& fetcher, FixedCodePage& code_page,
                            KeptMessages& boxes) {
  return {loop,       fetcher,    lent.registry, lent.interfaces, lent.files,       code_page,
          lent.clock, lent.shell, boxes,         lent.idna,       lent.text_decoder};
}

constexpr std::array<int, kLevels> kAllLevels = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

}  // namespace

struct AnalyzeSession::State {
  State(const Platform& lent, Installation given_installation)
      : platform(WithoutTheComputer(lent, loop, fetcher, code_page, boxes)),
        installation(std::move(given_installation)),
        filter(settings),
        store(platform, project, settings, installation, panels, project_view),
        pump(loop),
        web(fetcher, code_page, AnalysisContext{run, project, settings, filter, store, panels, pump}) {}

  [[nodiscard]] bool opened() const { return lock != nullptr; }

  // Whatever the requests before this one have shown is told already.
  void BeginRequest() {
    panels.panel1.clear();
    boxes.texts.clear();
  }

  [[nodiscard]] Json Addresses(std::uint32_t from) const {
    Json records = Json::array();
    for (std::uint32_t i = from; i < project.found.Count(); ++i) {
      records.push_back(FoundAddressJson(project.found.At(i)));
    }
    return records;
  }

  [[nodiscard]] std::string BelowHome(const std::string& path) const {
    std::string below = path.substr(std::min(path.size(), installation.program_folder.size() + 1));
    std::replace(below.begin(), below.end(), installation.separator, '/');
    return below;
  }

  IdleLoop loop;
  IdleFetcher fetcher;
  FixedCodePage code_page;
  KeptMessages boxes;
  KeptPanels panels;
  ProjectView project_view;
  Platform platform;
  Installation installation;
  std::unique_ptr<FolderLock> lock;  // held from the first opened project on
  RunState run;
  Project project;
  Settings settings;
  FilterWords filter;
  ProjectStore store;
  Pump pump;
  ocxParseWeb web;
};

namespace {

Json AnalyzeError(const std::string& message) { return {{"error", message}}; }

// What a page adds is what stands behind these counts afterwards.
struct Mark {
  std::uint32_t addresses;
  std::array<std::uint32_t, kLevels> links;
};

Mark MarkOf(const Project& project) {
  Mark mark{project.found.Count(), {}};
  for (const int level : kAllLevels) mark.links[level] = project.queues[level].Count();
  return mark;
}

Json LinksSince(const Mark& mark, const Project& project) {
  Json links = Json::array();
  for (const int level : kAllLevels) {
    const LinkQueue& queue = project.queues[level];
    for (std::uint32_t i = mark.links[level]; i < queue.Count(); ++i) {
      const LinkRecord record = queue.At(i);
      links.push_back(
          {{"queue", std::string(1, SectionLetter(level))}, {"URL", record.URL}, {"number", record.number}});
    }
  }
  return links;
}

Json Unvisited(const LinkQueue& queue) {
  Json addresses = Json::array();
  for (const std::uint32_t index : queue.InFlight()) addresses.push_back(queue.At(index).URL);
  for (std::uint32_t i = queue.Next(); i < queue.Count(); ++i) addresses.push_back(queue.At(i).URL);
  return addresses;
}

}  // namespace

AnalyzeSession::AnalyzeSession(const Platform& platform, Installation installation)
    : lent_(platform), installation_(std::move(installation)), state_(std::make_unique<State>(lent_, installation_)) {}

AnalyzeSession::~AnalyzeSession() = default;

// The answer to each request, without its `id`.
struct AnalyzeSession::Answering {
  Json operator()(SettingsRequest request) const;
  Json operator()(OpenRequest request) const;
  Json operator()(PageRequest request) const;
  Json operator()(RedirectRequest request) const;
  Json operator()(FailRequest request) const;
  Json operator()(ResolveRequest request) const;
  Json operator()(HostRequest request) const;
  Json operator()(SaveRequest) const;
  Json operator()(ResetRequest) const;
  Json operator()(FunctionRequest request) const;

  AnalyzeSession& session;
};

Json AnalyzeSession::Answering::operator()(SettingsRequest request) const {
  State& s = *session.state_;
  Apply(request.changes, s.settings);
  if (request.remove_words) s.filter.RemoveFilterWords = std::move(*request.remove_words);
  if (request.extract_words) s.filter.ExtractFilterWords = std::move(*request.extract_words);
  // A word that is no valid expression matches nothing; the patterns in the answer show what was made of it.
  (void)s.filter.BuildFilterPatterns();
  return {{"ok", true},
          {"RemoveFilterPattern", s.filter.RemoveFilterPattern},
          {"ExtractFilterPattern", s.filter.ExtractFilterPattern}};
}

Json AnalyzeSession::Answering::operator()(OpenRequest request) const {
  State& s = *session.state_;
  if (!s.opened()) {
    auto lock = TakeHome(session.lent_.files, session.installation_);
    if (!lock.ok()) return AnalyzeError(lock.status().message());
    for (const std::string& folder : {session.installation_.Data(), session.installation_.Report()}) {
      const Status made = session.lent_.files.MakeFolder(folder);
      if (!made.ok()) return AnalyzeError(made.message());
    }
    s.lock = lock.take();
  }
  s.store.OpenProject(request.text);
  // What a run does when it starts: it counts its own pages, and the stop number counts its own addresses.
  s.run.stop_requested = false;
  s.run.ScanCount = 0;
  s.run.baseline = static_cast<std::int32_t>(s.project.found.Count());

  Json queues = Json::object();
  for (const int level : kAllLevels) {
    queues[std::string(1, SectionLetter(level))] = Unvisited(s.project.queues[level]);
  }
  return {{"IsKeywordProject", s.project.IsKeywordProject},
          {"Keyword", s.project.Keyword},
          {"StartURL", s.project.StartURL},
          {"DataFile", s.BelowHome(s.project.DataFile)},
          {"ReportFile", s.BelowHome(s.project.ReportFile)},
          {"ProjectLanguage", s.project.ProjectLanguage},
          {"messages", s.boxes.texts},
          {"queues", std::move(queues)},
          {"addresses", s.Addresses(0)}};
}

namespace {

template <typename State>
Json PageAnswer(const State& s, const Mark& before, const ocxParseWeb::Outcome& outcome) {
  return {{"result", outcome.parsed ? Json(outcome.result) : Json(nullptr)},
          {"event", outcome.level >= 0 ? Json(DownloadEventName(outcome.level)) : Json(nullptr)},
          {"panel1", s.panels.panel1},
          {"panel2", s.panels.panel2},
          {"panel3", s.panels.panel3},
          {"addresses", s.Addresses(before.addresses)},
          {"links", LinksSince(before, s.project)}};
}

}  // namespace

Json AnalyzeSession::Answering::operator()(PageRequest request) const {
  const Mark before = MarkOf(session.state_->project);
  const auto outcome = request.is_body ? session.state_->web.Complete(request.name, std::move(request.contents))
                                       : session.state_->web.CompleteText(request.name, request.contents);
  return PageAnswer(*session.state_, before, outcome);
}

Json AnalyzeSession::Answering::operator()(RedirectRequest request) const {
  const Mark before = MarkOf(session.state_->project);
  session.state_->web.Redirect(request.name, request.address);
  return PageAnswer(*session.state_, before, {});
}

Json AnalyzeSession::Answering::operator()(FailRequest request) const {
  const Mark before = MarkOf(session.state_->project);
  const auto outcome = session.state_->web.Fail(request.name);
  return PageAnswer(*session.state_, before, outcome);
}

Json AnalyzeSession::Answering::operator()(ResolveRequest request) const {
  return {{"address", ResolveLink(request.target, request.page)}};
}

Json AnalyzeSession::Answering::operator()(HostRequest request) const { return {{"host", GetHost(request.address)}}; }

Json AnalyzeSession::Answering::operator()(SaveRequest) const {
  // A keyword without a language has no files.
  if (!session.state_->opened() || session.state_->project.DataFile.empty()) return AnalyzeError("no project is open");
  const Status data = session.state_->store.WriteData();
  const Status report = session.state_->store.WriteReport();
  for (const Status& status : {data, report}) {
    if (!status.ok()) return AnalyzeError(status.message());
  }
  return {{"ok", true}};
}

Json AnalyzeSession::Answering::operator()(ResetRequest) const {
  session.state_ = nullptr;  // first, so that the program folder is free again
  session.state_ = std::make_unique<State>(session.lent_, session.installation_);
  return {{"ok", true}};
}

Json AnalyzeSession::Answering::operator()(FunctionRequest request) const {
  return request.function(request.members, session.lent_);
}

std::string AnalyzeSession::Answer(std::string_view line) {
  ParsedLine parsed = ParseAnalyzeLine(line);
  Json answer;
  if (parsed.request.ok()) {
    state_->BeginRequest();
    answer = std::visit(Answering{*this}, parsed.request.take());
  } else {
    answer = AnalyzeError(parsed.request.status().message());
  }
  if (parsed.id) answer["id"] = std::move(*parsed.id);
  return JsonLine(answer);
}

std::string AnalyzeErrorLine(const std::string& message) { return JsonLine(AnalyzeError(message)); }

}  // namespace quenlar
