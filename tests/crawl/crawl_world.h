// A small web in memory and a crawler over it. The time jumps from one thing to the next.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/collection_reader.h"
#include "collection/scratch_collection.h"
#include "crawl/crawler.h"
#include "support/fake_event_loop.h"
#include "support/fake_idna.h"
#include "support/fake_system.h"
#include "support/fake_text_decoder.h"
#include "support/scripted_web_client.h"

namespace quenlar {

// Drops what a test names.
class DropList final : public AddressFilter {
 public:
  std::set<std::string, std::less<>> dropped;
  [[nodiscard]] bool Keeps(std::string_view address) override { return !dropped.contains(address); }
};

class RecordingCrawlView final : public CrawlView {
 public:
  std::vector<std::string> addresses, rows, notices;
  std::function<void()> on_address;

  void OnNewAddress(const NewAddress& found) override {
    addresses.emplace_back(found.address);
    rows.push_back(std::string(found.address) + " " + std::string(found.page) + " " + std::string(found.title) + " " +
                   std::string(PlaceName(found.place)));
    if (on_address) on_address();
  }
  void OnNotice(const std::string& text) override { notices.push_back(text); }
};

class CrawlTest : public testing::Test {
 protected:
  CrawlTest() {
    options_.delay = std::chrono::seconds(1);
    // Whatever is not served is not there.
    client_.ServeOthers([](const WebRequest&) { return ScriptedWebAnswer{.status = 404}; });
  }

  // From a public place, unless the answer names another one.
  void Page(const std::string& url, ScriptedWebAnswer answer) {
    if (answer.ip == ScriptedWebAnswer().ip) answer.ip = kPublicPlace;
    client_.Serve(url, std::move(answer));
  }
  void Page(const std::string& url, const std::string& body) { Page(url, ScriptedWebAnswer{.body = body}); }
  void Robots(const std::string& origin, const std::string& rules) {
    Page(origin + "/robots.txt", ScriptedWebAnswer{.fields = {{"Content-Type", "text/plain"}}, .body = rules});
  }

  // A run as a process of its own makes it.
  Crawler::Outcome Crawl(const std::vector<std::string>& starts) {
    auto opened = Collection::Open(*files_, path_);
    EXPECT_TRUE(opened.ok()) << opened.status().message();
    collection_ = std::move(opened.value().collection);
    const CrawlWorld world{loop_, client_, interfaces_, clock_, idna_, decoder_, filter_, suppression_, view_};
    crawler_ = std::make_unique<Crawler>(world, *collection_, options_);
    Crawler::Outcome outcome = crawler_->Run(starts);
    EXPECT_TRUE(outcome.status.ok()) << outcome.status.message();
    figures_ = crawler_->figures();
    left_ = collection_->waiting();
    crawler_.reset();
    collection_.reset();
    return outcome;
  }

  // The URLs that were asked for, robots.txt left out.
  [[nodiscard]] std::vector<std::string> Visited() const {
    std::vector<std::string> urls;
    for (const std::string& url : client_.urls()) {
      if (!url.ends_with("/robots.txt")) urls.push_back(url);
    }
    return urls;
  }
  [[nodiscard]] int Count(const std::string& url) const {
    int count = 0;
    for (const std::string& asked : client_.urls()) count += asked == url;
    return count;
  }
  // When the n-th request for `url` began.
  [[nodiscard]] std::chrono::milliseconds At(const std::string& url, int n = 0) const {
    for (const auto& exchange : client_.sent()) {
      if (exchange.request.url == url && n-- == 0) return exchange.at;
    }
    ADD_FAILURE() << url << " was not asked for";
    return {};
  }
  // The first column of the rows in the file.
  [[nodiscard]] std::vector<std::string> Query(const char* sql) const {
    auto database = Database::Open(path_, Database::Mode::kRead);
    auto statement = database.value()->Prepare(sql);
    EXPECT_TRUE(statement.ok()) << statement.status().message();
    std::vector<std::string> rows;
    while (statement.value().Step().value()) rows.emplace_back(statement.value().Text(0));
    return rows;
  }

  static constexpr const char* kPublicPlace = "1.0.0.1";

  ScratchFolder folder_;
  std::unique_ptr<Files> files_ = SystemFiles();
  std::string path_ = folder_.File("crawl.sqlite");
  FakeEventLoop loop_;
  ScriptedWebClient client_{loop_};
  FakeInterfaceTable interfaces_;
  FakeClock clock_;
  FakeIdna idna_;
  FakeTextDecoder decoder_;
  DropList filter_, suppression_;
  RecordingCrawlView view_;
  CrawlOptions options_;
  std::unique_ptr<Collection> collection_;
  std::unique_ptr<Crawler> crawler_;
  CrawlFigures figures_;
  std::int64_t left_ = 0;
};

}  // namespace quenlar
