#include "collection/erase_addresses.h"

#include <cstdint>

#include "base/ascii.h"
#include "collection/collection_sql.h"
#include "collection/database.h"
#include "collection/schema_version.h"

namespace quenlar {
namespace {

// Calls `each` with the number in the first column and the text in the second, row by row.
template <typename Each>
Status ForEachText(Database& database, const char* sql, Each each) {
  Result<Statement> rows = database.Prepare(sql);
  if (!rows.ok()) return rows.status();
  for (;;) {
    const Result<bool> row = rows.value().Step();
    if (!row.ok()) return row.status();
    if (!row.value()) return Status::Ok();
    each(rows.value().Int(0), rows.value().Text(1));
  }
}

Status RunForEach(Database& database, const char* sql, const std::vector<std::int64_t>& ids) {
  if (ids.empty()) return Status::Ok();
  Result<Statement> statement = database.Prepare(sql);
  if (!statement.ok()) return statement.status();
  for (const std::int64_t id : ids) {
    if (const Status run = statement.value().Bind(id).Run(); !run.ok()) return run;
  }
  return Status::Ok();
}

Status EraseRows(Database& database, const AddressTest& keeps, ErasedFromCollection& erased) {
  std::vector<std::int64_t> ids;
  const Status read = ForEachText(database, sql::kAllAddresses, [&](std::int64_t id, std::string_view address) {
    if (keeps(address)) return;
    ids.push_back(id);
    erased.addresses.push_back(Lower(address));
  });
  if (!read.ok()) return read;
  if (const Status whole = RunForEach(database, sql::kForgetValidators, ids); !whole.ok()) return whole;
  if (const Status gone = RunForEach(database, sql::kEraseSightings, ids); !gone.ok()) return gone;
  return RunForEach(database, sql::kEraseAddress, ids);
}

Status ClearTexts(Database& database, const AddressTest& keeps, ErasedFromCollection& erased) {
  constexpr struct {
    const char *texts, *clear;
  } kAll[] = {{sql::kTitlesWithSigns, sql::kEraseTitle},
              {sql::kUrlsWithSigns, sql::kEraseUrl},
              {sql::kRulesWithSigns, sql::kEraseRule},
              {sql::kReasonsWithSigns, sql::kEraseReason},
              {sql::kHostReasonsWithSigns, sql::kEraseHostReason},
              {sql::kRobotsWithSigns, sql::kForgetRobots},
              {sql::kStartsWithSigns, sql::kEraseStart}};
  for (const auto& [texts, clear] : kAll) {
    std::vector<std::int64_t> ids;
    const Status read = ForEachText(database, texts, [&](std::int64_t id, std::string_view text) {
      if (NextUnwanted(text, keeps)) ids.push_back(id);
    });
    if (!read.ok()) return read;
    if (const Status cleared = RunForEach(database, clear, ids); !cleared.ok()) return cleared;
    erased.texts += ids.size();
  }
  return Status::Ok();
}

Status EmptyLog(Database& database) {
  const Result<std::int64_t> kept = database.Number(sql::kEmptyLog);
  if (!kept.ok()) return kept.status();
  return kept.value() == 0 ? Status::Ok() : database.Refusal(StatusKind::kBusy, "another program has it open");
}

// Writes everything anew. Where that fails, or is cut short, the mark stays and the next one does it again.
Status ClearTraces(Database& database) {
  if (const Status rewritten = database.Execute(sql::kRewrite); !rewritten.ok()) return rewritten;
  if (const Status emptied = EmptyLog(database); !emptied.ok()) return emptied;
  return database.Execute(sql::kUnmarkTraces);
}

Status Erase(Database& database, const AddressTest& keeps, ErasedFromCollection& erased) {
  if (const Status set = database.Execute(sql::kEraseSettings); !set.ok()) return set;
  const Status checked = CheckVersion(database);
  if (checked.kind() == StatusKind::kNotFound) return Status::Ok();
  if (!checked.ok()) return checked;
  const Result<std::int64_t> marked = database.Number(sql::kTracesAreLeft);
  if (!marked.ok()) return marked.status();
  if (const Status begun = database.Execute("BEGIN IMMEDIATE"); !begun.ok()) return begun;
  Status done = EraseRows(database, keeps, erased);
  if (done.ok()) done = ClearTexts(database, keeps, erased);
  const bool changed = !erased.addresses.empty() || erased.texts > 0;
  if (done.ok() && changed) done = database.Execute(sql::kMarkTraces);
  if (!done.ok() || !changed) {
    database.RollBack();
    return !done.ok() || marked.value() == 0 ? done : ClearTraces(database);
  }
  if (done = database.Execute("COMMIT"); !done.ok()) return done;
  return ClearTraces(database);
}

}  // namespace

Result<ErasedFromCollection> EraseAddresses(const std::string& path, const AddressTest& keeps) {
  auto database = Database::Open(path, Database::Mode::kWrite);
  if (!database.ok()) return database.status();
  ErasedFromCollection erased;
  if (const Status done = Erase(*database.value(), keeps, erased); !done.ok()) return done;
  return erased;
}

}  // namespace quenlar
