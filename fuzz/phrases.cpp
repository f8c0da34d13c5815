// Conditions and sort phrases beside the reference parser: accepted or refused alike, and read alike. The
// first character chooses: "o" a sort phrase, any other a condition.
#include "fuzz/fuzz_support.h"
#include "fuzz/reference_parser.h"
#include "parser/qry_lib_sql_parser.h"
#include "platform/host/qryhost.h"

namespace {

using norvane::qry_lib_analyze_info;
using norvane::qry_lib_sql_parser;

reference::condition condition_at(const qry_lib_analyze_info &info, std::uint16_t index) {
    char table[QRY_LIB_TABLE_NAME_MAX + 1];
    char column[QRY_LIB_COLUMN_NAME_MAX + 1];
    char value[QRY_LIB_STRING_MAX + 1];
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join;
    std::int32_t quoted = 0;
    fuzz::check(info.get_filter_cols(index, table, column, value, operation, join, quoted) == 0,
                "a condition that was counted is not there");
    fuzz::check(std::string(table) == "T", "a condition names another table");
    return {column, value, static_cast<int>(operation), static_cast<int>(join), quoted == 1};
}

void compare_conditions(const std::string &phrase) {
    qry_lib_analyze_info info;
    info.set_table("T");
    const std::uint32_t code = qry_lib_sql_parser().set_filter_str(phrase.c_str(), info);
    const auto expected = reference::read_conditions(phrase);
    fuzz::check(code == (expected ? 0 : QRY_LIB_NOT_ACCEPTED), "one accepts, the other refuses: " + phrase);
    if (!expected) {
        return;
    }
    fuzz::check(info.get_filter_cols_num() == expected->size(), "another number of conditions: " + phrase);
    for (std::uint16_t i = 0; i < expected->size(); ++i) {
        fuzz::check(condition_at(info, i) == (*expected)[i], "a condition is read differently: " + phrase);
    }
}

void compare_sorting(const std::string &phrase) {
    qry_lib_analyze_info info;
    info.set_table("T");
    const std::uint32_t code = qry_lib_sql_parser().set_sort_str(phrase.c_str(), info);
    const auto expected = reference::read_sorting(phrase);
    fuzz::check(code == (expected ? 0 : QRY_LIB_NOT_ACCEPTED), "one accepts, the other refuses: " + phrase);
    if (!expected) {
        return;
    }
    char column[QRY_LIB_COLUMN_NAME_MAX + 1];
    QRY_LIB_ODER_TYPE order;
    info.get_order(column, order);
    fuzz::check(column == expected->column && static_cast<int>(order) == expected->order,
                "a sort phrase is read differently: " + phrase);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    static const bool quiet = (qryhost_set_trace_sink(nullptr, nullptr), true);
    static_cast<void>(quiet);
    const fuzz::balanced_memory balanced;
    const std::string phrase = std::string(reinterpret_cast<const char *>(data) + 1, size - 1).c_str();
    data[0] == 'o' ? compare_sorting(phrase) : compare_conditions(phrase);
    return 0;
}
