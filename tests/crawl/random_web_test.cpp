// Random small webs: what is visited is what a plain search breadth first finds, however the run is cut in pieces and
// however slow each page is.
#include <deque>
#include <random>

#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

class RandomWebTest : public CrawlTest {
 protected:
  static constexpr int kHosts = 3, kPagesAHost = 6, kPages = kHosts * kPagesAHost;

  [[nodiscard]] static std::string UrlOfPage(int page) {
    return "https://h" + std::to_string(page / kPagesAHost) + ".firma.de/p" + std::to_string(page % kPagesAHost);
  }
  int Random(int below) { return std::uniform_int_distribution<>(0, below - 1)(random_); }

  void MakeWeb(unsigned seed) {
    random_.seed(seed);
    links_.assign(kPages, {});
    redirects_.assign(kPages, -1);
    for (int page = 0; page < kPages; ++page) {
      std::string body = "p" + std::to_string(page) + "@firma.de";
      for (int i = Random(4); i > 0; --i) {
        links_[page].push_back(Random(kPages));
        body += " <a href=" + UrlOfPage(links_[page].back()) + ">x</a>";
      }
      ScriptedWebAnswer answer{.body = body};
      // Redirects lead to pages that do not redirect, so that a way never has more than one.
      if (page % 5 == 4) {
        redirects_[page] = Random(kPages / 5) * 5;
        answer = WebRedirect(UrlOfPage(redirects_[page]));
      }
      answer.delay = std::chrono::milliseconds(Random(20'000));
      Page(UrlOfPage(page), answer);
    }
  }

  // The addresses that lie within `depth` clicks of the starts; a redirect costs none.
  [[nodiscard]] std::set<std::string> Expected(const std::vector<int>& starts, int depth) const {
    std::vector<int> clicks(kPages, -1);
    std::deque<std::pair<int, int>> queue;
    for (const int start : starts) queue.emplace_back(start, 0);
    std::set<std::string> addresses;
    while (!queue.empty()) {
      const auto [page, at] = queue.front();
      queue.pop_front();
      if (at > depth || (clicks[page] >= 0 && clicks[page] <= at)) continue;
      clicks[page] = at;
      if (redirects_[page] >= 0) {
        queue.emplace_front(redirects_[page], at);
        continue;
      }
      addresses.insert("p" + std::to_string(page) + "@firma.de");
      for (const int link : links_[page]) queue.emplace_back(link, at + 1);
    }
    return addresses;
  }

  [[nodiscard]] std::set<std::string> Found() const { return {view_.addresses.begin(), view_.addresses.end()}; }

  // Every web has a collection of its own.
  void BeginAnew(unsigned seed) {
    path_ = folder_.File("web" + std::to_string(seed) + ".sqlite");
    view_.addresses.clear();
    asked_ = client_.sent().size();
  }
  void ExpectNothingAskedForTwice() {
    std::set<std::string> urls;
    for (std::size_t i = asked_; i < client_.sent().size(); ++i) {
      EXPECT_TRUE(urls.insert(client_.sent()[i].request.url).second) << client_.sent()[i].request.url;
    }
  }

  std::mt19937 random_;
  std::vector<std::vector<int>> links_;
  std::vector<int> redirects_;  // -1: none
  std::size_t asked_ = 0;
};

TEST_F(RandomWebTest, EveryPageWithinTheClicksIsVisitedOnceWhateverTheOrder) {
  for (unsigned seed = 0; seed < 25; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    MakeWeb(seed);
    BeginAnew(seed);
    options_.depth = Random(5);
    options_.hosts = static_cast<std::size_t>(1 + Random(3));
    const std::vector<int> starts = {0, kPagesAHost + Random(4)};
    Crawl({UrlOfPage(starts[0]), UrlOfPage(starts[1])});
    EXPECT_EQ(Found(), Expected(starts, options_.depth));
    ExpectNothingAskedForTwice();
    if (HasFailure()) return;
  }
}

TEST_F(RandomWebTest, PiecesAreTheWholeAlsoWhereStartsAndClicksAreAddedLater) {
  for (unsigned seed = 100; seed < 112; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    MakeWeb(seed);
    BeginAnew(seed);
    std::vector<int> starts = {Random(kPages)};
    std::vector<std::string> texts = {UrlOfPage(starts[0])};
    for (int piece = 0; piece < 3; ++piece) {
      options_.depth = Random(4);
      options_.pages = static_cast<std::uint64_t>(1 + Random(4));
      Crawl(texts);
      starts.push_back(Random(kPages));
      texts.push_back(UrlOfPage(starts.back()));
    }
    options_.depth = 3;
    options_.pages.reset();
    Crawl(texts);
    EXPECT_EQ(Found(), Expected(starts, options_.depth));
    ExpectNothingAskedForTwice();
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace quenlar
