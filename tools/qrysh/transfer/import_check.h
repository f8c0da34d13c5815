// A CSV file's rows checked against a table, and turned into INSERTs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qrysh/transfer/csv_reader.h"
#include "tools/text/statement_text.h"

namespace qrysh {

using namespace qrytext;

struct import_fault {
    file_place place;
    std::string sentence;
};

struct import_plan {
    std::vector<write_statement> inserts; // of use only when there are no faults
    std::vector<import_fault> faults;     // in the order of the file, the first of them
    std::size_t fault_num = 0;            // all of them
};

// A file may have one in every field: no more than these are kept.
constexpr std::size_t faults_kept = 20;

// Files of more bytes are no records of any device.
constexpr std::size_t import_size_max = std::size_t{64} * 1024 * 1024;

// Reads a file's text. Looks at the records in use too: a key that exists needs no free record, a new one
// does. Traces.
import_plan plan_import(const std::string &db_name, const std::string &table, std::string_view text);

} // namespace qrysh
