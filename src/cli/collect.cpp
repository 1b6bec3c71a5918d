// quenlar collect: visits the sites of its starts and lists every new address as it is found.
#include <utility>

#include "base/ascii.h"
#include "cli/collect_run.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/line_reader.h"
#include "cli/link_rows.h"
#include "cli/option_checks.h"
#include "cli/paths.h"
#include "engine/collections.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "settings/web_settings.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestStart = 64 * 1024;

// Editors of Windows put a byte order mark in front of UTF-8.
std::string_view WithoutMark(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  return text;
}

// One start a line. Blanks around it do not count, nor do empty lines and lines that begin with "#".
void AddStartLine(std::string_view line, std::vector<std::string>& starts) {
  constexpr const char* kBlanks = " \t\r";
  const std::size_t begin = line.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return;
  const std::string_view start = line.substr(begin, line.find_last_not_of(kBlanks) + 1 - begin);
  if (start.front() != '#') starts.emplace_back(start);
}

Status ReadStarts(Invocation& invocation, const Files& files, const std::string& from,
                  std::vector<std::string>& starts) {
  if (from != "-") {
    const Result<std::string> text = ReadWhole(files, AbsolutePath(from));
    if (!text.ok()) return text.status();
    for (const std::string_view line : Split(WithoutMark(text.value()), "\n")) AddStartLine(line, starts);
    return Status::Ok();
  }
  LineReader lines(invocation.console(), kLongestStart);
  std::string line;
  bool first = true;
  for (;;) {
    switch (lines.Next(line)) {
      case LineReader::Outcome::kEnd:
        return Status::Ok();
      case LineReader::Outcome::kTooLong:
        return {StatusKind::kFormat, "A line of the starts is too long"};
      case LineReader::Outcome::kLine:
        AddStartLine(std::exchange(first, false) ? WithoutMark(line) : line, starts);
    }
  }
}

Status ReadLinks(const Files& files, const std::string& path, CollectOptions& options) {
  const Result<std::string> text = ReadWhole(files, AbsolutePath(path));
  if (!text.ok()) return text.status();
  Result<std::vector<HandedLink>> links = ParseLinkRows(text.value());
  if (!links.ok()) return links.status().WithContext(path);
  options.crawl.links = links.take();
  return Status::Ok();
}

CollectOptions OptionsOf(const CollectArguments& arguments) {
  CollectOptions options = arguments.options;
  options.format = FormatOf(arguments.format);
  options.crawl.scope = arguments.scope == "host"       ? CrawlScope::kHost
                        : arguments.scope == "anywhere" ? CrawlScope::kAnywhere
                                                        : CrawlScope::kSite;
  options.crawl.delay = std::chrono::milliseconds(static_cast<std::int64_t>(arguments.delay * 1000));
  options.crawl.obey_robots = arguments.robots != "ignore";
  options.crawl.keep_wire = !options.warc.empty();
  if (!options.warc.empty()) options.warc = AbsolutePath(options.warc);
  options.remove_words = TidyWords(options.remove_words);
  options.extract_words = TidyWords(options.extract_words);
  return options;
}

// Puts in what is stored, and stores what is new.
Status UseStored(Registry& registry, CrawlOptions& crawl) {
  if (Status read = registry.Flush(); !read.ok()) return read;
  WebSettings settings = LoadWebSettings(registry);
  if (!crawl.contact.empty()) settings.contact = crawl.contact;
  if (!crawl.search_service.empty()) settings.search_service = crawl.search_service;
  crawl.contact = settings.contact;
  crawl.search_service = settings.search_service;
  return StoreWebSettings(registry, settings);
}

Result<CollectResult> RunIn(Invocation& invocation, const CollectArguments& arguments) {
  invocation.choice().proxy = arguments.proxy;
  Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return place.status();
  CollectOptions options = OptionsOf(arguments);
  if (!arguments.from.empty()) {
    const Status read = ReadStarts(invocation, place.value().platform.files, arguments.from, options.starts);
    if (!read.ok()) return read;
  }
  if (!arguments.links.empty()) {
    const Status read = ReadLinks(place.value().platform.files, arguments.links, options);
    if (!read.ok()) return read;
  } else if (options.starts.empty()) {
    return Status(StatusKind::kNotFound, "There is nothing to start from");
  }
  if (const Status used = UseStored(place.value().platform.registry, options.crawl); !used.ok()) return used;
  Settings stored;
  const auto loaded = LoadStored(place.value().platform.registry, stored);
  if (!loaded.ok()) return loaded.status();
  options.crawl.language = arguments.language.empty() ? LanguageCode(stored.SearchLanguage) : arguments.language;
  if (options.name.empty()) {
    options.name = CollectionName(options.starts.front(), options.crawl.language, place.value().installation);
  }
  return RunCollect(invocation.console(), place.value(), invocation.system().web_client(), options,
                    [&](std::function<void()> stop) { invocation.system().OnStop(std::move(stop)); });
}

}  // namespace

int Collect(Invocation& invocation, const CollectArguments& arguments) {
  if (arguments.options.starts.empty() && arguments.from.empty() && arguments.links.empty()) {
    invocation.Say("quenlar: START, --from or --links is required");
    invocation.Say("Try: quenlar collect --help");
    return kExitUsage;
  }
  Result<CollectResult> run = RunIn(invocation, arguments);
  CollectResult result;
  if (run.ok()) {
    result = run.take();
  } else {
    result.status = invocation.Fail(run.status());
    result.reason = NameOf(CrawlEnd::kFailed);
    result.collection = arguments.options.name;
  }
  if (arguments.summary.empty()) return result.status;
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return result.status;
  const Status written = WriteWhole(platform.value().files, AbsolutePath(arguments.summary), SummaryText(result));
  return written.ok() ? result.status : invocation.Fail(written);
}

}  // namespace quenlar
