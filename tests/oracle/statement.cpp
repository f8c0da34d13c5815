// The schema as the oracle sees it, the text of a statement, and its shorter forms.
#include "oracle/statement.h"

#include <algorithm>

namespace oracle {

namespace {

// Members of one element overlap, which SQLite's columns do not: texts stay before the next member.
std::size_t longest_text(const QRY_LIB_TABLE_DEF &table, const QRY_LIB_ELEMENT_INFO &info) {
    std::size_t longest = info.size - std::size_t{1};
    for (std::int16_t c = 0; c < table.element_num; ++c) {
        const QRY_LIB_ELEMENT_INFO &other = table.elements[c].info;
        if (other.element_id == info.element_id && other.member_offset > info.member_offset) {
            longest = std::min(longest, std::size_t(other.member_offset - info.member_offset - 1));
        }
    }
    return longest;
}

table_def describe(const char *database, const QRY_LIB_TABLE_DEF &table) {
    table_def made{database,
                   table.table_name,
                   {},
                   std::string(table.table_name) != "EDIT_CNT_TBL",
                   table.elements[0].info.category_id};
    for (std::int16_t c = 0; c < table.element_num; ++c) {
        const QRY_LIB_ELEMENT_INFO &info = table.elements[c].info;
        made.columns.push_back({info.name, info, table.elements[c].is_primary == 1,
                                norvane::is_string_element(info.elem_type), longest_text(table, info)});
    }
    return made;
}

constexpr const char *operator_texts[] = {
    " = ", " != ", " < ", " > ", " <= ", " >= ", " LIKE ", " IN ", " INLIKE "};

bool is_word(const std::string &value) {
    return !value.empty() && value.find_first_not_of("0123456789abAB") == std::string::npos;
}

bool is_digits(const std::string &value) {
    return !value.empty() && value.find_first_not_of("0123456789") == std::string::npos;
}

// A word needs no quotes, and in a linked query only digits do not. Those of odd length go without, so that
// both forms are tried.
std::string value_text(const statement &made, const condition &tested, const std::string &value) {
    const std::string shown = is_prefix(tested.operation) ? value + "%" : value;
    const bool is_plain =
        made.is_linked() ? !is_prefix(tested.operation) && is_digits(value) : is_word(value);
    return is_plain && value.size() % 2 == 1 ? shown : "'" + shown + "'";
}

std::string name_text(const statement &made, const column_ref &column) {
    return (made.is_linked() ? made.from[column.table]->name + "." : "") + column.name;
}

std::string condition_text(const statement &made, const condition &tested) {
    std::string text =
        name_text(made, tested.column) + operator_texts[static_cast<std::size_t>(tested.operation)];
    if (!is_list(tested.operation)) {
        return text + value_text(made, tested, tested.values[0]);
    }
    std::string list;
    for (const std::string &value : tested.values) {
        list += (list.empty() ? "" : ", ") + value_text(made, tested, value);
    }
    return text + "(" + list + ")";
}

std::string given_text(const given_value &value) {
    return value.type == QRY_LIB_COLUMN_TYPE_STR
               ? "'" + value.text + "'"
               : std::to_string(value.number) + " (type " + std::to_string(value.type) + ")";
}

std::string select_text(const statement &made) {
    std::string columns;
    for (const column_ref &column : made.columns) {
        columns += (columns.empty() ? "" : ", ") + name_text(made, column);
    }
    std::string from;
    for (const table_def *table : made.from) {
        from += (from.empty() ? "" : ", ") + table->name;
    }
    return "SELECT " + (made.what == kind::count ? "COUNT(*)" : columns) + " FROM " + from;
}

std::string write_text(const statement &made) {
    const std::string &table = made.from[0]->name;
    if (made.what == kind::drop) {
        return "DROP TABLE " + table;
    }
    if (made.what == kind::remove) {
        return "DELETE FROM " + table;
    }
    std::string text = made.what == kind::insert ? "INSERT INTO " + table : "UPDATE " + table;
    for (std::size_t i = 0; i < made.columns.size(); ++i) {
        text += (i == 0 ? " SET " : ", ") + made.columns[i].name + " = " + given_text(made.values[i]);
    }
    return text;
}

// Every copy that lacks one element of the list, as long as `fewest` are left.
template <typename Element>
void drop_each(const statement &made, std::vector<Element> statement::*list, std::size_t fewest,
               std::vector<statement> &out) {
    for (std::size_t i = 0; (made.*list).size() > fewest && i < (made.*list).size(); ++i) {
        out.push_back(made);
        std::vector<Element> &cut = out.back().*list;
        cut.erase(cut.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

} // namespace

const column_def *table_def::find(const std::string &column) const {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const column_def &one) { return one.name == column; });
    return found == columns.end() ? nullptr : &*found;
}

const std::vector<table_def> &tables() {
    static const std::vector<table_def> all = [] {
        std::vector<table_def> found;
        for (const norvane::database_schema *database : norvane::databases) {
            for (std::uint16_t t = 0; t < database->table_num; ++t) {
                found.push_back(describe(database->name, database->tables[t]));
            }
        }
        return found;
    }();
    return all;
}

bool is_list(comparison operation) {
    return operation == comparison::in || operation == comparison::in_like;
}

bool is_prefix(comparison operation) {
    return operation == comparison::like || operation == comparison::in_like;
}

bool is_range(comparison operation) {
    return operation >= comparison::less && operation <= comparison::greater_equal;
}

std::string where_text(const statement &made) {
    std::string text;
    const char *between = made.is_any ? " OR " : " AND ";
    for (const join &joined : made.joins) {
        text += text.empty() ? "" : between;
        text += name_text(made, joined.left) + "=" + name_text(made, joined.right);
    }
    for (const condition &tested : made.conditions) {
        text += text.empty() ? "" : between;
        text += condition_text(made, tested);
    }
    return text;
}

std::string text_of(const statement &made) {
    std::string text = made.is_write() ? write_text(made) : select_text(made);
    if (const std::string where = where_text(made); !where.empty()) {
        text += " WHERE " + where;
    }
    if (!made.order.empty()) {
        text += " ORDER BY " + made.order + (made.descends ? " DESC" : "");
    }
    return text;
}

std::vector<statement> shorter(const statement &made) {
    std::vector<statement> found;
    drop_each(made, &statement::conditions, 0, found);
    for (std::size_t i = 0; i < made.conditions.size(); ++i) {
        for (std::size_t v = 0; made.conditions[i].values.size() > 1 && v < made.conditions[i].values.size();
             ++v) {
            found.push_back(made);
            std::vector<std::string> &values = found.back().conditions[i].values;
            values.erase(values.begin() + static_cast<std::ptrdiff_t>(v));
        }
    }
    if (!made.order.empty()) {
        found.push_back(made);
        found.back().order.clear();
    }
    if (made.values.empty()) {
        drop_each(made, &statement::columns, 1, found);
        drop_each(made, &statement::joins, made.from.size() - 1, found);
        return found;
    }
    for (std::size_t i = 0; made.columns.size() > 1 && i < made.columns.size(); ++i) {
        found.push_back(made);
        found.back().columns.erase(found.back().columns.begin() + static_cast<std::ptrdiff_t>(i));
        found.back().values.erase(found.back().values.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return found;
}

} // namespace oracle
