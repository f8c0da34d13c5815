// Statement records: built by the setters in any order, or of any shape that memory can have.
#include <algorithm>
#include <cstring>
#include <memory>

#include "fuzz/fuzz_support.h"
#include "platform/os.h"

namespace {

using fuzz::input;

// A text in a block of its own, or null: reading past its end is noticed.
using owned_text = std::unique_ptr<char[]>;
owned_text own(const std::string &text) {
    owned_text copy(new char[text.size() + 1]);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

owned_text pick_phrase(input &in, const fuzz::table_name &table) {
    switch (in.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
        return nullptr;
    case 1:
        return own(fuzz::pick_column(in, table) + " = " + fuzz::pick_text(in));
    case 2:
        return own(fuzz::pick_column(in, table) + in.ConsumeRandomLengthString(60));
    default:
        return own(fuzz::pick_text(in));
    }
}

// Names and strings may fill their arrays without a terminator.
void fill_column(input &in, const fuzz::table_name &table, QRY_LIB_COLUMN &column) {
    const std::string name = fuzz::pick_column(in, table);
    std::memcpy(column.col_name, name.c_str(), std::min(name.size() + 1, sizeof column.col_name));
    const std::string text = fuzz::pick_text(in);
    std::memcpy(column.value.str_value, text.c_str(), std::min(text.size() + 1, sizeof column.value));
    column.type =
        static_cast<QRY_LIB_COLUMN_TYPE>(in.ConsumeBool() ? in.ConsumeIntegralInRange<std::uint32_t>(0, 7)
                                                          : in.ConsumeIntegral<std::uint32_t>());
}

void run(qry_lib_db_stmt_ &stmt) {
    fuzz::restore_store();
    qry_lib_db_rowset_ rowset{};
    const std::uint32_t code = qry_lib_db_stmt_exec_query(&stmt, &rowset);
    fuzz::read_and_release(code, rowset);
    fuzz::restore_store();
    qry_lib_db_stmt_exec(&stmt);
}

void run_any_shape(input &in) {
    const fuzz::table_name &table = fuzz::pick_table(in);
    const auto column_num = in.ConsumeIntegralInRange<std::int32_t>(0, 12);
    const std::unique_ptr<QRY_LIB_COLUMN[]> columns(
        new QRY_LIB_COLUMN[static_cast<std::size_t>(column_num)]());
    qry_lib_db_stmt_ stmt{};
    stmt.exec_type = static_cast<QRY_LIB_DB_QUERY_TYPE>(in.ConsumeIntegralInRange<std::uint32_t>(0, 7));
    std::memset(stmt.db_name, 'd', in.ConsumeBool() ? 0 : sizeof stmt.db_name);
    if (stmt.db_name[0] == '\0') {
        std::strcpy(stmt.db_name, table.database);
    }
    const owned_text name = in.ConsumeBool()   ? own(table.table)
                            : in.ConsumeBool() ? nullptr
                                               : own(fuzz::pick_text(in));
    const owned_text where = pick_phrase(in, table);
    const owned_text order = pick_phrase(in, table);
    stmt.table_name = name.get();
    stmt.where_phrase = where.get();
    stmt.orderby_phrase = order.get();
    for (std::int32_t i = 0; i < column_num; ++i) {
        fill_column(in, table, columns[static_cast<std::size_t>(i)]);
    }
    stmt.record.cols = column_num > 0 ? columns.get() : nullptr;
    stmt.record.col_num =
        in.ConsumeBool() ? column_num : std::min(column_num, in.ConsumeIntegral<std::int32_t>());
    if (stmt.record.cols == nullptr) {
        stmt.record.col_num = in.ConsumeIntegralInRange<std::int32_t>(-1, 70000); // counted but never set
    }
    run(stmt);
}

// A phrase that is replaced is lost on purpose; it goes back here, so that every other loss shows.
template <typename Setter>
void replace_phrase(char *&phrase, Setter set) {
    char *earlier = phrase;
    set();
    if (earlier != nullptr && phrase != earlier) {
        pfwOSWOrgFreeMemPart(0, earlier);
    }
}

void set_column(input &in, const fuzz::table_name &table, qry_lib_db_stmt_ &stmt) {
    const auto index = in.ConsumeIntegralInRange<std::int32_t>(-1, 12);
    const std::string text = fuzz::pick_text(in);
    const auto number = in.ConsumeIntegral<std::uint32_t>();
    switch (in.ConsumeIntegralInRange<int>(0, 6)) {
    case 0:
        return qry_lib_db_stmt_set_elem_as_int(&stmt, index, static_cast<std::int32_t>(number));
    case 1:
        return qry_lib_db_stmt_set_elem_as_uchar(&stmt, index, static_cast<std::uint8_t>(number));
    case 2:
        return qry_lib_db_stmt_set_elem_as_ushort(&stmt, index, static_cast<std::uint16_t>(number));
    case 3:
        return qry_lib_db_stmt_set_elem_as_uint(&stmt, index, number);
    case 4:
        return qry_lib_db_stmt_set_elem_as_ulong(&stmt, index, number);
    case 5:
        return qry_lib_db_stmt_set_elem_as_str(&stmt, index, text.c_str());
    default:
        return qry_lib_db_stmt_set_col_name(&stmt, index, fuzz::pick_column(in, table).c_str());
    }
}

void set_phrase(input &in, const fuzz::table_name &table, qry_lib_db_stmt_ &stmt) {
    const std::string column = fuzz::pick_column(in, table);
    const std::string text = fuzz::pick_text(in);
    switch (in.ConsumeIntegralInRange<int>(0, 4)) {
    case 0:
        return replace_phrase(stmt.where_phrase,
                              [&] { qry_lib_db_stmt_set_where_phrase(&stmt, text.c_str()); });
    case 1:
        return replace_phrase(stmt.orderby_phrase,
                              [&] { qry_lib_db_stmt_set_orderby_phrase(&stmt, (column + text).c_str()); });
    case 2:
        return qry_lib_db_stmt_set_where_equal_str(&stmt, column.c_str(), text.c_str());
    case 3:
        return qry_lib_db_stmt_set_where_equal_int(&stmt, column.c_str(), in.ConsumeIntegral<std::int32_t>());
    default:
        return qry_lib_db_stmt_set_where_equal_ulong(&stmt, column.c_str(),
                                                     in.ConsumeIntegral<std::uint32_t>());
    }
}

// A count whose block does not fit 32 bits is refused; those in between would only cost time.
std::int32_t pick_column_num(input &in) {
    return in.ConsumeIntegralInRange<int>(0, 15) == 0
               ? in.ConsumeIntegralInRange<std::int32_t>(1400000, INT32_MAX)
               : in.ConsumeIntegralInRange<std::int32_t>(-2, 12);
}

void run_setters(input &in) {
    const fuzz::table_name &table = fuzz::pick_table(in);
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt(table.database, &stmt);
    for (int step = 0; step < 40 && in.remaining_bytes() > 0; ++step) {
        switch (in.ConsumeIntegralInRange<int>(0, 7)) {
        case 0:
            qry_lib_db_stmt_set_table_name(&stmt, table.table.c_str());
            break;
        case 1:
            qry_lib_db_stmt_set_exec_type(
                &stmt, static_cast<QRY_LIB_DB_QUERY_TYPE>(in.ConsumeIntegralInRange<std::uint32_t>(0, 7)));
            break;
        case 2:
            qry_lib_db_stmt_set_col_num(&stmt, pick_column_num(in));
            break;
        case 3:
            set_phrase(in, table, stmt);
            break;
        case 4:
            run(stmt);
            break;
        default:
            set_column(in, table, stmt);
        }
    }
    run(stmt);
    qry_lib_db_stmt_term(&stmt);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const fuzz::balanced_memory balanced;
    input in(data, size);
    in.ConsumeBool() ? run_any_shape(in) : run_setters(in);
    return 0;
}
