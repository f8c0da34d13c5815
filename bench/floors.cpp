// The platform's calls alone, and the join's copies and comparisons alone.
#include "floors.h"

#include <cstring>
#include <vector>

#include <qrylib/qrylib.h>

#include "library.h"
#include "platform/element_table.h"
#include "platform/host/qryhost.h"
#include "platform/os.h"

namespace bench {

namespace {

constexpr std::uint32_t requester = 0x2301;
constexpr std::uint32_t departments = 0x05080404;
constexpr std::uint32_t total_m = 0x44882000;
constexpr std::uint32_t small_block = 32;

struct call_counts {
    std::uint32_t blocks, lists, positions, values, reads, writes;
};

call_counts count_calls() {
    return {qryhost_call_count(QRYHOST_ALLOC),        qryhost_call_count(QRYHOST_CREATE_LIST),
            qryhost_call_count(QRYHOST_LIST_SET_POS), qryhost_call_count(QRYHOST_LIST_GET_VAL),
            qryhost_call_count(QRYHOST_GET_TABLE),    qryhost_call_count(QRYHOST_SET_TABLE)};
}

std::uint64_t take_blocks(std::uint32_t num) {
    std::uint64_t failed = 0;
    for (std::uint32_t i = 0; i < num; ++i) {
        void *block = nullptr;
        failed += pfwOSWOrgAllocMemPart(0, &block, small_block);
        pfwOSWOrgFreeMemPart(0, block);
    }
    return failed;
}

// The positions and values go round the lists as a search does: every key of a record, then the next record.
std::uint64_t walk_lists(const call_counts &calls, std::uint16_t record_num) {
    std::vector<tbctListTable> lists(calls.lists);
    std::uint64_t read = 0;
    for (tbctListTable &list : lists) {
        read += tbctSTCCreateListTable(departments, total_m, record_num, &list);
    }
    std::size_t list = 0;
    std::uint16_t position = 0;
    for (std::uint32_t i = 0; i < calls.positions; ++i) {
        std::uint32_t value = 0;
        read += tbctSTCListTableSetPos(&lists[list], position);
        read += i < calls.values ? tbctSTCListTableGetVal(&lists[list], &value) : 0;
        read += value;
        if (++list == lists.size()) {
            list = 0;
            position =
                position + 1 < record_num ? static_cast<std::uint16_t>(position + 1) : std::uint16_t{0};
        }
    }
    for (tbctListTable &open : lists) {
        tbctSTCDeleteListTable(&open, 0);
    }
    return read;
}

std::uint64_t read_and_write(const call_counts &calls, std::uint16_t record_num) {
    std::uint64_t read = 0;
    std::uint32_t value = 0;
    for (std::uint32_t i = 0; i < calls.reads; ++i) {
        read += tbctSTCGetTable(departments, i % record_num + 1, total_m, &value) + value;
    }
    for (std::uint32_t i = 0; i < calls.writes; ++i) {
        read += tbctSTCGetTable(departments, i % record_num + 1, total_m, &value);
        read += tbctSTCSetTable(requester, departments, i % record_num + 1, total_m, &value);
    }
    return read;
}

// The rows of a SELECT, kept for as long as the program runs.
const qry_lib_db_rowset_ &kept_rows(const char *sql) {
    auto *rowset = new qry_lib_db_rowset_{};
    qry_lib_db_stmt_ stmt;
    if (qry_lib_db_get_stmt("department_db", &stmt) != 0 || qry_lib_db_exec_query(&stmt, sql, rowset) != 0) {
        rowset->record_num = 0;
    }
    return *rowset;
}

} // namespace

std::function<std::uint64_t()> platform_calls_of(const std::function<std::uint64_t()> &statement) {
    const call_counts before = count_calls();
    statement();
    const call_counts after = count_calls();
    const call_counts made = {after.blocks - before.blocks,       after.lists - before.lists,
                              after.positions - before.positions, after.values - before.values,
                              after.reads - before.reads,         after.writes - before.writes};
    return [made, record_num = department_num()] {
        return take_blocks(made.blocks) + walk_lists(made, record_num) + read_and_write(made, record_num);
    };
}

std::uint64_t plain_join() {
    static const qry_lib_db_rowset_ &outer = kept_rows("SELECT CNT, ID FROM EDIT_CNT_TBL");
    static const qry_lib_db_rowset_ &inner = kept_rows("SELECT NAME, ID FROM DEPT_TBL");
    std::vector<QRY_LIB_COLUMN> candidate;
    std::vector<std::vector<QRY_LIB_COLUMN>> joined;
    std::vector<std::vector<QRY_LIB_COLUMN>> copied;
    for (std::int32_t i = 0; i < inner.record_num; ++i) {
        copied.emplace_back(inner.records[i].cols, inner.records[i].cols + inner.records[i].col_num);
    }
    for (std::int32_t o = 0; o < outer.record_num; ++o) {
        const QRY_LIB_RECORD &row = outer.records[o];
        for (const std::vector<QRY_LIB_COLUMN> &before : copied) {
            candidate.assign(before.begin(), before.end());
            if (candidate[1].value.ushort_value == row.cols[1].value.ulong_value) {
                candidate.insert(candidate.end(), row.cols, row.cols + row.col_num);
                joined.push_back(std::move(candidate));
                candidate.clear();
            }
        }
    }
    std::uint64_t read = 0;
    for (const std::vector<QRY_LIB_COLUMN> &row : joined) {
        read += row[2].value.ulong_value + std::strlen(row[0].value.str_value);
    }
    return read;
}

} // namespace bench
