// Values put in place of the "?" of a statement.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/text/finding.h"

namespace qrytext {

// A statement with its values in it. What is said of it is said of the places in the text with the "?".
struct bound_statement {
    std::string sql;
    std::optional<finding> refusal = {}; // why the values cannot be put in

    // The place in the text with the "?".
    std::size_t place_before(std::size_t place) const;

    struct insertion {
        std::size_t place;  // in `sql`
        std::size_t length; // of the value there
    };
    std::vector<insertion> insertions = {};
};

// `parameters` is a JSON array with a number, a string or a {"hex"} for each "?" outside quotes.
bound_statement bind_parameters(const std::string &sql, const std::string &parameters);

} // namespace qrytext
