// One function for each form of file.
#include "tools/qrysh/transfer/file_forms.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/text/code_text.h"
#include "tools/text/engine.h"
#include "tools/text/filter_key_text.h"
#include "tools/text/printers.h"
#include "tools/text/schema.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

using tables = std::vector<sqlite_table>;

namespace {

// The records of a table that has no free ones are not inserted but changed, by their first key.
std::string update_lines(const sqlite_table &table) {
    std::string out;
    const auto &titles = table.rows.titles;
    const auto key = static_cast<std::size_t>(std::find(titles.begin(), titles.end(), table.keys.front()) -
                                              titles.begin());
    for (const std::vector<cell> &row : table.rows.rows) {
        std::string values;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i != key) {
                values += fmt::format("{}{} = {}", values.empty() ? "" : ", ", titles[i], literal(row[i]));
            }
        }
        out += fmt::format("UPDATE {} SET {} WHERE {} = {};\n", table.rows.table, values, titles[key],
                           literal(row[key]));
    }
    return out;
}

} // namespace

std::string as_statements(const std::string &db_name, const tables &all) {
    std::string out;
    for (const sqlite_table &table : all) {
        const bool is_updated = !db_name.empty() && free_keys(db_name, table.rows.table).empty();
        out += is_updated ? update_lines(table) : format_insert(table.rows);
    }
    return out;
}

namespace {

const result &only_table(const tables &all) {
    if (all.size() != 1) {
        throw std::runtime_error("a file of this form holds one table: .dump TABLE FILE");
    }
    return all.front().rows;
}

// One table is its array; several are members of an object.
std::string as_json(const tables &all) {
    if (all.size() == 1) {
        return format_json(all.front().rows);
    }
    std::string out;
    for (const sqlite_table &table : all) {
        std::string rows = format_json(table.rows);
        rows.pop_back();
        out += fmt::format("{}\n\"{}\": {}", out.empty() ? "{" : ",", table.rows.table, rows);
    }
    return out + "\n}\n";
}

struct file_form {
    std::string_view ending;
    std::string (*format)(const std::string &db_name, const tables &all);
};

std::string as_database(const std::string & /*db_name*/, const tables &all) {
    return sqlite_file(all);
}

constexpr file_form forms[] = {
    {".csv", [](const std::string &, const tables &all) { return format_csv(only_table(all)); }},
    {".json", [](const std::string &, const tables &all) { return as_json(all); }},
    {".jsonl", [](const std::string &, const tables &all) { return format_jsonl(only_table(all)); }},
    {".md", [](const std::string &, const tables &all) { return format_markdown(only_table(all)); }},
    {".sql", as_statements},
    {".sqlite", as_database},
    {".db", as_database},
};

std::string ending_of(const std::string &path) {
    const std::size_t point = path.rfind('.');
    return point == std::string::npos ? "" : path.substr(point);
}

} // namespace

bool is_csv(const std::string &path) {
    return ending_of(path) == ".csv";
}

std::string content_for(const std::string &path, const std::string &db_name, const tables &all) {
    const std::string ending = ending_of(path);
    const auto *form = std::find_if(std::begin(forms), std::end(forms),
                                    [&](const file_form &f) { return f.ending == ending; });
    if (form == std::end(forms)) {
        throw std::runtime_error(fmt::format(
            "{}: the ending must be .csv, .json, .jsonl, .md, .sql, .sqlite or .db", printable(path)));
    }
    return form->format(db_name, all);
}

// Every record in use with every column. Throws when the table cannot be read.
sqlite_table read_table(const std::string &db_name, const std::string &table) {
    sqlite_table read;
    std::string names;
    for (const qry_lib_catalog_column_ &column : table_columns(db_name, table)) {
        names += (names.empty() ? "" : ",") + std::string(column.name);
        read.text_column.push_back(column.type == QRY_LIB_COLUMN_TYPE_STR);
        if (column.is_key != 0) {
            read.keys.emplace_back(column.name);
        }
    }
    reply answer = execute(db_name, fmt::format("SELECT {} FROM {}", names, table));
    if (!answer.rows) {
        throw std::runtime_error(fmt::format("{}: {}", table, describe_code(answer.code)));
    }
    read.rows = std::move(*answer.rows);
    read.rows.titles = column_names(db_name, table);
    return read;
}

// The types of an answer's columns are those of its values.
sqlite_table describe_answer(const result &answer) {
    sqlite_table table{answer, {}, {}};
    if (table.rows.table.empty()) {
        table.rows.table = "RESULT";
    }
    for (std::size_t i = 0; i < answer.titles.size(); ++i) {
        table.text_column.push_back(answer.rows.empty() ||
                                    std::holds_alternative<std::string>(answer.rows.front()[i]));
    }
    return table;
}

} // namespace qrysh
