// Titles made unambiguous, and the select list read from the text where a result has no rows.
#include "tools/text/column_titles.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

namespace qrytext {

namespace {

constexpr std::string_view select_word = "SELECT ";
constexpr std::string_view from_word = " FROM ";

void qualify_repeated_names(std::vector<std::string> &titles, const std::vector<column_name> &columns) {
    std::map<std::string, int> seen;
    for (const std::string &title : titles) {
        ++seen[title];
    }
    for (std::size_t i = 0; i < titles.size(); ++i) {
        if (seen[titles[i]] > 1 && !columns[i].table.empty()) {
            titles[i] = columns[i].table + '.' + titles[i];
        }
    }
}

void number_repeated_titles(std::vector<std::string> &titles) {
    std::map<std::string, int> seen;
    for (std::string &title : titles) {
        const int occurrence = ++seen[title];
        if (occurrence > 1) {
            title += fmt::format(" ({})", occurrence);
        }
    }
}

column_name split_name(std::string_view name) {
    const std::size_t point = name.find('.');
    if (point == std::string_view::npos) {
        return {"", std::string(name)};
    }
    return {std::string(name.substr(0, point)), std::string(name.substr(point + 1))};
}

} // namespace

std::vector<std::string> make_titles(const std::vector<column_name> &columns) {
    std::vector<std::string> titles;
    titles.reserve(columns.size());
    for (const column_name &column : columns) {
        titles.push_back(column.name.empty() ? "COUNT(*)" : column.name);
    }
    qualify_repeated_names(titles, columns);
    number_repeated_titles(titles);
    return titles;
}

std::vector<column_name> select_list(std::string_view sql) {
    const std::size_t start = sql.find(select_word);
    const std::size_t end = sql.find(from_word);
    if (start == std::string_view::npos || end == std::string_view::npos || end < start) {
        return {};
    }
    std::string list(sql.substr(start + select_word.size(), end - start - select_word.size()));
    list.erase(std::remove(list.begin(), list.end(), ' '), list.end());
    std::vector<column_name> columns;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t comma = std::min(list.find(',', begin), list.size());
        columns.push_back(split_name(std::string_view(list).substr(begin, comma - begin)));
        begin = comma + 1;
    }
    return columns;
}

} // namespace qrytext
