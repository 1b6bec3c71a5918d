#include "collection/collection_reader.h"

#include <utility>

#include "collection/collection_sql.h"
#include "collection/schema_version.h"

namespace quenlar {
namespace {

// From the columns of sql::kSightings.
Sighting ReadSighting(const Statement& row) {
  Sighting sighting;
  sighting.address = row.Text(1);
  sighting.page = row.Text(2);
  sighting.title = row.Text(3);
  sighting.place = row.Text(4);
  sighting.written = row.Text(5);
  sighting.site = row.Text(6);
  sighting.first_seen = row.Int(7);
  sighting.last_seen = row.Int(8);
  sighting.gone = row.Int(9) != 0;
  sighting.page_id = row.Int(10);
  return sighting;
}

std::optional<std::string_view> OrNull(const std::string& text) {
  return text.empty() ? std::optional<std::string_view>() : std::string_view(text);
}

Result<std::string> OneText(Database& database, const char* sql, std::string_view value) {
  Result<Statement> row = database.Prepare(sql);
  if (!row.ok()) return row.status();
  const Result<bool> found = row.value().Bind(value).Step();
  if (!found.ok()) return found.status();
  return std::string(found.value() ? row.value().Text(0) : std::string_view());
}

}  // namespace

Result<std::unique_ptr<CollectionReader>> CollectionReader::Open(const std::string& path) {
  auto database = Database::Open(path, Database::Mode::kRead);
  if (!database.ok()) return database.status();
  std::unique_ptr<CollectionReader> reader(
      new CollectionReader(database.take()));  // check: raw-new a private constructor
  if (const Status checked = reader->Check(); !checked.ok()) return checked;
  return reader;
}

Status CollectionReader::Check() {
  if (const Status version = CheckVersion(*database_); !version.ok()) return version;
  const Result<std::string> first = OneText(*database_, sql::kFact, "first seed");
  if (!first.ok()) return first.status();
  const Result<std::string> second = OneText(*database_, sql::kFact, "second seed");
  if (!second.ok()) return second.status();
  keys_ = PageKeys(first.value(), second.value());
  return Status::Ok();
}

Result<CollectionFigures> CollectionReader::Figures() {
  CollectionFigures figures;
  const struct {
    std::int64_t& figure;
    const char* sql;
  } all[] = {{figures.addresses, sql::kCountAddresses},
             {figures.pages, sql::kCountRead},
             {figures.left, sql::kCountWaiting},
             {figures.last_run, sql::kLastRun}};
  for (const auto& [figure, text] : all) {
    const Result<std::int64_t> number = database_->Number(text);
    if (!number.ok()) return number.status();
    figure = number.value();
  }
  return figures;
}

// `room` holds the text where it is another one. A file's own name is no URL and is shown as it is.
std::string_view CollectionReader::ShownUrl(std::string_view url, std::string& room) const {
  const std::size_t slashes = url.find("://");
  if (slashes == std::string_view::npos || !NamesLeftOut(url)) return url;
  room = std::string(url.substr(0, url.find('/', slashes + 3))) + "/(erased)";
  return room;
}

// `row` may be stepped through by `each`'s caller alone. With `once`, of each address what stands first and is not
// gone.
Status CollectionReader::GiveRows(Statement& row, bool once, const Each& each) {
  std::int64_t last = 0;
  std::string room;
  for (;;) {
    const Result<bool> found = row.Step();
    if (!found.ok()) return found.status();
    if (!found.value()) return Status::Ok();
    Sighting sighting = ReadSighting(row);
    if (once && (sighting.gone || row.Int(0) == last)) continue;
    last = row.Int(0);
    if (IsLeftOut(sighting.address)) continue;
    if (NamesLeftOut(sighting.title)) sighting.title = {};
    sighting.page = ShownUrl(sighting.page, room);
    if (!each(sighting)) return Status::Ok();
  }
}

Status CollectionReader::GiveSightings(const SightingChoice& choice, bool once, const Each& each) {
  Result<Statement> row = database_->Prepare(sql::kSightings);
  if (!row.ok()) return row.status();
  row.value().Bind(OrNull(choice.place), OrNull(choice.site), choice.since);
  return GiveRows(row.value(), once, each);
}

Status CollectionReader::Addresses(const SightingChoice& choice, const Each& each) {
  return GiveSightings(choice, true, each);
}

Status CollectionReader::Listed(const std::function<bool(const ListedAddress&)>& each) {
  constexpr std::int64_t kAtOnce = 1000;
  const Result<std::int64_t> last = database_->Number(sql::kLastAddress);
  if (!last.ok()) return last.status();
  Result<Statement> prepared = database_->Prepare(sql::kListedAddresses);
  if (!prepared.ok()) return prepared.status();
  Statement& row = prepared.value();
  std::string room;
  for (std::int64_t from = 0; from < last.value(); from += kAtOnce) {
    row.Reset();
    row.Bind(from, from + kAtOnce);
    for (;;) {
      const Result<bool> found = row.Step();
      if (!found.ok()) return found.status();
      if (!found.value()) break;
      if (IsLeftOut(row.Text(0))) continue;
      const std::string_view title = NamesLeftOut(row.Text(2)) ? std::string_view() : row.Text(2);
      if (!each({row.Text(0), ShownUrl(row.Text(1), room), title})) return Status::Ok();
    }
  }
  return Status::Ok();
}

Status CollectionReader::Sightings(const SightingChoice& choice, const Each& each) {
  return GiveSightings(choice, false, each);
}

Status CollectionReader::SightingsOf(std::string_view address, const Each& each) {
  Result<Statement> row = database_->Prepare(sql::kSightingsOf);
  if (!row.ok()) return row.status();
  row.value().Bind(address);
  return GiveRows(row.value(), false, each);
}

Result<std::optional<PageFacts>> CollectionReader::Page(const Url& url) {
  Result<Statement> prepared = database_->Prepare(sql::kPageFacts);
  if (!prepared.ok()) return prepared.status();
  Statement& row = prepared.value();
  row.Bind(keys_.Of(url.PageKey()));
  for (;;) {
    const Result<bool> found = row.Step();
    if (!found.ok()) return found.status();
    if (!found.value()) return std::optional<PageFacts>();
    const std::string_view known = row.Text(0);
    if (known.substr(known.find("//") + 2) == url.PageKey()) break;
  }
  PageFacts facts;
  std::string* const texts[] = {&facts.url,  &facts.parent, &facts.state,    &facts.reason,     &facts.rule,
                                &facts.type, &facts.title,  &facts.moved_to, &facts.host_reason};
  int column = 0;
  for (std::string* const text : texts) *text = row.Text(column++);
  facts.depth = static_cast<int>(row.Int(9));
  facts.line = static_cast<int>(row.Int(10));
  facts.status = static_cast<int>(row.Int(11));
  facts.time = row.Int(12);
  facts.protected_count = row.Int(13);
  facts.filtered_count = row.Int(14);
  facts.addresses = row.Int(15);
  return std::optional<PageFacts>(std::move(facts));
}

Result<std::string> CollectionReader::Fact(std::string_view name) { return OneText(*database_, sql::kFact, name); }

Result<std::vector<StartRow>> CollectionReader::Starts() {
  Result<Statement> row = database_->Prepare(sql::kStarts);
  if (!row.ok()) return row.status();
  return ReadStarts(row.value());
}

Result<std::vector<Refusals>> CollectionReader::PagesRefused() {
  Result<Statement> prepared = database_->Prepare(sql::kRefusals);
  if (!prepared.ok()) return prepared.status();
  Statement& row = prepared.value();
  std::vector<Refusals> refusals;
  for (;;) {
    const Result<bool> found = row.Step();
    if (!found.ok()) return found.status();
    if (!found.value()) return refusals;
    refusals.push_back({std::string(row.Text(0)), row.Int(1)});
  }
}

Result<std::vector<RunRecord>> CollectionReader::Runs() {
  Result<Statement> prepared = database_->Prepare(sql::kRuns);
  if (!prepared.ok()) return prepared.status();
  Statement& row = prepared.value();
  std::vector<RunRecord> runs;
  for (;;) {
    const Result<bool> found = row.Step();
    if (!found.ok()) return found.status();
    if (!found.value()) return runs;
    const auto number = [&](int column) { return static_cast<std::uint64_t>(row.Int(column)); };
    RunRecord run;
    run.started = row.Int(0);
    run.ended = row.Int(1);
    run.reason = row.Text(2);
    run.pages = number(3);
    run.failed = number(4);
    run.refused = number(5);
    run.fresh = number(6);
    run.protected_count = number(7);
    run.filtered = number(8);
    run.bytes = number(9);
    run.seconds = row.Real(10);
    runs.push_back(std::move(run));
  }
}

}  // namespace quenlar
