// The commands of collections as the command line knows them: names, options and help.
#include <cstdint>
#include <functional>
#include <limits>

#include "cli/commands.h"
#include "cli/declare.h"
#include "cli/option_checks.h"
#include "settings/web_checks.h"
#include "state/settings.h"

namespace quenlar {
namespace {

std::vector<std::string> LanguageCodes() {
  std::vector<std::string> codes;
  for (const Language& language : kLanguages) codes.emplace_back(language.code);
  return codes;
}

std::function<std::string(const std::string&)> Between(std::uint64_t lowest, std::uint64_t highest) {
  return [=](const std::string& given) { return CheckNumber(given, lowest, highest); };
}

auto AtLeastOne() { return Between(1, std::numeric_limits<std::uint64_t>::max()); }

void DeclareBudgets(CLI::App& command, CrawlOptions& crawl) {
  command.add_option("--pages", crawl.pages, "End the run after so many pages")->type_name("N")->check(AtLeastOne());
  command.add_option("--pages-per-host", crawl.pages_per_host, "Read so many pages of a host, over all runs (1000)")
      ->type_name("N")
      ->check(AtLeastOne());
  command.add_option("--minutes", crawl.minutes, "End the run after so many minutes; fractions are allowed")
      ->type_name("N")
      ->check(CheckPositive);
  command.add_option("--addresses", crawl.addresses, "End the run when the collection has so many addresses")
      ->type_name("N")
      ->check(AtLeastOne());
}

void DeclareManners(CLI::App& command, CollectArguments& arguments) {
  CrawlOptions& crawl = arguments.options.crawl;
  constexpr std::uint64_t kMostHosts = 100'000;
  constexpr int kLongestDelay = 3600;
  command.add_option("--hosts", crawl.hosts, "Hosts that are visited at the same time (64)")
      ->type_name("N")
      ->check(Between(1, kMostHosts));
  command
      .add_option("--delay", arguments.delay,
                  "Pause between two pages of a host in seconds (1); fractions are allowed, 0 is for your own server")
      ->type_name("SECONDS")
      ->check([](const std::string& given) { return CheckSeconds(given, kLongestDelay); });
  DeclareChoice(command, "--robots", arguments.robots, {"obey", "ignore"},
                "Whether the wishes of robots.txt and of pages are obeyed (obey)");
  command.add_option("--contact", crawl.contact, "A web or mail address of yours, sent to the sites; kept once given")
      ->type_name("TEXT")
      ->check(CheckContact);
  command.add_flag("--decode-protected", crawl.decode_protected,
                   "Also list addresses that their owners chose to hide from programs");
}

void DeclareCollect(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<CollectArguments>();
  CollectOptions& options = arguments->options;
  CLI::App* command =
      root.add_subcommand("collect", "Visit the sites of addresses or keywords and list their addresses");
  command->add_option("START", options.starts, "A site's address (with a dot, without blanks), or a keyword")
      ->type_name("")
      ->check(CheckOneLine);
  command->add_option("--from", arguments->from, "Read starts from this file, one a line; - is standard input")
      ->type_name("FILE")
      ->check(CheckNotEmpty);
  command->add_option("--name", options.name, "The collection's name, instead of one made from the first start")
      ->type_name("NAME")
      ->check(CheckNotEmpty);
  command
      ->add_option("--links", arguments->links,
                   "Visit the links of this file and what they lead to on their sites, and nothing else: one JSON "
                   "object a line, url, depth, private, https_first")
      ->type_name("FILE")
      ->check(CheckNotEmpty)
      ->excludes("START")
      ->excludes("--from")
      ->needs("--name");
  DeclareChoice(*command, "--scope", arguments->scope, {"host", "site", "anywhere"},
                "What links may lead to: the start's host, its site, or any site (site)");
  command->add_option("--depth", options.crawl.depth, "Clicks from a start (5); 0 is the start page alone")
      ->type_name("N")
      ->check(Between(0, 1000));
  DeclareBudgets(*command, options.crawl);
  DeclareManners(*command, *arguments);
  command->add_flag("--again", options.crawl.again, "Visit the pages of a finished collection anew");
  command
      ->add_option("--search", options.crawl.search_service,
                   "A search service with the SearXNG interface, for keywords; kept once given")
      ->type_name("URL")
      ->check(CheckServiceUrl);
  DeclareChoice(*command, "--language", arguments->language, LanguageCodes(), "Language of the search, for a keyword");
  DeclareFilterWords(*command, options.remove_words, options.extract_words);
  DeclareChoice(
      *command, "--format", arguments->format, {"lines", "csv", "jsonl"},
      "How a new address is printed: the address alone; address, page, title and place as csv; a JSON object");
  DeclareNetwork(*command, arguments->proxy, options.crawl.assume_online);
  command
      ->add_option("--warc", options.warc,
                   "Keep what is fetched in web archives, PREFIX-00000.warc.gz and so on, 1 GB each")
      ->type_name("PREFIX")
      ->check(CheckNotEmpty);
  command->add_option("--summary", arguments->summary, "Write one JSON object about the run to this file at its end")
      ->type_name("FILE")
      ->check(CheckNotEmpty);
  command->footer(
      R"(Each new address is printed as it is found, and everything lies in one database, data/NAME.sqlite. The same
command goes on where it stopped. Ctrl-C ends the run in order; a second Ctrl-C ends it at once. Without a
scheme https is tried first. robots.txt is obeyed, and a host is asked for one page at a time.

Exit status: 0 everything visited or a budget used up, 1 no run, no start that answers, or the collection could
not be written (the message says why), 2 wrong usage, 3 off line, 130 stopped by a signal.

Examples:
  quenlar collect www.example.org
  quenlar collect www.example.org --scope host --pages 100 --format csv
  quenlar collect --from sites.txt --name members --hosts 200 --contact https://me.example/why
  quenlar collect "picture search" --search https://search.example.org --language de)");
  Choose(*command, chosen, Collect, arguments);
}

void DeclareHarvest(CLI::App& root, Command& chosen) {
  constexpr std::uint64_t kMostJobs = 256;
  const auto arguments = std::make_shared<HarvestArguments>();
  HarvestOptions& options = arguments->options;
  CLI::App* command = root.add_subcommand("harvest", "List the addresses in web archives, files and folders");
  command
      ->add_option("INPUT", options.inputs, "A WARC, HTML or text file, a folder of such files, or - (standard input)")
      ->type_name("")
      ->required()
      ->check(CheckNotEmpty);
  DeclareChoice(*command, "--format", arguments->format, {"lines", "csv", "jsonl"},
                "Each address once; a row for each record with address, page, title and place as csv; JSON objects");
  command
      ->add_option("--name", options.name,
                   "Put everything into this collection as well; a harvest that was cut off goes on")
      ->type_name("NAME")
      ->check(CheckNotEmpty);
  command->add_option("--jobs", options.jobs, "Processor cores to use (all)")
      ->type_name("N")
      ->check(Between(1, kMostJobs));
  command->add_flag("--decode-protected", options.decode_protected,
                    "Also list addresses that their owners chose to hide from programs");
  DeclareChoice(*command, "--robots", arguments->robots, {"obey", "ignore"},
                "Whether pages that ask not to be indexed are left out (obey)");
  DeclareFilterWords(*command, options.remove_words, options.extract_words);
  command->add_flag("--progress", options.progress, "Show on a terminal how far it is");
  command->add_option("--summary", arguments->summary, "Write one JSON object about the run to this file at its end")
      ->type_name("FILE")
      ->check(CheckNotEmpty);
  command->footer(
      R"(What an input is shows in its first bytes, not in its name: WARC files may be plain or packed by gzip, and, but
for Windows, by zstd. Of an archive the answers with pages are read, as the run that fetched them would have read
them. Rows come in the order of the inputs and of the records in them, whatever the number of cores. Damaged
records are counted, and what can be read of them is. With --name rows are printed when they are in the
collection, lines prints the addresses that are new in it, and what has been read of the inputs is not read again.

Exit status: 0 everything read, 1 an input could not be read or is damaged (everything readable has been
printed), 2 wrong usage, 130 stopped by a signal.

Examples:
  quenlar harvest crawl.warc.gz
  quenlar harvest --format csv crawls/ saved-pages/
  quenlar harvest --name members crawls/
  curl -s https://archive.example/2026.warc.gz | quenlar harvest --format jsonl -)");
  Choose(*command, chosen, HarvestInputs, arguments);
}

void DeclareAddresses(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<AddressesArguments>();
  CLI::App* command = root.add_subcommand("addresses", "List what a collection holds");
  command->add_option("NAME", arguments->name, "The collection, as `quenlar collections` lists it")
      ->type_name("")
      ->required();
  DeclareChoice(
      *command, "--format", arguments->format, {"lines", "csv", "jsonl", "html"},
      "The address alone; address, page, title and place as csv; a JSON object; one web page that stands alone");
  command->add_flag("--sources", arguments->sources, "One row for each place of each page instead of one an address");
  DeclareChoice(*command, "--place", arguments->choice.place,
                {"text", "mailto", "attribute", "script", "comment", "protected"}, "Only what stands in such a place");
  command->add_option("--site", arguments->choice.site, "Only what stands on pages of this site")->type_name("SITE");
  command->add_option("--since", arguments->since, "Only what was first seen then or later: a date or a time, in UTC")
      ->type_name("TIME")
      ->check(CheckTime);
  command->footer(
      R"(Addresses come in the order in which they were found, with the page on which each was seen first. With
--sources, what does not stand there any more is marked "gone"; without it, it is left out. A collection can
be read while a run writes it.

The web page shows figures, charts and runs, and a list to search, to sort and to print; each address opens into
all its places. The page needs no network. With --sources it also lists addresses that are gone everywhere.

Examples:
  quenlar addresses example_org
  quenlar addresses example_org --format csv --place mailto
  quenlar addresses example_org --format html >example_org.html
  quenlar addresses example_org --sources --since 2026-11-22 --format jsonl)");
  Choose(*command, chosen, Addresses, arguments);
}

void DeclareWhy(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<WhyArguments>();
  CLI::App* command = root.add_subcommand("why", "Say why an address is listed or not, or a page was visited or not");
  command->add_option("NAME", arguments->name, "The collection, as `quenlar collections` lists it")
      ->type_name("")
      ->required();
  command->add_option("WHAT", arguments->what, "An e-mail address, or the address of a page")
      ->type_name("")
      ->required();
  DeclareChoice(*command, "--format", arguments->format, {"text", "jsonl"}, "Sentences, or the facts as a JSON object");
  command->footer(R"(Exit status: 0 when there is something definite to say, 1 when the collection knows nothing of it.

Examples:
  quenlar why example_org info@example.org
  quenlar why example_org https://www.example.org/members/ --format jsonl)");
  Choose(*command, chosen, Why, arguments);
}

void DeclareCollections(CLI::App& root, Command& chosen) {
  CLI::App* command = root.add_subcommand("collections", "List the collections, the last run first");
  command->footer(
      R"(Each line has the name, the number of addresses, of pages read, and of pages left to visit, parted by tabs.

Examples:
  quenlar collections)");
  command->callback([&chosen] { chosen = Collections; });
}

void DeclareSuppress(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<SuppressArguments>();
  CLI::App* command =
      root.add_subcommand("suppress", "Show or change the list of addresses that are never to be listed");
  CLI::Option* const entries =
      command->add_option("ENTRY", arguments->entries, "An address, @domain, or sha256: and the digest of an address")
          ->type_name("");
  CLI::Option* const import =
      command
          ->add_option("--import", arguments->import, "Add the entries of this file, one a line; - is standard input")
          ->type_name("FILE")
          ->check(CheckNotEmpty);
  command
      ->add_option("--remove", arguments->remove,
                   "Take these entries off the list; what was deleted does not come back")
      ->type_name("ENTRY ...")
      ->expected(1, kMostWords)
      ->excludes(entries)
      ->excludes(import);
  command->footer(
      R"(The list is the file suppressed.txt in the program folder; without an argument its entries are shown. It holds
for collections, runs of projects, harvests and merged lists. What is stored already of an entry that is added is
deleted. @domain holds for that domain alone, not for domains below it. Lines that begin with # are comments.

Exit status: 0 done, 1 something could not be done (the message says what), 2 wrong usage.

Examples:
  quenlar suppress
  quenlar suppress anna@example.org @example.net
  quenlar suppress --import objections.txt
  quenlar suppress --remove anna@example.org)");
  Choose(*command, chosen, Suppress, arguments);
}

void DeclareErase(CLI::App& root, Command& chosen) {
  const auto arguments = std::make_shared<EraseArguments>();
  CLI::App* command = root.add_subcommand("erase", "Take an address out of all collections and reports");
  command->add_option("ADDRESS", arguments->address, "The e-mail address")->type_name("")->required();
  command->add_flag("--suppress", arguments->suppress, "And never list it again: only its digest is kept");
  command->add_flag("-y,--yes", arguments->yes, "Do not ask");
  command->footer(
      R"(Also clears titles and links that hold the address, and writes the files anew so that no trace of it stays in
them. Asks on a terminal; elsewhere it does nothing without --yes. A collection in use by a run is left as it
is, with a message and status 1; the others are done. Files that the program does not keep itself, such as
merged lists, are not looked at.

Exit status: 0 done, also for an address that is nowhere, 1 something could not be done (the message says what),
2 wrong usage.

Examples:
  quenlar erase anna@example.org
  quenlar erase anna@example.org --suppress --yes)");
  Choose(*command, chosen, Erase, arguments);
}

}  // namespace

void DeclareCollectionCommands(CLI::App& root, Command& chosen) {
  for (const auto declare : {DeclareCollect, DeclareHarvest, DeclareAddresses, DeclareWhy, DeclareCollections,
                             DeclareErase, DeclareSuppress})
    declare(root, chosen);
}

}  // namespace quenlar
