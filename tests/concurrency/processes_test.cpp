// Four writing and four reading processes on one device image, and processes that are killed.
#include <chrono>
#include <thread>

#include "concurrency/workload.h"
#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

constexpr int statements = 200; // of each process

// What a table of the job log is filled with: texts of one letter, longer than any cache line.
constexpr std::uint32_t job_log = 0x050F0700;

// The store is not opened by the parent while children are made: each opens the image for itself.
class processes : public host_test {
  protected:
    processes() {
        EXPECT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
        prepare_workload();
        EXPECT_EQ(qryhost_open(nullptr), 0);
    }
    ~processes() override { EXPECT_EQ(qryhost_open(nullptr), 0); }

    template <typename Work>
    child_process start(Work work) {
        return child_process([this, work] {
            qryhost_set_trace_sink(nullptr, nullptr);
            if (qryhost_open(path.c_str()) != 0) {
                std::fprintf(stderr, "%s\n", qryhost_error());
                return false;
            }
            work();
            return !HasFailure();
        });
    }

    child_process start_writer(std::uint32_t number, std::uint32_t seed, int steps) {
        return start([=] {
            workload_writer writer(number, seed);
            for (int n = 0; n < steps; ++n) {
                writer.step();
            }
        });
    }

    void expect_no_damage() const {
        const auto print = [](void *, int is_damage, const char *text) {
            if (is_damage != 0) {
                ADD_FAILURE() << text;
            }
        };
        EXPECT_EQ(qryhost_check(path.c_str(), print, nullptr), 0) << qryhost_error();
    }

    seeded_random random;
    const temporary_folder folder;
    const std::string path = folder.file("device.img");
};

TEST_F(processes, keep_every_invariant) {
    const std::uint32_t seed = random.below(1000000);
    std::vector<child_process> children;
    for (std::uint32_t i = 0; i < workload_writers; ++i) {
        children.push_back(start_writer(i, seed, statements));
        children.push_back(start([seed, i] {
            workload_reader reader(seed + 100 + i);
            for (int n = 0; n < statements; ++n) {
                reader.step();
            }
        }));
    }
    for (child_process &child : children) {
        EXPECT_TRUE(child.succeeded()) << random.rerun();
    }
    ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
    check_workload();
    expect_no_damage();
}

int kill_rounds() {
    const char *rounds = std::getenv("QRYLIB_KILL_ROUNDS");
    return rounds != nullptr ? std::atoi(rounds) : 50;
}

// Strings keep room for their end.
std::ptrdiff_t letters_in(std::uint16_t size) {
    return size > 4 ? size - 1 : size;
}

// Writes long values, of one letter each, and resets them, as fast as it can.
void write_job_log(std::uint32_t seed) {
    std::mt19937 engine(seed);
    for (;;) {
        for (const auto &[key, size] : element_sizes()) {
            if (key.first == job_log) {
                value_buffer value = empty_buffer(static_cast<std::uint8_t>('A' + engine() % 26));
                std::fill(value.begin() + letters_in(size), value.end(), std::uint8_t{0});
                EXPECT_EQ(tbctSTCSetTable(requester, job_log, engine() % 2, key.second, value.data()), 0u);
            }
        }
        EXPECT_EQ(engine() % 2 == 0 ? tbSTCInitTable(job_log, 1) : tbctResetTable(job_log), 0u);
    }
}

void expect_whole_job_log() {
    for (const auto &[key, size] : element_sizes()) {
        for (std::uint32_t record = 0; key.first == job_log && record < 2; ++record) {
            value_buffer value = empty_buffer();
            EXPECT_EQ(tbctSTCGetTable(job_log, record, key.second, value.data()), 0u);
            const std::vector<std::uint8_t> whole(static_cast<std::size_t>(letters_in(size)), value[0]);
            EXPECT_TRUE(std::equal(whole.begin(), whole.end(), value.begin())) << "element " << key.second;
        }
    }
}

// In every other round a process keeps the image open, so that it meets the dead one's locks; in the others
// the next opener is alone with what was left.
TEST_F(processes, that_are_killed_leave_values_whole_and_no_lock) {
    if (!dead_holders_are_told()) {
        GTEST_SKIP() << "the system keeps no list of a thread's locks: one that dies keeps them for good";
    }
    const int rounds = kill_rounds();
    std::printf("%d rounds, %s\n", rounds, random.rerun().c_str());
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        const bool stays_open = round % 2 == 0;
        if (stays_open) {
            ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
        }
        std::vector<child_process> children;
        const std::uint32_t seed = random.below(1000000);
        constexpr int endless = 1000000;
        for (std::uint32_t i = 0; i < 2; ++i) {
            children.push_back(start_writer(i, seed, endless));
        }
        children.push_back(start([seed] { write_job_log(seed); }));
        std::this_thread::sleep_for(std::chrono::microseconds(random.below(30000)));
        for (child_process &child : children) {
            EXPECT_TRUE(child.kill()) << "a writer had given up before it was killed";
        }
        expect_no_damage();
        if (!stays_open) {
            ASSERT_EQ(qryhost_open(path.c_str()), 0) << qryhost_error();
        }
        check_workload();
        expect_whole_job_log();
        ASSERT_EQ(qryhost_open(nullptr), 0);
        EXPECT_FALSE(HasFailure()) << "round " << round << ", " << random.rerun();
    }
}

} // namespace
