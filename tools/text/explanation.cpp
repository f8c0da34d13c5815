// The analyzed query, its parts where it is a join, and the keys that its search tests.
#include "tools/text/explanation.h"

#include <fmt/format.h>

#include "exec/qry_lib_db_executer.h"
#include "link/qry_lib_analyze_link_info.h"
#include "parser/qry_lib_sql_parser.h"
#include "tools/text/filter_key_text.h"
#include "tools/text/printers.h"
#include "tools/text/query_reader.h"

namespace qrytext {

namespace {

using norvane::qry_lib_analyze_info;
using norvane::qry_lib_analyze_link_info;
using norvane::qry_lib_db_executer;

constexpr const char *type_names[] = {"none", "INSERT", "UPDATE", "DELETE", "SELECT", "COUNT", "CREATE"};
constexpr const char *operation_names[] = {"=", "!=", "<", ">", "<=", ">=", "LIKE"};
constexpr const char *direction_names[] = {"", "ASC", "DESC"};

const char *join_name(std::uint32_t join) {
    return join == QRY_LIB_JOIN_TYPE_OR ? "OR" : "AND";
}

// Collects what is explained, one fact a row.
class fact_list {
  public:
    void add(const std::string &part, const std::string &item, const std::string &value) {
        list_.rows.push_back({part, item, value});
    }

    void add_query(const std::string &part, const query &asked) {
        add(part, "type", type_names[asked.type]);
        for (const std::string &table : asked.tables) {
            add(part, "table", table);
        }
        const bool is_write =
            asked.type == QRY_LIB_DB_QUERY_TYPE_INSERT || asked.type == QRY_LIB_DB_QUERY_TYPE_UPDATE;
        for (std::size_t i = 0; i < asked.columns.size(); ++i) {
            add(part, "column", is_write ? asked.columns[i] + " = " + asked.values[i] : asked.columns[i]);
        }
        for (const query_condition &condition : asked.conditions) {
            const char *const quote = condition.quoted ? "'" : "";
            add(part, join_name(condition.join),
                fmt::format("{0} {1} {2}{3}{2}", condition.column, operation_names[condition.operation],
                            quote, condition.value));
        }
        if (!asked.order_column.empty()) {
            add(part, "sort", fmt::format("{} {}", asked.order_column, direction_names[asked.order]));
        }
    }

    const result &list() const { return list_; }

  private:
    result list_{{"PART", "ITEM", "VALUE"}, {}};
};

// The keys of one table's search, in the order in which each record is tested. 0, or why there are none.
std::uint32_t add_keys(const qry_lib_analyze_info &info, const std::string &part, fact_list &out) {
    qry_lib_db_executer executer;
    if (const int code = executer.open_catalog(info.get_db_name()); code != 0) {
        return static_cast<std::uint32_t>(code);
    }
    unsigned int category = 0;
    qry_lib_db_executer::filter_keys keys;
    if (const int code = executer.create_filter_key(info, category, keys); code != 0) {
        return static_cast<std::uint32_t>(code);
    }
    out.add(part, "category", fmt::format("0x{:08X}", category));
    int number = 0;
    for (const qry_lib_tb_list_filter_key_ &key : keys) {
        out.add(part, fmt::format("key {}", ++number),
                fmt::format("{} {} {} {}", join_name(key.join),
                            key_column(info.get_db_name(), info.get_table(), key),
                            operation_names[key.operation], literal(key_value(key))));
    }
    return 0;
}

void add_links(const qry_lib_analyze_link_info &link_info, fact_list &out) {
    norvane::QRY_LIB_LINK link;
    for (std::uint16_t i = 0; i < link_info.get_link_num(); ++i) {
        link_info.get_link(i, link);
        out.add("join", "link",
                fmt::format("{}.{} = {}.{}", link.left.table_name, link.left.col_name, link.right.table_name,
                            link.right.col_name));
    }
}

std::uint32_t add_join(qry_lib_analyze_info &info, fact_list &out) {
    qry_lib_analyze_link_info link_info;
    if (const std::uint32_t code = norvane::qry_lib_sql_parser().analyze_sql_select_link(info, link_info);
        code != 0) {
        return code;
    }
    add_links(link_info, out);
    for (std::uint16_t i = 0; i < link_info.get_analyze_info_num(); ++i) {
        qry_lib_analyze_info part;
        link_info.get_analyze_info(i, part);
        const std::string name = part.get_table();
        out.add_query(name, describe(part));
        if (const std::uint32_t code = add_keys(part, name, out); code != 0) {
            return code;
        }
    }
    return 0;
}

std::uint32_t add_statement(const std::string &db_name, const std::string &sql, fact_list &out) {
    qry_lib_analyze_info info;
    if (const std::uint32_t code = analyze(db_name, sql, info); code != 0) {
        return code;
    }
    out.add_query("query", describe(info));
    if (info.get_exec_type() == QRY_LIB_DB_QUERY_TYPE_CREATE) {
        return 0;
    }
    return info.get_table_num() > 1 ? add_join(info, out) : add_keys(info, "search", out);
}

} // namespace

explanation explain(const std::string &db_name, const std::string &sql) {
    fact_list found;
    const std::uint32_t code = add_statement(db_name, sql, found);
    return {code, found.list()};
}

} // namespace qrytext
