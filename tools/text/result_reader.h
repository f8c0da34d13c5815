// A rowset read through the public calls.
#pragma once

#include <qrylib/rowset.h>

#include <string_view>

#include "tools/text/result.h"

namespace qrytext {

// Owns a rowset's rows.
class rowset {
  public:
    rowset() = default;
    ~rowset() { qry_lib_db_rowset_term(&record_); }
    rowset(const rowset &) = delete;
    rowset &operator=(const rowset &) = delete;

    qry_lib_db_rowset_ *get() { return &record_; }

  private:
    qry_lib_db_rowset_ record_{};
};

// Walks the rowset from its first row. `sql` names the columns where there is no row to name them.
result read_result(qry_lib_db_rowset_ &rows, std::string_view sql);

} // namespace qrytext
