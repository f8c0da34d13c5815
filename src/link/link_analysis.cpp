// A SELECT over several tables becomes one query for each table and the conditions that join them.
#include <algorithm>

#include "link/qry_lib_analyze_link_info.h"
#include "parser/qry_lib_sql_parser.h"
#include "util/bounded_text.h"
#include "util/trace.h"

namespace norvane {

namespace {

std::uint32_t refuse(const char *function, int line) {
    return trace_return(function, line, QRY_LIB_NOT_ACCEPTED);
}

// A reference of the form table.column, both parts trimmed.
struct column_reference {
    std::string table;
    std::string column;
};

// False, without a trace of its own, for a text of any other form.
bool split_reference(const qry_lib_sql_parser &parser, const char *text, column_reference &out) {
    std::vector<std::string> parts;
    unsigned int count = 0;
    if (parser.divide_keyword(text, ".", count, parts) != 0 || count != 2) {
        return false;
    }
    out.table = std::move(parts[0]);
    out.column = std::move(parts[1]);
    return parser.trimmed(out.table) && parser.trimmed(out.column);
}

struct condition {
    char col[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_COLUMN_VALUE value;
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    std::int32_t quoted;
};

std::uint32_t get_condition(const qry_lib_analyze_info &info, std::uint16_t index, condition &out) {
    return info.get_filter_cols(index, out.col, out.value.str_value, out.operation, out.join, out.quoted);
}

bool is_listed(const qry_lib_sql_parser &parser, const std::string &table,
               std::vector<qry_lib_analyze_info> &per_table) {
    return std::any_of(per_table.begin(), per_table.end(), [&](qry_lib_analyze_info &query) {
        return parser.get_is_table(0, table, query) == 1;
    });
}

std::size_t count_conditions(const std::vector<qry_lib_analyze_info> &per_table) {
    std::size_t total = 0;
    for (const qry_lib_analyze_info &query : per_table) {
        total += query.get_filter_cols_num();
    }
    return total;
}

void name_side(QRY_LIB_COLUMN &side, const column_reference &reference) {
    copy_bounded(side.table_name, reference.table.c_str());
    copy_bounded(side.col_name, reference.column.c_str());
}

// The join keys come back from the per-table queries, whether or not the caller selected them. False when a
// query has no room for one more column.
bool add_key_column(const qry_lib_sql_parser &parser, const column_reference &key,
                    std::vector<qry_lib_analyze_info> &per_table) {
    static constexpr QRY_LIB_COLUMN_VALUE no_value{};
    const auto table_num = static_cast<std::uint16_t>(per_table.size()); // as many as the query counts
    for (std::uint16_t t = 0; t < table_num; ++t) {
        if (parser.get_is_table(0, key.table, per_table[t]) == 1 &&
            parser.get_is_col_name(t, key.column, per_table) == 0) {
            if (per_table[t].get_cols_num() == UINT16_MAX) {
                return false;
            }
            per_table[t].add_cols(key.table.c_str(), key.column.c_str(), no_value, QRY_LIB_COLUMN_TYPE_STR);
        }
    }
    return true;
}

} // namespace

std::uint32_t qry_lib_sql_parser::analyze_sql_select_link(qry_lib_analyze_info &info,
                                                          qry_lib_analyze_link_info &link_info) const {
    const QRY_LIB_DB_QUERY_TYPE type = info.get_exec_type();
    if (type != QRY_LIB_DB_QUERY_TYPE_SELECT && type != QRY_LIB_DB_QUERY_TYPE_COUNT) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    std::vector<qry_lib_analyze_info> per_table(info.get_table_num());
    for (std::uint16_t t = 0; t < info.get_table_num(); ++t) {
        char table[QRY_LIB_TABLE_NAME_MAX + 1];
        if (const std::uint32_t code = info.get_table(t, table); code != 0) {
            trace_return(__func__, 350, code);
            return QRY_LIB_NOT_ACCEPTED;
        }
        per_table[t].set_exec_type(type);
        per_table[t].set_order(table, "", QRY_LIB_ODER_TYPE_NOTHING);
        per_table[t].set_table(table);
        per_table[t].set_db_name(info.get_db_name());
    }
    if (type != QRY_LIB_DB_QUERY_TYPE_COUNT && set_link_select_cols(info, per_table, link_info) != 0) {
        return refuse(__func__, 368);
    }
    if (set_link_filter_cols(info, per_table, link_info) != 0) {
        return refuse(__func__, 376);
    }
    // The result of a linked query is not sorted; its ORDER BY ends here.
    link_info.set_order("", "", QRY_LIB_ODER_TYPE_NOTHING);
    for (qry_lib_analyze_info &query : per_table) {
        link_info.add_analyze_info(std::move(query));
    }
    return 0;
}

std::uint32_t qry_lib_sql_parser::set_link_select_cols(qry_lib_analyze_info &info,
                                                       std::vector<qry_lib_analyze_info> &per_table,
                                                       qry_lib_analyze_link_info &link_info) const {
    if (info.get_cols_num() == 0) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    for (std::uint16_t i = 0; i < info.get_cols_num(); ++i) {
        char name[QRY_LIB_COLUMN_NAME_MAX + 1];
        QRY_LIB_COLUMN_VALUE value;
        QRY_LIB_COLUMN_TYPE type;
        if (const std::uint32_t code = info.get_cols(i, name, &value, type); code != 0) {
            return trace_return(__func__, 1657, code);
        }
        column_reference selected;
        if (!split_reference(*this, name, selected)) {
            return QRY_LIB_NOT_ACCEPTED;
        }
        bool known = false;
        for (std::uint16_t t = 0; t < info.get_table_num(); ++t) {
            if (get_is_table(t, selected.table, info) == 1) {
                // A table listed several times gets the column each time, beyond what 16 bits count.
                if (link_info.get_cols_num() == UINT16_MAX) {
                    return refuse(__func__, __LINE__);
                }
                per_table[t].add_cols(selected.table.c_str(), selected.column.c_str(), value,
                                      QRY_LIB_COLUMN_TYPE_STR);
                link_info.add_cols(selected.table.c_str(), selected.column.c_str());
                known = true;
            }
        }
        if (!known) {
            return refuse(__func__, 1705);
        }
    }
    return 0;
}

std::uint32_t qry_lib_sql_parser::set_link_filter_cols(qry_lib_analyze_info &info,
                                                       std::vector<qry_lib_analyze_info> &per_table,
                                                       qry_lib_analyze_link_info &link_info) const {
    const int joins_needed = info.get_table_num() - 1;
    if (info.get_filter_cols_num() < joins_needed) {
        return refuse(__func__, 1745);
    }
    if (info.get_filter_cols_num() == 0) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    int join_num = 0;
    for (std::uint16_t i = 0; i < info.get_filter_cols_num(); ++i) {
        bool is_join = false;
        const std::uint32_t code = set_link_condition(i, info, per_table, link_info, is_join);
        if (code != 0) {
            return join_num >= joins_needed ? code : std::uint32_t{QRY_LIB_NOT_ACCEPTED};
        }
        join_num += is_join ? 1 : 0;
    }
    return join_num < joins_needed ? std::uint32_t{QRY_LIB_NOT_ACCEPTED} : 0;
}

// One condition: a join between two tables, or a comparison that one table's query takes over.
std::uint32_t qry_lib_sql_parser::set_link_condition(std::uint16_t index, qry_lib_analyze_info &info,
                                                     std::vector<qry_lib_analyze_info> &per_table,
                                                     qry_lib_analyze_link_info &link_info,
                                                     bool &is_join) const {
    static constexpr char name[] = "set_link_filter_cols";
    condition filter;
    if (const std::uint32_t code = get_condition(info, index, filter); code != 0) {
        return trace_return(name, 1763, code);
    }
    column_reference compared;
    if (!split_reference(*this, filter.col, compared)) {
        return QRY_LIB_NOT_ACCEPTED;
    }
    if (filter.quoted == 0) {
        unsigned int dot_num = 0;
        get_keyword_num(filter.value.str_value, ".", dot_num);
        if (dot_num > 1) {
            return refuse(name, 1816);
        }
        if (dot_num == 1) {
            if (filter.operation != QRY_LIB_OPERATION_TYPE_EQUAL || filter.join != QRY_LIB_JOIN_TYPE_AND) {
                return refuse(name, 1824);
            }
            is_join = true;
            const std::uint32_t code = set_link_filter_val(index, info, per_table, link_info);
            return code == 0 ? 0 : trace_return(name, 1831, code);
        }
        int is_number = 0;
        check_col_val(filter.value.str_value, is_number);
        if (is_number == 0) {
            return QRY_LIB_NOT_ACCEPTED;
        }
    }
    bool known = false;
    std::size_t condition_num = count_conditions(per_table);
    for (std::uint16_t t = 0; t < info.get_table_num(); ++t) {
        if (get_is_table(t, compared.table, info) == 1) {
            // A table listed several times gets the condition each time, beyond what 16 bits count.
            if (++condition_num > UINT16_MAX) {
                return refuse(name, __LINE__);
            }
            per_table[t].add_filter_cols(compared.table.c_str(), compared.column.c_str(),
                                         filter.value.str_value, filter.operation, filter.join,
                                         filter.quoted);
            known = true;
        }
    }
    return known ? 0 : refuse(name, filter.quoted != 0 ? 1806 : 1866);
}

std::uint32_t qry_lib_sql_parser::set_link_filter_val(unsigned short index, qry_lib_analyze_info &info,
                                                      std::vector<qry_lib_analyze_info> &per_table,
                                                      qry_lib_analyze_link_info &link_info) const {
    condition filter;
    if (const std::uint32_t code = get_condition(info, index, filter); code != 0) {
        trace_return(__func__, 1914, code);
        return QRY_LIB_NOT_ACCEPTED;
    }
    std::vector<std::string> parts;
    unsigned int count = 0;
    if (const std::uint32_t code = divide_keyword(filter.col, ".", count, parts); code != 0 || count != 2) {
        trace_return(__func__, 1923, code);
        return QRY_LIB_NOT_ACCEPTED;
    }
    if (const std::uint32_t code = divide_keyword(filter.value.str_value, ".", count, parts);
        code != 0 || count != 2) {
        trace_return(__func__, 1929, code);
        return QRY_LIB_NOT_ACCEPTED;
    }
    if (parts.size() != 4) {
        return refuse(__func__, 1934);
    }
    for (std::string &part : parts) {
        if (!trimmed(part)) {
            return QRY_LIB_NOT_ACCEPTED;
        }
    }
    const column_reference left{parts[0], parts[1]};
    const column_reference right{parts[2], parts[3]};
    if (!is_listed(*this, left.table, per_table) || !is_listed(*this, right.table, per_table)) {
        return refuse(__func__, 1963);
    }
    if (left.column.size() > QRY_LIB_COLUMN_NAME_MAX || right.column.size() > QRY_LIB_COLUMN_NAME_MAX) {
        return refuse(__func__, __LINE__);
    }
    QRY_LIB_LINK link{};
    name_side(link.left, left);
    name_side(link.right, right);
    link_info.add_link(link);
    if (!add_key_column(*this, left, per_table) || !add_key_column(*this, right, per_table)) {
        return refuse(__func__, __LINE__);
    }
    return 0;
}

} // namespace norvane
