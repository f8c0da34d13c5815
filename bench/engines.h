// SQLite, which the library is compared with, holding the same records.
#pragma once

#include <cstdint>

#include <sqlite3.h>

#include "library.h"

namespace bench {

// In memory.
sqlite3 *open_database();

// Fills both engines. Exits with a sentence on any failure.
void fill(sqlite3 *database);

// Runs a prepared SELECT and reads every value, folded as the library's are; it is reset afterwards.
std::uint64_t query(sqlite3_stmt *statement);

// Prepares, runs and finalizes.
std::uint64_t query(sqlite3 *database, const char *sql);

sqlite3_stmt *prepare(sqlite3 *database, const char *sql);

} // namespace bench
