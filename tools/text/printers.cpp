// The table of output modes, and the printers that need no alignment.
#include "tools/text/printers.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "tools/text/text.h"

namespace qrytext {

namespace {

// The lines of an answer in which its titles stand.
struct title_lines {
    std::size_t first;
    std::size_t num;
};

struct mode_row {
    std::string_view name;
    output_mode mode;
    std::string (*format)(const result &);
    bool for_people;
    title_lines titles;
};

std::string format_plain_lines(const result &answer) {
    return format_line(answer, 0);
}

constexpr mode_row modes[] = {{"box", output_mode::box, format_box, true, {1, 2}},
                              {"table", output_mode::table, format_table, true, {0, 2}},
                              {"csv", output_mode::csv, format_csv, false, {0, 1}},
                              {"tabs", output_mode::tabs, format_tabs, false, {0, 1}},
                              {"list", output_mode::list, format_list, false, {0, 1}},
                              {"json", output_mode::json, format_json, false, {}},
                              {"jsonl", output_mode::jsonl, format_jsonl, false, {}},
                              {"markdown", output_mode::markdown, format_markdown, false, {}},
                              {"line", output_mode::line, format_plain_lines, true, {}},
                              {"insert", output_mode::insert, format_insert, false, {}}};

const mode_row &row_of(output_mode mode) {
    return *std::find_if(std::begin(modes), std::end(modes),
                         [&](const mode_row &m) { return m.mode == mode; });
}

// No title has a line end in it.
std::string without_titles(std::string text, const title_lines &titles) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < titles.first; ++i) {
        begin = text.find('\n', begin) + 1;
    }
    for (std::size_t i = 0; i < titles.num; ++i) {
        text.erase(begin, text.find('\n', begin) + 1 - begin);
    }
    return text;
}

bool is_wider(std::string_view text, std::size_t columns) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        if (text_width(text.substr(0, end)) > columns) {
            return true;
        }
        text.remove_prefix(end + 1);
    }
    return false;
}

// A text in pieces of at most `room` terminal columns, those below the first moved to the right.
std::string folded(std::string_view text, std::size_t room, std::size_t indent) {
    std::string out;
    std::size_t used = 0;
    while (!text.empty()) {
        const std::string_view character = text.substr(0, decode_character(text).length);
        const std::size_t width = text_width(character);
        if (used + width > room) {
            out += '\n' + std::string(indent, ' ');
            used = 0;
        }
        out += character;
        used += width;
        text.remove_prefix(character.size());
    }
    return out;
}

// Values beside each other, one row a line.
std::string divided_lines(const result &answer, char divider) {
    std::string out;
    const auto add_line = [&](const std::vector<std::string> &values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            out += (i == 0 ? "" : std::string(1, divider)) + printable(values[i]);
        }
        out += '\n';
    };
    add_line(answer.titles);
    for (const std::vector<cell> &row : answer.rows) {
        std::vector<std::string> values;
        std::transform(row.begin(), row.end(), std::back_inserter(values), cell_text);
        add_line(values);
    }
    return out;
}

// Every text among the values exchanged for what becomes of it.
template <typename Change>
result with_texts(result answer, Change change) {
    for (std::vector<cell> &row : answer.rows) {
        for (cell &value : row) {
            if (const auto *text = std::get_if<std::string>(&value)) {
                value = change(*text);
            }
        }
    }
    return answer;
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

std::string mode_name(output_mode mode) {
    return std::string(row_of(mode).name);
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

bool is_json(output_mode mode) {
    return mode == output_mode::json || mode == output_mode::jsonl;
}

result printable_answer(result answer) {
    std::transform(answer.titles.begin(), answer.titles.end(), answer.titles.begin(), printable);
    return with_texts(std::move(answer), printable);
}

result guarded_answer(result answer) {
    return with_texts(std::move(answer), [](const std::string &text) {
        constexpr std::string_view formula_beginnings = "=+-@\t\r";
        const bool is_formula =
            !text.empty() && formula_beginnings.find(text.front()) != std::string_view::npos;
        return is_formula ? '\'' + text : text;
    });
}

std::string format_result(output_mode mode, const result &answer, const layout &as) {
    const mode_row &row = row_of(mode);
    if (mode == output_mode::line) {
        return format_line(answer, as.columns);
    }
    std::string text = row.format(answer);
    if (row.for_people && as.columns != 0 && is_wider(text, as.columns)) {
        return format_line(answer, as.columns) + count_of_rows(answer);
    }
    return as.titles || answer.titles.empty() ? text : without_titles(std::move(text), row.titles);
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

std::string format_line(const result &answer, std::size_t columns) {
    constexpr std::string_view between = " = ";
    constexpr std::size_t least_room = 8; // on a terminal that is hardly one
    std::size_t widest = 0;
    for (const std::string &title : answer.titles) {
        widest = std::max(widest, text_width(printable(title)));
    }
    const std::size_t begin = widest + between.size();
    const std::size_t room = std::max(columns, begin + least_room) - begin;
    std::string out;
    for (const std::vector<cell> &row : answer.rows) {
        out += out.empty() ? "" : "\n";
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string title = printable(answer.titles[i]);
            const std::string value = printable(cell_text(row[i]));
            out += std::string(widest - text_width(title), ' ') + title;
            out += between;
            out += (columns == 0 ? value : folded(value, room, begin)) + '\n';
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

std::string format_tabs(const result &answer) {
    return divided_lines(answer, '\t');
}

std::string format_list(const result &answer) {
    return divided_lines(answer, '|');
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
