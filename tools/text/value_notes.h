// What becomes of one value: in a comparison, or written into a column.
#pragma once

#include <qrylib/catalog.h>

#include <string>
#include <vector>

#include "tools/text/clauses.h"
#include "tools/text/finding.h"
#include "tools/text/query_reader.h"
#include "tools/text/statement_text.h"

namespace qrytext {

// `span` is the value as it is written, `kept` what the analysis made of the comparison.
void note_compared_value(const std::string &sql, text_span span, const query_condition &kept,
                         const qry_lib_catalog_column_ &column, std::vector<finding> &notes);

void note_written_value(const std::string &sql, const assignment &given,
                        const qry_lib_catalog_column_ &column, std::vector<finding> &notes);

// What the column holds when the value is written into it.
cell stored_value(const cell &given, const qry_lib_catalog_column_ &column);

// The note that a part of the text is read as more of what stands before it, or is dropped.
finding left_over(const std::string &sql, text_span span, const std::string &what,
                  const std::string &otherwise);

} // namespace qrytext
