// Statement records filled through the public setters.
#include "tools/text/statement_builder.h"

#include <limits>
#include <new>

namespace qrytext {

statement::statement(const std::string &db_name) {
    qry_lib_db_get_stmt(db_name.c_str(), &record_);
}

// The delegating constructor has done its work before anything here can throw, so the destructor runs.
statement::statement(const std::string &db_name, const write_statement &parsed) : statement(db_name) {
    qry_lib_db_stmt_set_exec_type(&record_, parsed.is_insert ? QRY_LIB_DB_QUERY_TYPE_INSERT
                                                             : QRY_LIB_DB_QUERY_TYPE_UPDATE);
    qry_lib_db_stmt_set_table_name(&record_, parsed.table.c_str());
    qry_lib_db_stmt_set_col_num(&record_, static_cast<std::int32_t>(parsed.values.size()));
    for (std::size_t i = 0; i < parsed.values.size(); ++i) {
        set_column(static_cast<std::int32_t>(i), parsed.values[i]);
    }
    if (!parsed.where.empty()) {
        qry_lib_db_stmt_set_where_phrase(&record_, parsed.where.c_str());
    }
    const bool has_where = record_.where_phrase != nullptr;
    if (record_.table_name == nullptr || record_.record.cols == nullptr ||
        has_where == parsed.where.empty()) {
        throw std::bad_alloc();
    }
}

statement::~statement() {
    qry_lib_db_stmt_term(&record_);
}

void statement::set_column(std::int32_t index, const assignment &column) {
    qry_lib_db_stmt_set_col_name(&record_, index, column.column.c_str());
    if (const auto *text = std::get_if<std::string>(&column.value)) {
        qry_lib_db_stmt_set_elem_as_str(&record_, index, text->c_str());
        return;
    }
    const std::int64_t number = std::get<std::int64_t>(column.value);
    if (number > std::numeric_limits<std::int32_t>::max()) {
        qry_lib_db_stmt_set_elem_as_ulong(&record_, index, static_cast<std::uint32_t>(number));
    } else {
        qry_lib_db_stmt_set_elem_as_int(&record_, index, static_cast<std::int32_t>(number));
    }
}

} // namespace qrytext
