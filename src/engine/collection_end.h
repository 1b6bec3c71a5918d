// What the window tells of a collection's run: while it goes on, and at its end.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "collection/collection_reader.h"
#include "crawl/crawl_view.h"
#include "crawl/crawler.h"
#include "settings/web_settings.h"

namespace quenlar {

// The end of a run.
struct CollectionEnd {
  CrawlEnd end = CrawlEnd::kFinished;
  bool opened = false;  // the collection could be opened; without that nothing else is known but the status
  Status status = {};   // of a collection that could not be opened or written
  CrawlFigures figures = {};
  std::int64_t addresses = 0, left = 0;   // of the collection
  std::vector<Refusals> refusals = {};    // of the collection
  std::vector<std::string> notices = {};  // what else a person should know, sentences without their ends
};

// The text of the message: why the run has ended, what it has found, and what was left out and why, one thing a line.
[[nodiscard]] std::string EndText(const CollectionEnd& end, const WebSettings& settings);

// What a run does at the moment, for the status bar.
struct CollectionMoment {
  std::string waiting_for = {};            // Crawler::waiting_for
  std::optional<HostUnderWay> asked = {};  // the host whose request takes longest
  std::optional<HostUnderWay> pausing = {};
  std::size_t hosts = 0;  // visited at the same time
  std::int64_t left = 0;  // pages to visit
};
[[nodiscard]] std::string StageText(const CollectionMoment& moment);

}  // namespace quenlar
