// Searches with several conditions beside a writer: all of them hold at one moment.
#include <atomic>
#include <cstdlib>
#include <thread>

#include "concurrency/statements.h"
#include "concurrency/workload.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

int count_rounds() {
    const char *rounds = std::getenv("QRYLIB_COUNT_ROUNDS");
    return rounds != nullptr ? std::atoi(rounds) : 20000;
}

class moments : public host_test {
  protected:
    moments() { qryhost_set_trace_sink(nullptr, nullptr); } // the collector is one thread's
};

std::uint32_t count(const char *condition) {
    std::uint32_t code = 0;
    const cell_rows rows =
        select("department_db", std::string("SELECT COUNT(*) FROM DEPT_TBL WHERE ") + condition,
               {column_kind::number}, code);
    EXPECT_EQ(code, 0u);
    return rows.size() == 1 ? std::get<std::uint32_t>(rows[0][0]) : 0;
}

// One record is free or has the number 41. Its number is below 41 only while it is free, so it never counts.
TEST_F(moments, of_one_search_are_one) {
    prepare_workload();
    std::atomic<bool> done{false};
    std::thread writer([&done] {
        constexpr std::uint32_t last_record = 101;
        for (std::uint32_t i = 0; !done; ++i) {
            const std::uint16_t id = i % 2 == 0 ? 41 : 0;
            EXPECT_EQ(tbctSTCSetTable(requester, departments, last_record, department_id, &id), 0u);
        }
    });
    int wrong = 0;
    const int rounds = count_rounds();
    for (int i = 0; i < rounds; ++i) {
        wrong += count("ID <= 40") == workload_departments ? 0 : 1;
    }
    done = true;
    writer.join();
    EXPECT_EQ(wrong, 0) << "of " << rounds;
}

} // namespace
