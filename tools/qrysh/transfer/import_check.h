// A CSV file's rows checked against a table, and turned into INSERTs.
#pragma once

#include <string>
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
    std::vector<import_fault> faults;     // in the order of the file
};

// Looks at the records in use too: a key that exists needs no free record, a new one does. Traces.
import_plan plan_import(const std::string &db_name, const std::string &table,
                        const std::vector<std::vector<csv_field>> &rows);

} // namespace qrysh
