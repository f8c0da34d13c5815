// Statement records and rowsets that are released on every way out.
#include "concurrency/statements.h"

#include <qrylib/qrylib.h>

namespace test {

namespace {

class statement {
  public:
    explicit statement(const char *db) { qry_lib_db_get_stmt(db, &record_); }
    statement(const statement &) = delete;
    statement &operator=(const statement &) = delete;
    ~statement() { qry_lib_db_stmt_term(&record_); }

    qry_lib_db_stmt_ *get() { return &record_; }

  private:
    qry_lib_db_stmt_ record_{};
};

class rowset {
  public:
    rowset() { qry_lib_db_rowset_init(&record_); }
    rowset(const rowset &) = delete;
    rowset &operator=(const rowset &) = delete;
    ~rowset() { qry_lib_db_rowset_term(&record_); }

    qry_lib_db_rowset_ *get() { return &record_; }

  private:
    qry_lib_db_rowset_ record_{};
};

cell read_cell(qry_lib_db_rowset_ *rows, std::uint16_t index, column_kind kind) {
    if (kind == column_kind::number) {
        return qry_lib_db_rowset_get_ulong(rows, index, 0xFFFFFFFF);
    }
    char text[512] = "";
    qry_lib_db_rowset_get_str(text, sizeof text, rows, index, "?");
    return std::string(text);
}

std::uint32_t write(const char *db, const char *table, QRY_LIB_DB_QUERY_TYPE type,
                    const std::vector<named_value> &values, const std::string &where) {
    statement record(db);
    qry_lib_db_stmt_set_exec_type(record.get(), type);
    qry_lib_db_stmt_set_table_name(record.get(), table);
    qry_lib_db_stmt_set_col_num(record.get(), static_cast<std::int32_t>(values.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto index = static_cast<std::int32_t>(i);
        qry_lib_db_stmt_set_col_name(record.get(), index, values[i].column);
        if (const auto *text = std::get_if<std::string>(&values[i].value)) {
            qry_lib_db_stmt_set_elem_as_str(record.get(), index, text->c_str());
        } else {
            qry_lib_db_stmt_set_elem_as_ulong(record.get(), index, std::get<std::uint32_t>(values[i].value));
        }
    }
    if (!where.empty()) {
        qry_lib_db_stmt_set_where_phrase(record.get(), where.c_str());
    }
    return qry_lib_db_stmt_exec(record.get());
}

} // namespace

cell_rows select(const char *db, const std::string &sql, const std::vector<column_kind> &kinds,
                 std::uint32_t &code) {
    statement bound(db);
    rowset rows;
    cell_rows result;
    code = qry_lib_db_exec_query(bound.get(), sql.c_str(), rows.get());
    while (code == 0 && qry_lib_db_rowset_next(rows.get()) != 0) {
        std::vector<cell> &row = result.emplace_back();
        for (std::uint16_t i = 0; i < kinds.size(); ++i) {
            row.push_back(read_cell(rows.get(), i, kinds[i]));
        }
    }
    return result;
}

std::uint32_t execute(const char *db, const std::string &sql) {
    statement bound(db);
    return qry_lib_db_exec(bound.get(), sql.c_str());
}

std::uint32_t insert(const char *db, const char *table, const std::vector<named_value> &values) {
    return write(db, table, QRY_LIB_DB_QUERY_TYPE_INSERT, values, "");
}

std::uint32_t update(const char *db, const char *table, const std::vector<named_value> &values,
                     const std::string &where) {
    return write(db, table, QRY_LIB_DB_QUERY_TYPE_UPDATE, values, where);
}

} // namespace test
