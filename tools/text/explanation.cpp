// The analyzed query, its parts where it is a join, and the keys that its search tests.
#include "tools/text/explanation.h"

#include <fmt/format.h>

#include "exec/qry_lib_db_executer.h"
#include "link/qry_lib_analyze_link_info.h"
#include "parser/qry_lib_sql_parser.h"
#include "tools/text/filter_key_text.h"
#include "tools/text/printers.h"

namespace qrytext {

namespace {

using norvane::qry_lib_analyze_info;
using norvane::qry_lib_analyze_link_info;
using norvane::qry_lib_db_executer;

constexpr const char *type_names[] = {"none", "INSERT", "UPDATE", "DELETE", "SELECT", "COUNT", "CREATE"};
constexpr const char *operation_names[] = {"=", "!=", "<", ">", "<=", ">=", "LIKE"};
constexpr const char *direction_names[] = {"", "ASC", "DESC"};

// 0, or why there are no keys.
std::uint32_t plan_search(const qry_lib_analyze_info &info, search_plan &search) {
    qry_lib_db_executer executer;
    if (const int code = executer.open_catalog(info.get_db_name()); code != 0) {
        return static_cast<std::uint32_t>(code);
    }
    qry_lib_db_executer::filter_keys keys;
    if (const int code = executer.create_filter_key(info, search.category, keys); code != 0) {
        return static_cast<std::uint32_t>(code);
    }
    for (const qry_lib_tb_list_filter_key_ &key : keys) {
        search.keys.push_back(fmt::format("{} {} {} {}", join_name(key.join),
                                          key_column(info.get_db_name(), info.get_table(), key),
                                          operation_names[key.operation], literal(key_value(key))));
    }
    return 0;
}

void read_links(const qry_lib_analyze_link_info &link_info, explanation &out) {
    norvane::QRY_LIB_LINK link;
    for (std::uint16_t i = 0; i < link_info.get_link_num(); ++i) {
        link_info.get_link(i, link);
        out.links.push_back(fmt::format("{}.{} = {}.{}", link.left.table_name, link.left.col_name,
                                        link.right.table_name, link.right.col_name));
    }
}

std::uint32_t plan_join(qry_lib_analyze_info &info, explanation &out) {
    qry_lib_analyze_link_info link_info;
    if (const std::uint32_t code = norvane::qry_lib_sql_parser().analyze_sql_select_link(info, link_info);
        code != 0) {
        return code;
    }
    read_links(link_info, out);
    for (std::uint16_t i = 0; i < link_info.get_analyze_info_num(); ++i) {
        qry_lib_analyze_info table;
        link_info.get_analyze_info(i, table);
        out.parts.push_back({describe(table), {}});
        if (const std::uint32_t code = plan_search(table, out.parts.back().search); code != 0) {
            return code;
        }
    }
    return 0;
}

std::uint32_t plan(const std::string &db_name, const std::string &sql, explanation &out) {
    qry_lib_analyze_info info;
    if (const std::uint32_t code = analyze(db_name, sql, info); code != 0) {
        return code;
    }
    out.asked = describe(info);
    if (info.get_exec_type() == QRY_LIB_DB_QUERY_TYPE_CREATE) {
        return 0;
    }
    return info.get_table_num() > 1 ? plan_join(info, out) : plan_search(info, out.search);
}

// Collects what is explained, one fact a row.
class fact_list {
  public:
    void add(const std::string &part, const std::string &item, const std::string &value) {
        list_.rows.push_back({part, item, value});
    }

    void add_query(const std::string &part, const query &asked) {
        add(part, "type", type_name(asked.type));
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

    void add_search(const std::string &part, const search_plan &search) {
        add(part, "category", fmt::format("0x{:08X}", search.category));
        int number = 0;
        for (const std::string &key : search.keys) {
            add(part, fmt::format("key {}", ++number), key);
        }
    }

    const result &list() const { return list_; }

  private:
    result list_{{"PART", "ITEM", "VALUE"}, {}};
};

} // namespace

const char *type_name(QRY_LIB_DB_QUERY_TYPE type) {
    return type_names[type];
}
const char *operation_name(QRY_LIB_OPERATION_TYPE operation) {
    return operation_names[operation];
}
const char *direction_name(QRY_LIB_ODER_TYPE direction) {
    return direction_names[direction];
}
const char *join_name(std::uint32_t join) {
    return join == QRY_LIB_JOIN_TYPE_OR ? "OR" : "AND";
}

explanation explain(const std::string &db_name, const std::string &sql) {
    explanation explained;
    explained.code = plan(db_name, sql, explained);
    return explained;
}

result list_facts(const explanation &explained) {
    fact_list facts;
    facts.add_query("query", explained.asked);
    for (const std::string &link : explained.links) {
        facts.add("join", "link", link);
    }
    for (const join_part &part : explained.parts) {
        facts.add_query(part.asked.tables.front(), part.asked);
        facts.add_search(part.asked.tables.front(), part.search);
    }
    if (explained.parts.empty() && explained.asked.type != QRY_LIB_DB_QUERY_TYPE_CREATE) {
        facts.add_search("search", explained.search);
    }
    return facts.list();
}

} // namespace qrytext
