// What the fuzz targets share: a filled store that every input finds alike, the reading of results, and the
// check that the memory partition is as full afterwards as before.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>
#include <qrylib/qrylib.h>

#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

using input = FuzzedDataProvider;

// Ends the run with a sentence when something does not hold: the fuzzer keeps the input.
void check(bool holds, const std::string &what);

// Puts the store back to its filled state: half the records of each table in use, each value of a column
// different, so that no join multiplies its rows. Costs nothing when nothing was written since.
void restore_store();

// Every name that a statement may use, in schema order.
struct table_name {
    const char *database;
    std::string table;
    std::vector<std::string> columns;
};
const std::vector<table_name> &tables();

// Any table name, column name or text: one of the schema's as a rule.
const table_name &pick_table(input &in);
std::string pick_column(input &in, const table_name &table);
std::string pick_text(input &in);

// Walks the rows and reads each value in every way, one column beyond the last included. A failed query must
// have left the rowset empty.
void read_and_release(std::uint32_t code, qry_lib_db_rowset_ &rowset);

// Goes with the process.
class temporary_folder {
  public:
    temporary_folder();
    temporary_folder(const temporary_folder &) = delete;
    temporary_folder &operator=(const temporary_folder &) = delete;
    ~temporary_folder();
    std::string file(const char *name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};
std::string content_of(const std::string &path);

// Lives for one input.
class balanced_memory {
  public:
    balanced_memory();
    balanced_memory(const balanced_memory &) = delete;
    balanced_memory &operator=(const balanced_memory &) = delete;
    ~balanced_memory();

  private:
    std::uint32_t blocks_;
};

} // namespace fuzz
