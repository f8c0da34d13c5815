// The two engines that the benchmark compares, filled with the same records.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <qrylib/qrylib.h>
#include <sqlite3.h>

namespace bench {

// How many departments both engines hold: what the element tables were built for.
std::uint16_t department_num();

// Fills DEPT_TBL (all columns) and EDIT_CNT_TBL of this library alone.
void fill_element_tables();

// The same of both engines. Exits with a sentence on any failure.
void fill(sqlite3 *database);

sqlite3 *open_database();

// Runs a SELECT through the public C functions and reads every value; what it read, folded into one number.
std::uint64_t query(const char *sql);

// The same on a prepared SQLite statement, which is reset afterwards.
std::uint64_t query(sqlite3_stmt *statement);

// Prepares, runs and finalizes.
std::uint64_t query(sqlite3 *database, const char *sql);

sqlite3_stmt *prepare(sqlite3 *database, const char *sql);

} // namespace bench
