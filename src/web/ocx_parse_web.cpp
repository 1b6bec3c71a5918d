#include "web/ocx_parse_web.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "web/links.h"
#include "web/search_results.h"

namespace quenlar {
namespace {

constexpr char kSearchPage = 'G', kUpgradeCheck = 'U';
constexpr const char* kFailedText = "Some errors occured ...";

char LetterOf(const std::string& request_name) { return request_name.empty() ? '\0' : request_name.front(); }

// The level whose event belongs to a request letter, or -1. Search pages count as level 0.
int EventLevel(char letter) { return letter == kSearchPage ? 0 : LevelOfLetter(letter); }

}  // namespace

std::string DownloadEventName(int level) {
  return level == 0 ? "DownloadTovasperComplete" : "DownloadTovasperExpand" + std::to_string(level) + "Complete";
}

ocxParseWeb::ocxParseWeb(PageFetcher& fetcher, const CodePage& code_page, AnalysisContext context)
    : fetcher_(fetcher), code_page_(code_page), context_(context) {
  fetcher_.SetListener(this);
}

ocxParseWeb::~ocxParseWeb() {
  if (!pending_.empty()) CancelAllDownload();
  fetcher_.SetListener(nullptr);
}

void ocxParseWeb::BeginDownload(const std::string& address, const std::string& request_name) {
  pending_.push_back(request_name);  // before it starts, so that a cancel reaches every download
  fetcher_.Start(address, request_name);
  context_.view.ShowStage("Connecting: " + address);
}

void ocxParseWeb::ParseUpgradeHtml(const std::string& page) {
  if (upgrade_.parse_upgrade) upgrade_.parse_upgrade(page);
}

bool ocxParseWeb::ParseGoogleHtml(std::string_view page) {
  CollectResultLinks(page);
  return true;
}

void ocxParseWeb::CollectResultLinks(std::string_view page) {
  quenlar::CollectResultLinks(page, context_.project.queues[0]);
}

void ocxParseWeb::CancelAllDownload() {
  ShowStage("Canceling ...");
  for (const std::string& name : pending_) {
    try {
      fetcher_.Cancel(name);
    } catch (const std::bad_alloc&) {
      // A failure with one download does not keep the others from being cancelled.
    }
  }
  pending_.clear();
}

void ocxParseWeb::MakeLink(std::string& address, std::string_view page, std::string_view level_digit) {
  QueueLink(context_.project, context_.settings, address, page, level_digit);
  if (const auto followed = FollowedAddress(0, address)) address.resize(followed->size());
}

void ocxParseWeb::MakeExpandLink(int level, std::string& address, std::string_view page, std::int16_t number) {
  QueueExpandLink(context_.project, context_.settings, level, address, page, number);
  if (const auto followed = FollowedAddress(level, address)) address.resize(followed->size());
}

ocxParseWeb::Outcome ocxParseWeb::Complete(const std::string& request_name, std::string body) {
  return Analyze(request_name, [&] { return Parse(request_name, code_page_.ToUtf8(std::move(body))); });
}

ocxParseWeb::Outcome ocxParseWeb::CompleteText(const std::string& request_name, const std::string& text) {
  return Analyze(request_name, [&] { return Parse(request_name, text); });
}

// This is the one place where a fault inside a parser ends, which is a lack of memory. The host must hear of every
// finished page, or a run would wait for ever. A page that was not analysed to its end is still to be visited.
template <typename Parser>
ocxParseWeb::Outcome ocxParseWeb::Analyze(const std::string& request_name, Parser parse) {
  RemovePending(request_name);
  ShowStage("Download complete ...");
  Outcome outcome;
  outcome.level = EventLevel(LetterOf(request_name));
  bool whole = false;
  try {
    const Parsed parsed = parse();
    outcome.parsed = outcome.level >= 0 || LetterOf(request_name) == kUpgradeCheck;
    outcome.result = parsed.result;
    whole = parsed.whole;
  } catch (const std::exception&) {
    if (!context_.run.stop_requested) ShowStage(kFailedText);
    if (LetterOf(request_name) == kUpgradeCheck) EndUpgradeCheck();
  }
  return Finish(request_name, outcome, whole);
}

// When there is no memory for the text, it is not shown. The page itself is handled all the same.
void ocxParseWeb::ShowStage(const char* text) {
  try {
    context_.view.ShowStage(text);
  } catch (const std::bad_alloc&) {
  }
}

void ocxParseWeb::EndUpgradeCheck() {
  if (upgrade_.upgrade_failed) upgrade_.upgrade_failed();
}

void ocxParseWeb::Redirect(const std::string& request_name, std::string new_address) {
  if (context_.run.stop_requested) return;
  const int level = LevelOfLetter(LetterOf(request_name));
  if (level >= 0 && request_name.size() > 1) {
    const std::string_view digit = std::string_view(request_name).substr(1, 1);
    const std::string_view page = std::string_view(request_name).substr(2);
    if (level == 0) {
      MakeLink(new_address, page, digit);
    } else {
      const char c = digit.front();
      MakeExpandLink(level, new_address, page, static_cast<std::int16_t>(c >= '0' && c <= '9' ? c - '0' : 0));
    }
  }
  context_.view.ShowStage("Redirecting ...");
}

ocxParseWeb::Outcome ocxParseWeb::Fail(const std::string& request_name) {
  if (!context_.run.stop_requested) ShowStage(kFailedText);
  RemovePending(request_name);
  if (LetterOf(request_name) == kUpgradeCheck) EndUpgradeCheck();
  Outcome outcome;
  outcome.level = EventLevel(LetterOf(request_name));
  return Finish(request_name, outcome, true);
}

ocxParseWeb::Parsed ocxParseWeb::Parse(const std::string& request_name, const std::string& text) {
  switch (LetterOf(request_name)) {
    case kUpgradeCheck:
      ParseUpgradeHtml(text);
      return {true, true};
    case kSearchPage:
      return {ParseGoogleHtml(text), true};
    default:
      const PageOutcome outcome = ParsePage(context_, text, request_name);
      return {outcome.result, !outcome.cut_short};
  }
}

// Raises the event of a request that has ended, by success, failure or a fault.
ocxParseWeb::Outcome ocxParseWeb::Finish(const std::string& request_name, Outcome outcome, bool whole) {
  if (outcome.level >= 0 && events_ != nullptr) events_->DownloadComplete(outcome.level, request_name, whole);
  if (reset_stall_counter_) reset_stall_counter_();
  return outcome;
}

// Removes only the first entry of that name, because two downloads may have the same one.
void ocxParseWeb::RemovePending(const std::string& request_name) {
  const auto found = std::find(pending_.begin(), pending_.end(), request_name);
  if (found != pending_.end()) pending_.erase(found);
}

void ocxParseWeb::OnFetchProgress(const std::string& key, FetchCode code, const std::string& text) {
  switch (code) {
    case FetchCode::kError:
      Fail(key);
      break;
    case FetchCode::kRedirecting:
      Redirect(key, text);
      break;
    case FetchCode::kDataAvailable:
      if (!context_.run.stop_requested) context_.view.ShowStage("Receiving data ...");
      break;
  }
}

void ocxParseWeb::OnFetchComplete(const std::string& key, std::string body) { Complete(key, std::move(body)); }

}  // namespace quenlar
