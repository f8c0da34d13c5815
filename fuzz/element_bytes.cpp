// Records of arbitrary bytes, then queried: whatever the elements hold, the answers must fit each other.
#include <algorithm>
#include <cstring>
#include <map>

#include "exec/schema/schema.h"
#include "fuzz/fuzz_support.h"
#include "platform/element_table.h"
#include "platform/host/qryhost.h"

namespace {

using fuzz::check;
using fuzz::input;

const QRY_LIB_TABLE_DEF &definition(const fuzz::table_name &wanted) {
    const norvane::database_schema *database = norvane::find_database(wanted.database);
    if (database != nullptr) {
        if (const QRY_LIB_TABLE_DEF *table = norvane::find_table(*database, wanted.table.c_str())) {
            return *table;
        }
    }
    check(false, "no such table");
    std::abort();
}

// Sizes by element: a composite is as large as its farthest member.
std::map<std::uint32_t, std::size_t> element_sizes(const QRY_LIB_TABLE_DEF &table) {
    std::map<std::uint32_t, std::size_t> sizes;
    for (std::int16_t c = 0; c < table.element_num; ++c) {
        const QRY_LIB_ELEMENT_INFO &info = table.elements[c].info;
        std::size_t &size = sizes[info.element_id];
        size = std::max(size, std::size_t{info.member_offset} + info.size);
    }
    return sizes;
}

// A few bytes of the input over and over, so that short inputs fill long elements.
void fill(input &in, const QRY_LIB_TABLE_DEF &table) {
    for (const auto &[element, size] : element_sizes(table)) {
        for (std::uint32_t record = 0; record <= QRYLIB_ROOMY_RECORDS; ++record) {
            const std::string bytes = in.ConsumeRandomLengthString(12);
            std::string value(size, '\0');
            for (std::size_t i = 0; i < size && !bytes.empty(); ++i) {
                value[i] = bytes[i % bytes.size()];
            }
            tbctSTCSetTable(0x2301, table.elements[0].info.category_id, record, element, value.data());
        }
    }
}

class query {
  public:
    query(const char *database, const std::string &sql) {
        qry_lib_db_get_stmt(database, &stmt_);
        code_ = qry_lib_db_exec_query(&stmt_, sql.c_str(), &rowset_);
    }
    query(const query &) = delete;
    query &operator=(const query &) = delete;
    ~query() { fuzz::read_and_release(code_, rowset_); }

    std::uint32_t code() const { return code_; }
    std::uint32_t rows() { return qry_lib_db_rowset_get_row_num(&rowset_); }
    const QRY_LIB_COLUMN &value(std::uint32_t row, std::uint32_t col) const {
        return rowset_.records[row].cols[col];
    }

  private:
    qry_lib_db_stmt_ stmt_;
    qry_lib_db_rowset_ rowset_{};
    std::uint32_t code_;
};

// The number of rows; the query must succeed.
std::uint32_t count(const fuzz::table_name &table, const std::string &condition) {
    query counted(table.database, "SELECT COUNT(*) FROM " + table.table + condition);
    check(counted.code() == 0, "a COUNT fails");
    return counted.value(0, 0).value.uint_value;
}

// Every row once, each string within its element.
std::uint32_t check_rows(const fuzz::table_name &table, const QRY_LIB_TABLE_DEF &schema,
                         const std::string &tail) {
    std::string list;
    for (const std::string &column : table.columns) {
        list += (list.empty() ? "" : ",") + column;
    }
    query all(table.database, "SELECT " + list + " FROM " + table.table + tail);
    check(all.code() == 0, "a SELECT fails");
    for (std::uint32_t row = 0; row < all.rows(); ++row) {
        for (std::int16_t c = 0; c < schema.element_num; ++c) {
            const QRY_LIB_ELEMENT_INFO &info = schema.elements[c].info;
            const QRY_LIB_COLUMN &column = all.value(row, static_cast<std::uint32_t>(c));
            check(!norvane::is_string_element(info.elem_type) ||
                      std::strlen(column.value.str_value) <= info.size,
                  "a string is longer than its element");
        }
    }
    check(all.rows() == count(table, ""), "SELECT and COUNT differ");
    return all.rows();
}

// A quoted value must neither hold a keyword nor the quote's own end.
std::string quoted(const std::string &text) {
    std::string kept;
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [](char c) { return c != '\0' && c != ' ' && c != '\''; });
    return "'" + kept.substr(0, 200) + "'";
}

// A condition and its opposite divide the rows between them.
void check_opposites(input &in, const fuzz::table_name &table, const QRY_LIB_ELEMENT_INFO &info,
                     std::uint32_t rows) {
    const std::string where = " WHERE " + std::string(info.name);
    const std::string value = quoted(fuzz::pick_text(in));
    check(count(table, where + " = " + value) + count(table, where + " != " + value) == rows,
          "= and != do not divide the rows");
    if (norvane::is_string_element(info.elem_type)) {
        check(count(table, where + " LIKE '%'") == rows, "a string does not begin with the empty one");
        check(count(table, where + " = " + value) <=
                  count(table, where + " LIKE " + value.substr(0, value.size() - 1) + "%'"),
              "an equal string does not begin with itself");
        return;
    }
    check(count(table, where + " < " + value) + count(table, where + " >= " + value) == rows,
          "< and >= do not divide the rows");
    check(count(table, where + " > " + value) + count(table, where + " <= " + value) == rows,
          "> and <= do not divide the rows");
}

void join_with(input &in, const fuzz::table_name &table) {
    const fuzz::table_name &other = fuzz::pick_table(in);
    fill(in, definition(other));
    const std::string left =
        table.table + "." + table.columns[in.ConsumeIntegral<std::uint8_t>() % table.columns.size()];
    const std::string right =
        other.table + "." + other.columns[in.ConsumeIntegral<std::uint8_t>() % other.columns.size()];
    query joined(table.database, "SELECT " + left + "," + right + " FROM " + table.table + "," + other.table +
                                     " WHERE " + left + "=" + right);
    check(joined.code() != 0 || joined.rows() <= QRYLIB_ROOMY_RECORDS * QRYLIB_ROOMY_RECORDS,
          "a join has more rows than there are pairs");
}

void change(input &in, const fuzz::table_name &table, const QRY_LIB_ELEMENT_INFO &info) {
    const std::string value = fuzz::pick_text(in);
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt(table.database, &stmt);
    qry_lib_db_stmt_set_exec_type(&stmt, in.ConsumeBool() ? QRY_LIB_DB_QUERY_TYPE_UPDATE
                                                          : QRY_LIB_DB_QUERY_TYPE_INSERT);
    qry_lib_db_stmt_set_table_name(&stmt, table.table.c_str());
    qry_lib_db_stmt_set_col_num(&stmt, 1);
    qry_lib_db_stmt_set_col_name(&stmt, 0, info.name);
    qry_lib_db_stmt_set_elem_as_str(&stmt, 0, value.c_str());
    qry_lib_db_stmt_exec(&stmt);
    qry_lib_db_stmt_term(&stmt);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const fuzz::balanced_memory balanced;
    input in(data, size);
    fuzz::restore_store();
    const fuzz::table_name &table = fuzz::pick_table(in);
    const QRY_LIB_TABLE_DEF &schema = definition(table);
    fill(in, schema);
    for (int round = 0; round < 3; ++round) {
        const QRY_LIB_ELEMENT_INFO &info =
            schema
                .elements[in.ConsumeIntegral<std::uint8_t>() % static_cast<unsigned int>(schema.element_num)]
                .info;
        check_rows(table, schema, "");
        const std::uint32_t rows = check_rows(
            table, schema, std::string(" ORDER BY ") + info.name + (in.ConsumeBool() ? " DESC" : ""));
        check_opposites(in, table, info, rows);
        change(in, table, info);
    }
    join_with(in, table);
    return 0;
}
