// .export and .dump: answers and tables written to files of other programs' forms.
#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "tools/qrysh/arguments.h"
#include "tools/qrysh/code_text.h"
#include "tools/qrysh/command_actions.h"
#include "tools/qrysh/engine.h"
#include "tools/qrysh/file_writer.h"
#include "tools/qrysh/filter_key_text.h"
#include "tools/qrysh/near_match.h"
#include "tools/qrysh/output.h"
#include "tools/qrysh/schema.h"
#include "tools/qrysh/sqlite_export.h"
#include "tools/qrysh/text.h"

namespace qrysh {

namespace {

using tables = std::vector<sqlite_table>;

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

std::string as_statements(const std::string &db_name, const tables &all) {
    std::string out;
    for (const sqlite_table &table : all) {
        const bool is_updated = !db_name.empty() && free_keys(db_name, table.rows.table).empty();
        out += is_updated ? update_lines(table) : format_insert(table.rows);
    }
    return out;
}

std::string only_table(const tables &all, std::string (*format)(const result &)) {
    if (all.size() != 1) {
        throw std::runtime_error("a file of this form holds one table: .dump TABLE FILE");
    }
    return format(all.front().rows);
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
    std::string (*format)(const std::string &db_name, const tables &all); // null: a SQLite database
};

constexpr file_form forms[] = {
    {".csv", [](const std::string &, const tables &all) { return only_table(all, format_csv); }},
    {".json", [](const std::string &, const tables &all) { return as_json(all); }},
    {".jsonl", [](const std::string &, const tables &all) { return only_table(all, format_jsonl); }},
    {".md", [](const std::string &, const tables &all) { return only_table(all, format_markdown); }},
    {".sql", as_statements},
    {".sqlite", nullptr},
    {".db", nullptr},
};

// `db_name` is empty for an answer, which need not be a table's records.
outcome write_form(const std::string &path, const std::string &db_name, const tables &all) {
    const std::size_t point = path.rfind('.');
    const std::string ending = point == std::string::npos ? "" : path.substr(point);
    const auto *form = std::find_if(std::begin(forms), std::end(forms),
                                    [&](const file_form &f) { return f.ending == ending; });
    if (form == std::end(forms)) {
        return session::fail(fmt::format(
            "{}: the ending must be .csv, .json, .jsonl, .md, .sql, .sqlite or .db", printable(path)));
    }
    if (form->format == nullptr) {
        write_sqlite(path, all);
    } else {
        write_file(path, form->format(db_name, all));
    }
    return outcome::done;
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

outcome dump(session &shell, const std::vector<std::string> &names, const std::string &path) {
    const trace_log::pause quiet(shell.traces());
    tables all;
    for (const std::string &name : names) {
        all.push_back(read_table(shell.database(), name));
    }
    if (!path.empty()) {
        return write_form(path, shell.database(), all);
    }
    present(as_statements(shell.database(), all));
    return outcome::done;
}

} // namespace

outcome export_answer(session &shell, const std::string &path) {
    const std::optional<result> &answer = shell.last_answer();
    if (!answer) {
        return session::fail("there is no answer yet");
    }
    return write_form(path, "", {describe_answer(*answer)});
}

// A table's name has no point in it, and a file's has.
outcome dump_tables(session &shell, const std::string &order) {
    word_and_rest parts = split_first_word(order);
    const bool names_table = !parts.word.empty() && parts.word.find('.') == std::string::npos;
    const std::string path = names_table ? parts.rest : order;
    if (names_table && !table_exists(shell.database(), parts.word)) {
        return session::fail(fmt::format("there is no table \"{}\" in {}{}", printable(parts.word),
                                         shell.database(),
                                         did_you_mean(parts.word, table_names(shell.database()))));
    }
    if (!path.empty() && shell.options().safe) {
        return session::fail(".dump to a file touches files: the shell was started with --safe");
    }
    return dump(shell, names_table ? std::vector<std::string>{parts.word} : table_names(shell.database()),
                path);
}

} // namespace qrysh
