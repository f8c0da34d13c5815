// Statements through the public interface, as short as a workload wants them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace test {

using cell = std::variant<std::uint32_t, std::string>;
using cell_rows = std::vector<std::vector<cell>>;

enum class column_kind { number, text };

// Runs a SELECT whose columns are of the kinds given; `code` is 0 or why there are no rows.
cell_rows select(const char *db, const std::string &sql, const std::vector<column_kind> &kinds,
                 std::uint32_t &code);

std::uint32_t execute(const char *db, const std::string &sql);

struct named_value {
    const char *column;
    cell value;
};

std::uint32_t insert(const char *db, const char *table, const std::vector<named_value> &values);
std::uint32_t update(const char *db, const char *table, const std::vector<named_value> &values,
                     const std::string &where);

} // namespace test
