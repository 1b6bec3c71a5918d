// A collection of today's web as the main window's job.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "collection/collection.h"
#include "collection/collection_reader.h"
#include "crawl/crawler.h"
#include "engine/collection_end.h"
#include "engine/collection_texts.h"
#include "engine/engine.h"
#include "engine/job.h"
#include "platform/pump.h"
#include "settings/web_settings.h"

namespace quenlar {

// The addresses of the open collection are held in memory, so that a list of them asks the database for nothing. A run
// takes the web settings as they are when it begins.
class CollectionJob final : public Job, private CrawlView {
 public:
  // The references must outlive the job.
  CollectionJob(Engine& engine, WebClient& client, const WebSettings& settings, FrontEnd front_end, Pump::Pace pace);
  ~CollectionJob() override;
  CollectionJob(const CollectionJob&) = delete;
  CollectionJob& operator=(const CollectionJob&) = delete;

  // Reads the texts that are stored. Once, at the start of the program.
  void LoadTexts() { texts_.Load(); }

  [[nodiscard]] std::vector<std::string> Texts() const override { return texts_.All(); }
  bool AddText(std::string_view text) override { return texts_.Add(text); }
  void PickText(std::string_view text) override { texts_.Pick(text); }
  void RemoveText(std::string_view text) override { texts_.Remove(text); }
  void StoreTexts() override { texts_.Store(); }

  void Open(std::string_view text) override;
  void FinishLoading() override;
  // The file holds all that is listed, and also what is not suppressed any more.
  [[nodiscard]] bool TakeOutSuppressed() override { return suppression_changes_ == engine_.suppression_changes; }
  [[nodiscard]] bool HasFiles() const override { return !named_.name.empty(); }
  [[nodiscard]] const FoundAddresses& found() const override { return found_; }
  [[nodiscard]] std::int64_t scanned() const override { return static_cast<std::int64_t>(figures_.pages); }

  // What keeps a collection from being written, the run itself tells.
  [[nodiscard]] Status CheckCanBeSaved() override { return Status::Ok(); }
  [[nodiscard]] std::string report() const override;
  Status WriteReport() override;
  Status DeleteFiles() override;

  // Opens the collection for questions; also while a run goes on, whose pages until now are in it then. kNotFound, with
  // a message, before the first run.
  [[nodiscard]] Result<std::unique_ptr<CollectionReader>> Reader();
  // Writes the collection as a web page into the folder of the reports, and returns its path; "" where another opening,
  // or a second call, has come between. Pumps.
  [[nodiscard]] Result<std::string> WriteWebPage();
  [[nodiscard]] bool writing_page() const { return writing_page_; }

  void Run() override;
  void Stop() override;
  [[nodiscard]] bool running() const override { return running_; }
  void SaveAtOnce() override;

 private:
  enum class Pumping { kYes, kNo };

  void OnNewAddress(const NewAddress& found) override;
  void OnNotice(const std::string& text) override { notices_.push_back(text); }

  [[nodiscard]] std::string Path() const;
  [[nodiscard]] std::string WebPagePath() const;
  [[nodiscard]] Result<std::unique_ptr<CollectionReader>> OpenReader();
  // Opens what named_ says.
  void OpenNamed(Pumping pumping);
  [[nodiscard]] Status LoadAddresses(std::uint64_t opening, Pumping pumping);
  [[nodiscard]] CollectionEnd RunOnce(const WebSettings& settings, bool again);
  void VisitPages(const WebSettings& settings, bool again, CollectionEnd& end);
  [[nodiscard]] Status OpenForRun();
  [[nodiscard]] std::vector<std::string> StartsOfRun();
  void Crawl(const CrawlOptions& options, CollectionEnd& end);
  void ShowMoment();

  Engine& engine_;
  WebClient& client_;
  const WebSettings& settings_;
  FrontEnd front_end_;
  Pump pump_;
  CollectionTexts texts_;
  NamedCollection named_;
  FoundAddresses found_;
  std::uint64_t openings_ = 0;             // calls of Open so far
  std::uint64_t suppression_changes_ = 0;  // Engine::suppression_changes at the last opening
  bool loading_ = false, writing_page_ = false;

  std::unique_ptr<Collection> collection_;  // while a run goes on
  std::unique_ptr<Crawler> crawler_;
  CrawlFigures figures_;  // of the last run
  std::vector<std::string> notices_;
  bool running_ = false, stop_requested_ = false;
};

// What a run asks of the crawl.
[[nodiscard]] CrawlOptions CrawlOptionsOf(const WebSettings& settings, const std::string& language);

}  // namespace quenlar
