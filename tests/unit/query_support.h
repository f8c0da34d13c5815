// What the tests of queries, rowsets and joins share: columns and rowsets made by hand, queries run end to
// end, and memory failures injected one by one.
#pragma once

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <qrylib/qrylib.h>

#include "api/qry_lib_db_rowset_lib.h"
#include "unit/support.h"

namespace test {

using texts = std::vector<std::string>;
using indexes = std::initializer_list<std::uint16_t>; // a list of plain numbers would be one of ints

// A column of any type: a number's value stands in the member that the type names.
inline QRY_LIB_COLUMN number_column(const char *table, const char *name, std::uint32_t type,
                                    std::uint32_t value) {
    QRY_LIB_COLUMN column{};
    std::strcpy(column.table_name, table);
    std::strcpy(column.col_name, name);
    column.type = static_cast<QRY_LIB_COLUMN_TYPE>(type);
    switch (type) {
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        column.value.uchar_value = static_cast<std::uint8_t>(value);
        break;
    case QRY_LIB_COLUMN_TYPE_USHORT:
        column.value.ushort_value = static_cast<std::uint16_t>(value);
        break;
    default:
        column.value.ulong_value = value;
        break;
    }
    return column;
}

inline QRY_LIB_COLUMN text_column(const char *table, const char *name, const std::string &text,
                                  std::uint32_t type = QRY_LIB_COLUMN_TYPE_STR) {
    QRY_LIB_COLUMN column = number_column(table, name, type, 0);
    std::strcpy(column.value.str_value, text.c_str());
    return column;
}

using hand_made_rows = std::vector<std::vector<QRY_LIB_COLUMN>>;

// A rowset of the given rows, cursor before the first. All rows are as wide as the first.
inline qry_lib_db_rowset_ make_rowset(const hand_made_rows &rows) {
    const norvane::qry_lib_db_rowset_lib lib;
    qry_lib_db_rowset_ rowset{0, nullptr, -1};
    const auto col_num = static_cast<std::uint16_t>(rows.empty() ? 1 : rows.front().size());
    EXPECT_EQ(lib.init_rowset(col_num, static_cast<std::uint16_t>(rows.size()), rowset), 0u);
    for (const std::vector<QRY_LIB_COLUMN> &row : rows) {
        EXPECT_EQ(lib.next_record_index(rowset), 1u);
        std::uint16_t index = 0;
        for (const QRY_LIB_COLUMN &column : row) {
            EXPECT_EQ(lib.set_col(rowset, index++, column), 0u);
        }
    }
    lib.first_record_index(rowset);
    return rowset;
}

// A value as text, numbers by their bits.
inline std::string value_text(const QRY_LIB_COLUMN &column) {
    switch (static_cast<std::uint32_t>(column.type)) {
    case QRY_LIB_COLUMN_TYPE_STR:
        return column.value.str_value;
    case QRY_LIB_COLUMN_TYPE_UCHAR:
        return std::to_string(column.value.uchar_value);
    case QRY_LIB_COLUMN_TYPE_USHORT:
        return std::to_string(column.value.ushort_value);
    default:
        return std::to_string(column.value.ulong_value);
    }
}

// Every row as its values joined by commas; the cursor is not touched.
inline texts row_texts(const qry_lib_db_rowset_ &rowset) {
    texts result;
    for (std::int32_t row = 0; row < rowset.record_num; ++row) {
        std::string text;
        for (std::int32_t i = 0; i < rowset.records[row].col_num; ++i) {
            text += (i == 0 ? "" : ",") + value_text(rowset.records[row].cols[i]);
        }
        result.push_back(text);
    }
    return result;
}

// A trace as "function:line 0xCODE"; the points of these functions have no fixed line and show none.
inline std::string trace_text(const return_trace &trace) {
    const bool is_fixed =
        trace.function.find("_wrapper_") == std::string::npos && trace.function != "init_rowset";
    char code[16];
    std::snprintf(code, sizeof code, " 0x%X", static_cast<unsigned int>(trace.code));
    return trace.function + (is_fixed ? ":" + std::to_string(trace.line) : "") + code;
}

// What `operation` takes from the memory partition is refused, one request after the other: that one alone,
// then that one and every later one. `check` gets the number of requests let through before.
template <typename Operation, typename Check>
void with_each_block_refused(Operation operation, Check check) {
    constexpr std::uint32_t refusal = 77;
    qryhost_fail_clear();
    operation();
    const std::uint32_t block_num = qryhost_call_count(QRYHOST_ALLOC);
    ASSERT_GT(block_num, 0u);
    for (std::uint32_t let_through = 0; let_through < block_num; ++let_through) {
        for (const std::uint32_t times : {std::uint32_t{1}, UINT32_MAX}) {
            SCOPED_TRACE(std::to_string(let_through) + (times == 1 ? " then one" : " then every"));
            qryhost_fail(QRYHOST_ALLOC, let_through, times, refusal);
            operation();
            qryhost_fail_clear();
            check(let_through);
        }
    }
}

// Traces as text, on top of the platform fixture.
class trace_test : public platform_test {
  protected:
    texts take_chain() {
        texts chain;
        for (const return_trace &trace : take_traces()) {
            chain.push_back(trace_text(trace));
        }
        return chain;
    }
};

// A fresh store, a statement that names a database, and a rowset.
class query_test : public trace_test {
  protected:
    explicit query_test(const char *db_name = "adbk_db") {
        qryhost_reset();
        use(db_name);
    }
    ~query_test() override {
        qry_lib_db_rowset_term(&rowset);
        qry_lib_db_stmt_term(&stmt);
        qryhost_reset();
    }

    void use(const char *db_name) { qry_lib_db_get_stmt(db_name, &stmt); }

    // Executes a statement record on the current database.
    std::uint32_t put(const char *table, const std::vector<std::pair<const char *, std::string>> &values,
                      QRY_LIB_DB_QUERY_TYPE type = QRY_LIB_DB_QUERY_TYPE_INSERT,
                      const char *where = nullptr) {
        qry_lib_db_stmt_ record;
        qry_lib_db_get_stmt(stmt.db_name, &record);
        qry_lib_db_stmt_set_exec_type(&record, type);
        qry_lib_db_stmt_set_table_name(&record, table);
        qry_lib_db_stmt_set_col_num(&record, static_cast<std::int32_t>(values.size()));
        std::int32_t i = 0;
        for (const auto &[name, value] : values) {
            qry_lib_db_stmt_set_col_name(&record, i, name);
            qry_lib_db_stmt_set_elem_as_str(&record, i++, value.c_str());
        }
        if (where != nullptr) {
            qry_lib_db_stmt_set_where_phrase(&record, where);
        }
        const std::uint32_t put_code = qry_lib_db_stmt_exec(&record);
        qry_lib_db_stmt_term(&record);
        return put_code;
    }

    // Runs the SELECT into the rowset and reads it.
    texts rows(const std::string &sql) {
        qry_lib_db_rowset_term(&rowset);
        code = qry_lib_db_exec_query(&stmt, sql.c_str(), &rowset);
        EXPECT_EQ(rowset.current, -1);
        return row_texts(rowset);
    }

    qry_lib_db_stmt_ stmt;
    qry_lib_db_rowset_ rowset{0, nullptr, -1};
    std::uint32_t code = 0;
};

} // namespace test
