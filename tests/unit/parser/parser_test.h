// What the parser's tests share: readable forms of an analyzed query, and a walk over every allocation that a
// call makes.
#pragma once

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "parser/qry_lib_sql_parser.h"
#include "unit/support.h"

namespace test {

using traces = std::vector<return_trace>;
using codes = std::vector<std::pair<std::string, std::uint32_t>>;
using texts = std::vector<std::string>;

// A condition as the analysis keeps it.
struct condition {
    std::string column;
    std::string value;
    QRY_LIB_OPERATION_TYPE operation;
    QRY_LIB_JOIN_TYPE join = QRY_LIB_JOIN_TYPE_AND;
    std::int32_t quoted = 0;

    condition in_quotes() const { return {column, value, operation, join, 1}; }
    condition joined_by_or() const { return {column, value, operation, QRY_LIB_JOIN_TYPE_OR, quoted}; }
};
using conditions = std::vector<condition>;

inline bool operator==(const condition &a, const condition &b) {
    return std::tie(a.column, a.value, a.operation, a.join, a.quoted) ==
           std::tie(b.column, b.value, b.operation, b.join, b.quoted);
}

inline std::ostream &operator<<(std::ostream &out, const condition &shown) {
    return out << shown.column << ", operation " << shown.operation << ", value " << shown.value << ", join "
               << shown.join << ", quoted " << shown.quoted;
}

constexpr std::uint32_t refused = QRY_LIB_NOT_ACCEPTED;

// One refusal of a function without a code of its own.
inline return_trace at(const char *function, int line, std::uint32_t code = refused) {
    return {function, line, code};
}

// What a call came to when one of its allocations failed.
struct outcome {
    std::uint32_t code;
    traces traced;
};

inline bool operator==(const outcome &a, const outcome &b) {
    return a.code == b.code && a.traced == b.traced;
}

inline std::ostream &operator<<(std::ostream &out, const outcome &result) {
    out << "code 0x" << std::hex << result.code << std::dec;
    for (const return_trace &trace : result.traced) {
        out << ", " << trace;
    }
    return out;
}

// The scratch blocks of the text helpers, each with the trace of the helper that could not have it.
inline return_trace no_trim_block() {
    return {"trim_space_front_rear", 2403, 1};
}
inline return_trace no_trim_block_in_place() {
    return {"trim_space_front_rear", 2331, 1};
}
inline return_trace no_split_block() {
    return {"divide_keyword", 1063, 1};
}
inline return_trace no_quote_block() {
    return {"trim_single_q_str", 2485, 1};
}

class parser_test : public platform_test {
  protected:
    using analyzed = norvane::qry_lib_analyze_info;

    // Conditions of each operation, joined by AND and without quotes unless more is said.
    static condition equal(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_EQUAL};
    }
    static condition not_equal(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_NOT_EQUAL};
    }
    static condition less(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_LESS};
    }
    static condition greater(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_GREATER};
    }
    static condition less_equal(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_LESS_EQUAL};
    }
    static condition greater_equal(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_GREATER_EQUAL};
    }
    static condition like(const std::string &column, const std::string &value) {
        return {column, value, QRY_LIB_OPERATION_TYPE_LIKE};
    }

    static texts tables(const analyzed &query) {
        texts names;
        for (std::uint16_t i = 0; i < query.get_table_num(); ++i) {
            char name[QRY_LIB_TABLE_NAME_MAX + 1];
            EXPECT_EQ(query.get_table(i, name), 0u);
            names.emplace_back(name);
        }
        return names;
    }

    static texts columns(const analyzed &query) {
        texts names;
        for (std::uint16_t i = 0; i < query.get_cols_num(); ++i) {
            char name[QRY_LIB_COLUMN_NAME_MAX + 1];
            QRY_LIB_COLUMN_VALUE value;
            QRY_LIB_COLUMN_TYPE type;
            EXPECT_EQ(query.get_cols(i, name, &value, type), 0u);
            names.emplace_back(name);
        }
        return names;
    }

    static conditions filters(const analyzed &query) {
        conditions found;
        for (std::uint16_t i = 0; i < query.get_filter_cols_num(); ++i) {
            char name[QRY_LIB_COLUMN_NAME_MAX + 1];
            char value[QRY_LIB_STRING_MAX + 1];
            QRY_LIB_OPERATION_TYPE operation;
            QRY_LIB_JOIN_TYPE join;
            std::int32_t quoted;
            EXPECT_EQ(query.get_filter_cols(i, name, value, operation, join, quoted), 0u);
            found.push_back({name, value, operation, join, quoted});
        }
        return found;
    }

    // The sort column and direction, as "NAME 2"; " 0" for none.
    static std::string order(const analyzed &query) {
        char name[QRY_LIB_COLUMN_NAME_MAX + 1];
        QRY_LIB_ODER_TYPE type;
        query.get_order(name, type);
        return std::string(name) + " " + std::to_string(static_cast<int>(type));
    }

    // Fails the call's first allocation, then the second alone, and so on until one is left over; expects one
    // outcome for each. `times` 1 fails that allocation only, UINT32_MAX it and every later one. The platform
    // answers 77, which must never come back.
    void expect_outcomes(const std::vector<outcome> &expected, std::uint32_t times,
                         const std::function<std::uint32_t()> &run) {
        constexpr std::uint32_t platform_code = 77;
        take_traces();
        for (std::uint32_t skip = 0;; ++skip) {
            SCOPED_TRACE("allocation " + std::to_string(skip) + (times == 1 ? " once" : " for good"));
            const std::uint32_t blocks = qryhost_pool_blocks();
            qryhost_fail_clear();
            qryhost_fail(QRYHOST_ALLOC, skip, times, platform_code);
            const std::uint32_t code = run();
            const bool used = qryhost_call_count(QRYHOST_ALLOC) > skip;
            qryhost_fail_clear();
            EXPECT_EQ(qryhost_pool_blocks(), blocks);
            const outcome result{code, take_traces()};
            if (!used) {
                EXPECT_EQ(skip, expected.size());
                return;
            }
            ASSERT_LT(skip, expected.size()) << result;
            EXPECT_EQ(result, expected[skip]);
        }
    }

    // For calls that end at the first failure: one that fails once and one that fails for good look alike.
    void expect_outcomes(const std::vector<outcome> &expected, const std::function<std::uint32_t()> &run) {
        expect_outcomes(expected, 1, run);
        expect_outcomes(expected, UINT32_MAX, run);
    }

    const norvane::qry_lib_sql_parser parser{};
    analyzed info;
};

} // namespace test
