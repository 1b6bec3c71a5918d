#include "collection/schema_version.h"

#include <cstdint>

#include "collection/collection_sql.h"

namespace quenlar {

Status CheckVersion(Database& database) {
  const Result<std::int64_t> version = database.Number(sql::kVersion);
  if (!version.ok()) return version.status();
  if (version.value() > sql::kSchemaVersion) {
    return database.Refusal(StatusKind::kLimit, "a newer version of Quenlar has made this collection");
  }
  const Result<bool> cut_short = database.IsCutShort();
  if (!cut_short.ok()) return cut_short.status();
  if (cut_short.value()) return database.Refusal(StatusKind::kFormat, "the database is damaged: its end is missing");
  if (version.value() != 0) return Status::Ok();
  const Result<std::int64_t> tables = database.Number(sql::kCountTables);
  if (!tables.ok()) return tables.status();
  return tables.value() == 0 ? database.Refusal(StatusKind::kNotFound, "nothing has been collected yet")
                             : database.Refusal(StatusKind::kFormat, "this is not a collection");
}

}  // namespace quenlar
