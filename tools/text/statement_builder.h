// Statement records: bound to a database for SQL text, or built up from an INSERT or UPDATE.
#pragma once

#include <qrylib/statement.h>

#include <string>

#include "tools/text/statement_text.h"

namespace qrytext {

// Owns a statement record and its blocks. Throws std::bad_alloc when the library has no block for it: the
// setters do not say so, and a record without one of its values must not be run.
class statement {
  public:
    explicit statement(const std::string &db_name);
    statement(const std::string &db_name, const write_statement &parsed);
    ~statement();
    statement(const statement &) = delete;
    statement &operator=(const statement &) = delete;

    qry_lib_db_stmt_ *get() { return &record_; }

  private:
    void set_column(std::int32_t index, const assignment &column);

    qry_lib_db_stmt_ record_{};
};

} // namespace qrytext
