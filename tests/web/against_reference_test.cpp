// Page analysis against its plain reference, byte for byte.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "state/get_host.h"
#include "support/random_pages.h"
#include "support/reference_page.h"
#include "support/rounds.h"
#include "web/address_scan.h"
#include "web/analysis_world.h"
#include "web/links.h"
#include "web/page_matches.h"
#include "web/search_results.h"
#include "web/tag_text.h"

namespace quenlar {
namespace {

void ExpectSameScans(const ReferenceAnalysis& reference, const std::string& page) {
  std::vector<std::string_view> tags, texts, addresses;
  PageMatches matches(page);
  for (PageMatch match; matches.Next(match);) {
    (match.place == PageMatch::Place::kInTag ? tags : texts).push_back(match.text);
    ASSERT_EQ(match.address, reference.FirstAddress(match.text)) << page;
  }
  ASSERT_EQ(tags, reference.TagMatches(page)) << page;
  ASSERT_EQ(texts, reference.TextMatches(page)) << page;
  for (std::size_t from = 0;;) {
    const std::string_view address = NextAddress(page, from);
    if (address.empty()) break;
    addresses.push_back(address);
    from = static_cast<std::size_t>(address.data() - page.data()) + address.size();
  }
  ASSERT_EQ(addresses, reference.Addresses(page)) << page;
  ASSERT_EQ(GetPageTitle(page), reference.Title(page)) << page;
}

// Both sides of one project, page after page.
struct Pair {
  AnalysisWorld world;
  ReferenceAnalysis& reference;

  Pair(ReferenceAnalysis& with, std::mt19937& random) : reference(with) {
    world.project.IsKeywordProject = reference.queues.is_keyword = random() % 2 == 0;
    world.settings.CorrelationMode = static_cast<std::int16_t>(reference.queues.correlation_mode = random() % 2);
    world.settings.SaveInterval = static_cast<std::int16_t>(random() % 3);
    reference.save_every = world.settings.SaveEvery();
    world.settings.StopNumber = static_cast<std::int32_t>(reference.stop_number = random() % 4 == 0 ? 3 : 99999);
    reference.queues.levels = {};
    reference.found.clear();
    reference.saves.clear();
    reference.stop_requested = false;
  }

  void Parse(const std::string& page, const std::string& name) {
    ASSERT_EQ(world.Parse(page, name).result, reference.ParsePage(page, name)) << page;
    ASSERT_EQ(world.run.stop_requested, reference.stop_requested) << page;
    ASSERT_EQ(world.project.found.Count(), reference.found.size()) << page;
    for (std::uint32_t i = 0; i < world.project.found.Count(); ++i) {
      const FoundAddress at = world.project.found.At(i);
      const ReferenceRecord record{std::string(at.URL), std::string(at.Address), std::string(at.Title), at.TagOnly};
      ASSERT_EQ(record, reference.found[i]) << page;
      ASSERT_EQ(world.view.rows[i], (RecordingView::Row{i, record.tag_only})) << page;
    }
    ASSERT_EQ(std::vector<std::size_t>(world.data_saves.begin(), world.data_saves.end()), reference.saves);
    ExpectSameQueues(page);
  }

  void CollectResults(const std::string& page) {
    CollectResultLinks(page, world.project.queues[0]);
    reference.CollectResultLinks(page);
    ExpectSameQueues(page);
  }

  void ExpectSameQueues(const std::string& page) const {
    for (std::size_t level = 0; level < kLevels; ++level) {
      const LinkQueue& queue = world.project.queues[level];
      ASSERT_EQ(queue.Count(), reference.queues.levels[level].size()) << "level " << level << "\n" << page;
      for (std::uint32_t i = 0; i < queue.Count(); ++i) {
        const ReferenceLink link{std::string(queue.At(i).URL), queue.At(i).number};
        ASSERT_EQ(link, reference.queues.levels[level][i]) << "level " << level << "\n" << page;
      }
    }
  }
};

std::string RandomName(std::mt19937& random) {
  static const char* const kAddresses[] = {
      "http://h", "http://h/a/b/page.html", "http://o.de/hosted/x/y", "HTTP://h/", "h/x", "http://h/a/"};
  const char letter = random() % 2 == 0 ? 'M' : RequestLetter(static_cast<int>(random() % kLevels));
  const char digit = random() % 2 == 0 ? '0' : "0123456789-x"[random() % 12];
  return std::string(1, letter) + digit + kAddresses[random() % std::size(kAddresses)];
}

TEST(AgainstReference, ScansOfRandomPages) {
  std::mt19937 random(1);
  const ReferenceAnalysis reference;
  for (std::size_t i = 0; i < Rounds(6000); ++i) {
    ExpectSameScans(reference, RandomPage(random, 1 + random() % 60));
    if (HasFatalFailure()) FAIL() << "page " << i;
  }
}

TEST(AgainstReference, AnalysesOfRandomPages) {
  std::mt19937 random(2);
  ReferenceAnalysis reference;
  for (std::size_t i = 0; i < Rounds(1500); ++i) {
    Pair pair(reference, random);
    for (int page = 0; page < 4; ++page) {
      const std::string text =
          random() % 2 == 0 ? RandomPage(random, 1 + random() % 80) : RandomDocument(random, 1 + random() % 20);
      pair.Parse(text, RandomName(random));
      if (random() % 4 == 0) pair.CollectResults(text);
      if (HasFatalFailure()) FAIL() << "project " << i;
    }
  }
}

TEST(AgainstReference, SearchResultsOfRandomPages) {
  std::mt19937 random(3);
  ReferenceAnalysis reference;
  for (std::size_t i = 0; i < Rounds(2000); ++i) {
    Pair pair(reference, random);
    std::string page;
    static const char* const kPieces[] = {"<h3 class=", "<H3 CLASS=", "r",    "R",       ">",   "href=\"",
                                          "HREF=\"",    "\"",         "\"",   "http://", "a/",  "b",
                                          "google.",    "Google.",    "<h3 ", "/",       "<a ", "x\n"};
    for (std::size_t k = random() % 50; k-- > 0;) page += kPieces[random() % std::size(kPieces)];
    pair.CollectResults(page);
    if (HasFatalFailure()) FAIL() << "page " << i;
  }
}

TEST(AgainstReference, HostilePages) {
  std::mt19937 random(4);
  ReferenceAnalysis reference;
  for (const std::size_t bytes : {16u, 100u, 700u}) {
    for (const std::string& page : HostilePages(bytes)) {
      ExpectSameScans(reference, page);
      Pair pair(reference, random);
      pair.Parse(page, "M1http://h/a/b");
      pair.CollectResults(page);
      if (HasFatalFailure()) FAIL() << bytes << " bytes";
    }
  }
}

TEST(AgainstReference, LinksAndTagTexts) {
  std::mt19937 random(5);
  for (std::size_t i = 0; i < Rounds(20000); ++i) {
    const std::string target = RandomPage(random, random() % 6), page = RandomPage(random, random() % 8);
    ASSERT_EQ(ResolveLink(target, page), ReferenceResolve(target, page)) << target << " on " << page;
    ASSERT_EQ(GetHost(page), ReferenceHost(page)) << page;
    const std::string tag = "a " + page + (random() % 2 == 0 ? "href=" : "src=\"") + target;
    ASSERT_EQ(GetAttributeValue(tag, "href="), ReferenceAttribute(tag, "href=")) << tag;
    ASSERT_EQ(GetAttributeValue(tag, "src="), ReferenceAttribute(tag, "src=")) << tag;
    ASSERT_EQ(CleanText(page), ReferenceClean(page)) << page;
  }
}

// Pages that happen to lie on this machine; documentation mostly. There is nothing to check where there are none.
std::vector<std::string> PagesOnThisMachine(std::size_t most) {
  std::vector<std::string> pages;
  std::error_code none;
  namespace fs = std::filesystem;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator i("/usr/share/doc", options, none), end; i != end && pages.size() < most;
       i.increment(none)) {
    const std::string extension = i->path().extension().string();
    if ((extension != ".html" && extension != ".htm") || !i->is_regular_file(none)) continue;
    std::ifstream file(i->path(), std::ios::binary);
    pages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return pages;
}

TEST(AgainstReference, PagesOnThisMachine) {
  const std::vector<std::string> pages = PagesOnThisMachine(Rounds(150));
  if (pages.empty()) GTEST_SKIP() << "no pages in /usr/share/doc";  // check: unfinished is right
  std::mt19937 random(6);
  ReferenceAnalysis reference;
  for (const std::string& page : pages) {
    Pair pair(reference, random);
    pair.Parse(page, "M1http://h/a/b.html");
    if (HasFatalFailure()) FAIL();
  }
}

}  // namespace
}  // namespace quenlar
