// What kind of statement a text is, and where its clauses and comparisons stand, cut as the library cuts
// them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace qrytext {

// Part of a statement's text, blanks around it aside.
struct text_span {
    std::size_t place;
    std::size_t length;
};

// An empty span for a clause that is not there. Right for statements that the library accepts.
struct clauses {
    text_span columns;   // of a SELECT
    text_span condition; // behind WHERE
    text_span sort;      // behind ORDER BY
    bool is_sorted;      // ORDER BY is there, though perhaps with nothing behind it
};

clauses clauses_of(const std::string &sql);

// The comparisons of a condition: cut at every " AND ", or at every " OR ", those inside quotes included.
std::vector<text_span> comparisons_of(const std::string &sql, text_span condition);

// The items between the commas of a span.
std::vector<text_span> items_of(const std::string &sql, text_span list);

// Whether a DELETE, DROP or UPDATE takes every record.
bool takes_every_record(const std::string &sql);

// "select", "count", "insert", "update", "delete", "drop", "create" or "unknown": told by its first words
// and, of a SELECT, by what it selects.
std::string kind_name(const std::string &sql);

} // namespace qrytext
