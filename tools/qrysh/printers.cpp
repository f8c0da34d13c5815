// Tables and comma-separated values.
#include "tools/qrysh/printers.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/qrysh/text.h"

namespace qrysh {

namespace {

struct mode_row {
    std::string_view name;
    output_mode mode;
    std::string (*format)(const result &);
};

constexpr mode_row modes[] = {{"table", output_mode::table, format_table},
                              {"csv", output_mode::csv, format_csv},
                              {"json", output_mode::json, format_json}};

constexpr std::string_view column_gap = "  ";

std::string cell_text(const cell &value) {
    if (const auto *number = std::get_if<std::int64_t>(&value)) {
        return fmt::format("{}", *number);
    }
    return std::get<std::string>(value);
}

// A cell as it stands in a table.
struct table_cell {
    std::string text;
    std::size_t width;
    bool to_the_right;
};

table_cell make_table_cell(std::string_view text, bool to_the_right) {
    std::string shown = printable(text);
    const std::size_t width = text_width(shown);
    return {std::move(shown), width, to_the_right};
}

using table_row = std::vector<table_cell>;

std::vector<table_row> make_table_rows(const result &answer) {
    std::vector<table_row> rows(1);
    for (std::size_t i = 0; i < answer.titles.size(); ++i) {
        const bool over_numbers =
            !answer.rows.empty() && std::holds_alternative<std::int64_t>(answer.rows.front()[i]);
        rows.front().push_back(make_table_cell(answer.titles[i], over_numbers));
    }
    for (const std::vector<cell> &row : answer.rows) {
        table_row &line = rows.emplace_back();
        for (const cell &value : row) {
            line.push_back(make_table_cell(cell_text(value), std::holds_alternative<std::int64_t>(value)));
        }
    }
    return rows;
}

std::vector<std::size_t> column_widths(const std::vector<table_row> &rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const table_row &row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].width);
        }
    }
    return widths;
}

std::string table_line(const table_row &row, const std::vector<std::size_t> &widths) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::string padding(widths[i] - row[i].width, ' ');
        line += i == 0 ? "" : column_gap;
        line += row[i].to_the_right ? padding + row[i].text : row[i].text + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

std::string rule_line(const std::vector<std::size_t> &widths) {
    table_row rule;
    for (const std::size_t width : widths) {
        rule.push_back({std::string(width, '-'), width, false});
    }
    return table_line(rule, widths);
}

std::string csv_field(std::string_view text) {
    if (text.find_first_of("\",\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

std::string csv_line(const std::vector<std::string> &fields) {
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        line += i == 0 ? "" : ",";
        line += csv_field(fields[i]);
    }
    return line + "\r\n";
}

} // namespace

std::optional<output_mode> mode_named(std::string_view name) {
    const auto *row =
        std::find_if(std::begin(modes), std::end(modes), [&](const mode_row &m) { return m.name == name; });
    return row == std::end(modes) ? std::nullopt : std::optional(row->mode);
}

std::string format_result(output_mode mode, const result &answer) {
    const auto *row =
        std::find_if(std::begin(modes), std::end(modes), [&](const mode_row &m) { return m.mode == mode; });
    return row->format(answer);
}

std::string format_table(const result &answer) {
    std::string out;
    if (!answer.titles.empty()) {
        const std::vector<table_row> rows = make_table_rows(answer);
        const std::vector<std::size_t> widths = column_widths(rows);
        out = table_line(rows.front(), widths) + rule_line(widths);
        for (std::size_t i = 1; i < rows.size(); ++i) {
            out += table_line(rows[i], widths);
        }
    }
    return out + fmt::format("({} {})\n", answer.rows.size(), answer.rows.size() == 1 ? "row" : "rows");
}

std::string format_csv(const result &answer) {
    std::string out = csv_line(answer.titles);
    for (const std::vector<cell> &row : answer.rows) {
        std::vector<std::string> fields;
        std::transform(row.begin(), row.end(), std::back_inserter(fields), cell_text);
        out += csv_line(fields);
    }
    return out;
}

} // namespace qrysh
