// What the tests of the executer share: queries in one expression, values in the store, and sweeps that fail
// every platform call of an operation in turn.
#pragma once

#include <cstring>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include <qrylib/element_table.h>
#include <qrylib/rowset.h>

#include "exec/qry_lib_db_executer.h"
#include "platform/os.h"
#include "unit/host/host_test.h"

// The leak checker's switches; null where the tests are built without it.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

namespace test {

using traces = std::vector<return_trace>;
using record_list = norvane::qry_lib_db_executer::record_list;
using filter_keys = norvane::qry_lib_db_executer::filter_keys;

constexpr int no_memory = 1;
constexpr int table_argument = QRY_LIB_TABLE_ARGUMENT;
constexpr int table_access = QRY_LIB_TABLE_ACCESS;
constexpr int not_accepted = QRY_LIB_NOT_ACCEPTED;
constexpr int no_such_item = QRY_LIB_NO_SUCH_ITEM;
constexpr int no_free_entry = QRY_LIB_NO_FREE_ENTRY;
constexpr int invalid_argument = QRY_LIB_INVALID_ARGUMENT;
constexpr int injected = 0x4711; // a platform code that the library has no name for

// The department table: ID is its key, TOTAL_M a 32-bit and TOTAL_L an 8-bit number.
constexpr std::uint32_t department_total = 0x44882000;
constexpr std::uint32_t department_limit = 0x44860000;
constexpr std::uint32_t department_code = 0x4481F002;
constexpr std::uint32_t edit_counters = 0x06070903; // 2 records
constexpr std::uint32_t edit_counter_id = 0x93782000;
constexpr std::uint32_t edit_counter_count = 0x93782001;

// Writes a value into a record (from 0) of the store; a string with its terminator.
template <typename Number>
void put(std::uint32_t category, std::uint32_t record, std::uint32_t element, Number value) {
    value_buffer buffer = empty_buffer();
    std::memcpy(buffer.data(), &value, sizeof value);
    ASSERT_EQ(tbctSTCSetTable(requester, category, record + 1, element, buffer.data()), 0u);
}

inline void put_text(std::uint32_t category, std::uint32_t record, std::uint32_t element,
                     const std::string &text) {
    value_buffer buffer = empty_buffer();
    std::memcpy(buffer.data(), text.data(), text.size());
    ASSERT_EQ(tbctSTCSetTable(requester, category, record + 1, element, buffer.data()), 0u);
}

constexpr std::uint32_t in_default = 0xFFFFFFFF; // put's record: the category's default record

template <typename Number>
Number number_at(std::uint32_t category, std::uint32_t record, std::uint32_t element) {
    value_buffer buffer = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(category, record + 1, element, buffer.data()), 0u);
    Number number;
    std::memcpy(&number, buffer.data(), sizeof number);
    return number;
}

inline std::string text_at(std::uint32_t category, std::uint32_t record, std::uint32_t element) {
    value_buffer buffer = empty_buffer();
    EXPECT_EQ(tbctSTCGetTable(category, record + 1, element, buffer.data()), 0u);
    return reinterpret_cast<const char *>(buffer.data());
}

inline void put_department(std::uint32_t record, std::uint16_t id, const std::string &name = "",
                           std::uint32_t total = 0) {
    put(departments, record, department_id, id);
    put_text(departments, record, department_name, name);
    put(departments, record, department_total, total);
}

// An analyzed query, built in one expression.
class query_of {
  public:
    query_of(QRY_LIB_DB_QUERY_TYPE type, const char *db, const char *table) {
        info_.set_exec_type(type);
        info_.set_db_name(db);
        info_.set_table(table);
    }

    query_of &column(const char *name) { return value(name, ""); }

    query_of &value(const char *name, const std::string &text) {
        QRY_LIB_COLUMN_VALUE stored{};
        std::memcpy(stored.str_value, text.data(), text.size());
        info_.add_cols(name, stored, QRY_LIB_COLUMN_TYPE_STR);
        return *this;
    }

    query_of &number(const char *name, std::uint32_t number) {
        QRY_LIB_COLUMN_VALUE stored{};
        stored.ulong_value = number;
        info_.add_cols(name, stored, QRY_LIB_COLUMN_TYPE_ULONG);
        return *this;
    }

    query_of &where(const char *name, QRY_LIB_OPERATION_TYPE operation, const std::string &text,
                    QRY_LIB_JOIN_TYPE join = QRY_LIB_JOIN_TYPE_AND) {
        info_.add_filter_cols(name, text.c_str(), operation, join, 0);
        return *this;
    }

    query_of &order(const char *name, QRY_LIB_ODER_TYPE direction) {
        info_.set_order(name, direction);
        return *this;
    }

    operator const norvane::qry_lib_analyze_info &() const { return info_; }
    norvane::qry_lib_analyze_info &info() { return info_; }

  private:
    norvane::qry_lib_analyze_info info_;
};

// A search that fails in a row test loses its block on purpose. Blocks that are taken while this lives may be
// lost without a word from the leak checker.
class lost_blocks_allowed {
  public:
    lost_blocks_allowed() {
        if (__lsan_disable != nullptr) {
            __lsan_disable();
        }
    }
    lost_blocks_allowed(const lost_blocks_allowed &) = delete;
    lost_blocks_allowed &operator=(const lost_blocks_allowed &) = delete;
    ~lost_blocks_allowed() {
        if (__lsan_enable != nullptr) {
            __lsan_enable();
        }
    }
};

// Settles the count for one lost block; there is nothing to give back.
inline void settle_lost_block() {
    EXPECT_EQ(pfwOSWOrgFreeMemPart(0, nullptr), 0u);
}

// What the operation answers, and traces, when one platform call fails.
struct failure {
    int code;
    traces lines;
};

class exec_test : public host_test {
  protected:
    ~exec_test() override { qry_lib_db_rowset_term(&rowset); }

    // Runs `operation` with each of its calls of `kind` failing in turn, once and then for good. `expected`
    // has one entry for each call. Every memory-partition block must come back.
    void expect_failures(qryhost_call kind, const std::function<void()> &prepare,
                         const std::function<int()> &operation, const std::vector<failure> &expected,
                         std::uint32_t failure_code = injected) {
        prepare();
        qryhost_fail_clear();
        EXPECT_EQ(operation(), 0);
        ASSERT_EQ(qryhost_call_count(kind), expected.size());
        for (const std::uint32_t times : {1u, UINT32_MAX}) {
            for (std::uint32_t i = 0; i < expected.size(); ++i) {
                SCOPED_TRACE(testing::Message() << "call " << i << " fails, " << times << " times");
                prepare();
                take_traces();
                const std::uint32_t blocks = qryhost_pool_blocks();
                qryhost_fail(kind, i, times, failure_code);
                const int code = operation();
                qryhost_fail_clear();
                EXPECT_EQ(code, expected[i].code);
                expect_traces(expected[i].lines);
                EXPECT_EQ(qryhost_pool_blocks(), blocks);
            }
        }
    }

    void expect_traces(const traces &expected) { EXPECT_EQ(take_traces(), expected); }

    // A row of the rowset as its values joined by commas.
    std::string row_text(std::int32_t row) const {
        std::string text;
        const QRY_LIB_RECORD &record = rowset.records[row];
        for (std::int32_t i = 0; i < record.col_num; ++i) {
            const QRY_LIB_COLUMN &column = record.cols[i];
            const norvane::column_text value(column);
            text += (i == 0 ? "" : ",") + std::string(value.text());
        }
        return text;
    }

    std::vector<std::string> rows() const {
        std::vector<std::string> texts;
        for (std::int32_t row = 0; row < rowset.record_num; ++row) {
            texts.push_back(row_text(row));
        }
        return texts;
    }

    norvane::qry_lib_db_executer executer;
    qry_lib_db_rowset_ rowset{};
};

} // namespace test
