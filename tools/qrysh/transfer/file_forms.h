// Tables and answers in the forms of other programs' files.
#pragma once

#include <string>
#include <vector>

#include "tools/qrysh/transfer/sqlite_export.h"

namespace qrysh {

// Every record in use with every column. Throws std::runtime_error when the table cannot be read. Traces.
sqlite_table read_table(const std::string &db_name, const std::string &table);

// An answer as a table of a file: the types of its columns are those of its values.
sqlite_table describe_answer(const qrytext::result &answer);

// Statements that this shell reads. `db_name` is empty for an answer, which need not be a table's records.
std::string as_statements(const std::string &db_name, const std::vector<sqlite_table> &all);

bool is_csv(const std::string &path);

// The content of a file of the form that its name's ending asks for. Throws std::runtime_error when no form
// has that ending.
std::string content_for(const std::string &path, const std::string &db_name,
                        const std::vector<sqlite_table> &all);

} // namespace qrysh
