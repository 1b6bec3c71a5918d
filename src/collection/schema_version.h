// Whether a database is a collection that this program can read.
#pragma once

#include "base/status.h"
#include "collection/database.h"

namespace quenlar {

// kNotFound: nothing is in it yet, as where the first run was killed in its first moments. kLimit: a newer program has
// made it. kFormat: it is damaged, or another program's.
[[nodiscard]] Status CheckVersion(Database& database);

}  // namespace quenlar
