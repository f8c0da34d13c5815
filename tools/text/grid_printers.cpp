// The modes that align columns: table, box and Markdown.
#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "tools/text/printers.h"
#include "tools/text/text.h"

namespace qrytext {

namespace {

struct grid_cell {
    std::string text;
    std::size_t width;
    bool to_the_right;
};

using grid_row = std::vector<grid_cell>;

// What stands before, between and behind the cells of a line.
struct frame {
    std::string_view left;
    std::string_view gap;
    std::string_view right;
};

constexpr frame table_frame = {"", "  ", ""};
constexpr frame box_frame = {"│ ", " │ ", " │"};
constexpr frame box_top = {"┌─", "─┬─", "─┐"};
constexpr frame box_middle = {"├─", "─┼─", "─┤"};
constexpr frame box_bottom = {"└─", "─┴─", "─┘"};
constexpr frame markdown_frame = {"| ", " | ", " |"};

grid_cell make_cell(std::string_view text, bool to_the_right) {
    std::string shown = printable(text);
    const std::size_t width = text_width(shown);
    return {std::move(shown), width, to_the_right};
}

// The titles stand to the right where they stand over numbers.
std::vector<grid_row> make_grid(const result &answer) {
    std::vector<grid_row> rows(1);
    for (std::size_t i = 0; i < answer.titles.size(); ++i) {
        const bool over_numbers =
            !answer.rows.empty() && std::holds_alternative<std::int64_t>(answer.rows.front()[i]);
        rows.front().push_back(make_cell(answer.titles[i], over_numbers));
    }
    for (const std::vector<cell> &row : answer.rows) {
        grid_row line;
        for (const cell &value : row) {
            line.push_back(make_cell(cell_text(value), std::holds_alternative<std::int64_t>(value)));
        }
        rows.push_back(std::move(line));
    }
    return rows;
}

std::vector<std::size_t> column_widths(const std::vector<grid_row> &rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const grid_row &row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].width);
        }
    }
    return widths;
}

std::string grid_line(const grid_row &row, const std::vector<std::size_t> &widths, const frame &around) {
    std::string line(around.left);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::string padding(widths[i] - row[i].width, ' ');
        line += i == 0 ? "" : around.gap;
        line += row[i].to_the_right ? padding + row[i].text : row[i].text + padding;
    }
    line += around.right;
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

std::string rule_line(const std::vector<std::size_t> &widths, std::string_view dash, const frame &around) {
    grid_row rule;
    for (const std::size_t width : widths) {
        std::string dashes;
        for (std::size_t i = 0; i < width; ++i) {
            dashes += dash;
        }
        rule.push_back({std::move(dashes), width, false});
    }
    return grid_line(rule, widths, around);
}

// A colon behind the dashes puts a column's values to the right.
std::string markdown_rule(const grid_row &titles, const std::vector<std::size_t> &widths) {
    std::string line = "|";
    for (std::size_t i = 0; i < widths.size(); ++i) {
        line += std::string(widths[i] + 1, '-') + (titles[i].to_the_right ? ":|" : "-|");
    }
    return line + '\n';
}

void escape_bars(std::vector<grid_row> &rows) {
    for (grid_row &row : rows) {
        for (grid_cell &cell : row) {
            for (std::size_t bar = cell.text.find('|'); bar != std::string::npos;
                 bar = cell.text.find('|', bar + 2)) {
                cell.text.insert(bar, 1, '\\');
                ++cell.width;
            }
        }
    }
}

std::string grid_lines(const std::vector<grid_row> &rows, const std::vector<std::size_t> &widths,
                       const frame &around) {
    std::string out;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        out += grid_line(rows[i], widths, around);
    }
    return out;
}

} // namespace

std::string count_of_rows(const result &answer) {
    return fmt::format("({} {})\n", answer.rows.size(), answer.rows.size() == 1 ? "row" : "rows");
}

std::string format_table(const result &answer) {
    if (answer.titles.empty()) {
        return count_of_rows(answer);
    }
    const std::vector<grid_row> rows = make_grid(answer);
    const std::vector<std::size_t> widths = column_widths(rows);
    return grid_line(rows.front(), widths, table_frame) + rule_line(widths, "-", table_frame) +
           grid_lines(rows, widths, table_frame) + count_of_rows(answer);
}

std::string format_box(const result &answer) {
    if (answer.titles.empty()) {
        return count_of_rows(answer);
    }
    const std::vector<grid_row> rows = make_grid(answer);
    const std::vector<std::size_t> widths = column_widths(rows);
    return rule_line(widths, "─", box_top) + grid_line(rows.front(), widths, box_frame) +
           rule_line(widths, "─", box_middle) + grid_lines(rows, widths, box_frame) +
           rule_line(widths, "─", box_bottom) + count_of_rows(answer);
}

std::string format_markdown(const result &answer) {
    if (answer.titles.empty()) {
        return "";
    }
    std::vector<grid_row> rows = make_grid(answer);
    escape_bars(rows);
    const std::vector<std::size_t> widths = column_widths(rows);
    return grid_line(rows.front(), widths, markdown_frame) + markdown_rule(rows.front(), widths) +
           grid_lines(rows, widths, markdown_frame);
}

} // namespace qrytext
