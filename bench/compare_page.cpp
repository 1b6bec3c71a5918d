// Whole page analysis (harvest, tag walk, resolution, queues, with the pump points) against the literal way and against
// HTML parsers that only take the links out. usage: compare_page PAGES-LIST ROUNDS
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <gumbo.h>
#include <libxml/HTMLparser.h>

#include "base/windows1252.h"
#include "bench/literal.h"
#include "bench/pages.h"
#include "bench/quenlar_pages.h"
#include "bench/table.h"

namespace quenlar::bench {
namespace {

constexpr int kQuietParser = HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET;
std::size_t links_seen;

void OnStart(void*, const xmlChar* name, const xmlChar** attributes) {
  if (std::strcmp(reinterpret_cast<const char*>(name), "a") != 0 || attributes == nullptr) return;
  for (; *attributes != nullptr; attributes += 2) {
    if (std::strcmp(reinterpret_cast<const char*>(*attributes), "href") == 0) ++links_seen;
  }
}

void PushParse(const std::string& page) {
  htmlSAXHandler handler{};
  handler.startElement = OnStart;
  htmlParserCtxtPtr parser = htmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr, XML_CHAR_ENCODING_8859_1);
  htmlCtxtUseOptions(parser, kQuietParser);
  htmlParseChunk(parser, page.data(), static_cast<int>(page.size()), 1);
  htmlFreeParserCtxt(parser);
}

void TreeLinks(const xmlNode* node) {
  for (; node != nullptr; node = node->next) {
    if (node->type == XML_ELEMENT_NODE && std::strcmp(reinterpret_cast<const char*>(node->name), "a") == 0)
      ++links_seen;
    TreeLinks(node->children);
  }
}

void TreeParse(const std::string& page) {
  htmlDocPtr document = htmlReadMemory(page.data(), static_cast<int>(page.size()), "", "ISO-8859-1", kQuietParser);
  if (document == nullptr) return;
  TreeLinks(document->children);
  xmlFreeDoc(document);
}

void GumboLinks(const GumboNode* node) {
  if (node->type != GUMBO_NODE_ELEMENT) return;
  if (node->v.element.tag == GUMBO_TAG_A && gumbo_get_attribute(&node->v.element.attributes, "href") != nullptr)
    ++links_seen;
  for (unsigned i = 0; i < node->v.element.children.length; ++i) {
    GumboLinks(static_cast<const GumboNode*>(node->v.element.children.data[i]));
  }
}

void GumboParse(const std::string& page) {
  GumboOutput* output = gumbo_parse_with_options(&kGumboDefaultOptions, page.data(), page.size());
  GumboLinks(output->root);
  gumbo_destroy_output(&kGumboDefaultOptions, output);
}

void OneCorpus(const std::string& title, const std::vector<std::string>& pages, int rounds, bool goals) {
  LiteralHarvest pcre2(Pcre2Jit);
  PageBench ours;
  const ReadBench reader;
  FoundSet by_pcre2;
  LiteralLinks links;
  std::vector<Side> sides = {
      {"Quenlar, all of a page's analysis",
       [&] {
         ours.Reset();
         for (const auto& p : pages) {
           if (IsAscii(p))
             ours.Analyse(p);  // no copy where there is nothing to convert
           else
             ours.Analyse(Windows1252ToUtf8(p));
         }
       }},
      {"the literal way: PCRE2 with JIT, plain searches, hash sets",
       [&] {
         by_pcre2 = {};
         links = {};
         for (const auto& p : pages) {
           const std::string text = Windows1252ToUtf8(p);
           Keep(pcre2.Title(text).size());
           pcre2.Page(text, by_pcre2);
           LiteralTagWalk(text, "http://www.bench.example/docs/page.html", links);
         }
       }},
      {"libxml2 push parser, links only",
       [&] {
         for (const auto& p : pages) PushParse(p);
       }},
      {"libxml2 tree, links only",
       [&] {
         for (const auto& p : pages) TreeParse(p);
       }},
      {"gumbo tree, links only",
       [&] {
         for (const auto& p : pages) GumboParse(p);
       }},
      {"Quenlar, the reader of a collection",
       [&] {
         for (const auto& p : pages) Keep(reader.Read(p));
       }},
  };
  const auto timings = Compare(sides, rounds);
  PrintComparison(title, timings, static_cast<double>(TotalBytes(pages)));
  if (!goals) return;
  PrintGoal("page analysis: times the literal way", 6, timings[1].ratio, true);
  PrintGoal("page analysis: times libxml2's push parser", 10, timings[2].ratio, true);
  PrintGoal("page analysis: times libxml2's tree", 30, timings[3].ratio, true);
  PrintGoal("page analysis: times gumbo", 45, timings[4].ratio, true);
  PrintGoal("page reader: its time, times the classic analysis's", 2.5, timings[5].ratio, false);
  PrintGoal("page reader: times libxml2's push parser", 5, timings[2].ratio / timings[5].ratio, true);
}

void PumpPoints(int rounds) {
  // One tag in ten is an anchor, and a tag stands in every 25 bytes, as in the documentation corpus.
  constexpr int kTags = 10'000, kAnchors = kTags / 10, kTimes = 100;
  std::string page;
  for (int i = 0; i < kAnchors; ++i) {
    page += "<p><a href=\"page" + std::to_string(i) + ".html\">some words of a page</a>, <b>and some more</b></p>\n" +
            "<pre><span class=\"k\">and</span> <i>so</i> on</pre>\n<br><hr width=\"100%\" size=\"10\">" +
            "and so on, through all of the page\n";
  }
  const auto timings = Compare({{"analysis, pump points that ask when time has passed",
                                 [&] {
                                   PageBench bench;
                                   for (int i = 0; i < kTimes; ++i) bench.Analyse(page);
                                 }},
                                {"analysis, pump points that call the (idle) loop each time",
                                 [&] {
                                   PageBench bench(Pump::Pace::kAlways);
                                   for (int i = 0; i < kTimes; ++i) bench.Analyse(page);
                                 }}},
                               rounds);
  PrintComparison("Pump points in a page of 10,000 tags", timings, kTimes * static_cast<double>(page.size()));
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  using namespace quenlar::bench;
  if (argc != 3) return std::fprintf(stderr, "usage: compare_page PAGES-LIST ROUNDS\n"), 2;
  const int rounds = std::atoi(argv[2]);
  Heading("Whole page analysis");
  OneCorpus("Documentation corpus", LoadPages(argv[1]), rounds, true);
  OneCorpus("Mailing-list archives", DensePages(32u << 20), rounds, false);
  PumpPoints(rounds);
}
