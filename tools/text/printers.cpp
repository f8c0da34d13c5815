// The table of output modes, and the printers that need no alignment.
#include "tools/text/printers.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/text/text.h"

namespace qrytext {

namespace {

struct mode_row {
    std::string_view name;
    output_mode mode;
    std::string (*format)(const result &);
    bool for_people;
};

constexpr mode_row modes[] = {{"box", output_mode::box, format_box, true},
                              {"table", output_mode::table, format_table, true},
                              {"csv", output_mode::csv, format_csv, false},
                              {"json", output_mode::json, format_json, false},
                              {"jsonl", output_mode::jsonl, format_jsonl, false},
                              {"markdown", output_mode::markdown, format_markdown, false},
                              {"line", output_mode::line, format_line, true},
                              {"insert", output_mode::insert, format_insert, false}};

const mode_row &row_of(output_mode mode) {
    return *std::find_if(std::begin(modes), std::end(modes),
                         [&](const mode_row &m) { return m.mode == mode; });
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

std::string mode_names() {
    std::string names;
    for (const mode_row &row : modes) {
        names += names.empty() ? "" : ", ";
        names += row.name;
    }
    return names;
}

bool is_for_people(output_mode mode) {
    return row_of(mode).for_people;
}

std::string format_result(output_mode mode, const result &answer) {
    return row_of(mode).format(answer);
}

std::string cell_text(const cell &value) {
    if (const auto *number = std::get_if<std::int64_t>(&value)) {
        return fmt::format("{}", *number);
    }
    return std::get<std::string>(value);
}

std::string literal(const cell &value) {
    const auto *text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        return cell_text(value);
    }
    std::string quoted = "'";
    for (const char c : *text) {
        quoted += c == '\'' ? "''" : std::string(1, c);
    }
    return quoted + '\'';
}

std::string format_line(const result &answer) {
    std::size_t widest = 0;
    for (const std::string &title : answer.titles) {
        widest = std::max(widest, text_width(printable(title)));
    }
    std::string out;
    for (const std::vector<cell> &row : answer.rows) {
        out += out.empty() ? "" : "\n";
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string title = printable(answer.titles[i]);
            out += std::string(widest - text_width(title), ' ');
            out += fmt::format("{} = {}\n", title, printable(cell_text(row[i])));
        }
    }
    return out;
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

std::string format_insert(const result &answer) {
    std::string out;
    for (const std::vector<cell> &row : answer.rows) {
        std::string names;
        std::string values;
        for (std::size_t i = 0; i < row.size(); ++i) {
            names += (i == 0 ? "" : ", ") + answer.titles[i];
            values += (i == 0 ? "" : ", ") + literal(row[i]);
        }
        out += fmt::format("INSERT INTO {} ({}) VALUES ({});\n",
                           answer.table.empty() ? "RESULT" : answer.table, names, values);
    }
    return out;
}

} // namespace qrytext
