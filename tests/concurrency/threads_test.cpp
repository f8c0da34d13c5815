// Eight threads on one store, in private memory and in a device image.
#include <thread>

#include "concurrency/workload.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

constexpr int statements = 300; // of each thread

void run_threads(std::uint32_t seed) {
    std::vector<std::thread> threads;
    for (std::uint32_t i = 0; i < workload_writers; ++i) {
        threads.emplace_back([i, seed] {
            workload_writer writer(i, seed);
            for (int n = 0; n < statements; ++n) {
                writer.step();
            }
        });
        threads.emplace_back([i, seed] {
            workload_reader reader(seed + 100 + i);
            for (int n = 0; n < statements; ++n) {
                reader.step();
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

class threads : public host_test {
  protected:
    threads() { qryhost_set_trace_sink(nullptr, nullptr); } // the collector is one thread's
    ~threads() override { EXPECT_EQ(qryhost_open(nullptr), 0); }

    seeded_random random;
};

TEST_F(threads, keep_every_invariant_in_private_memory) {
    ASSERT_EQ(qryhost_open(nullptr), 0);
    prepare_workload();
    run_threads(random.below(1000000));
    EXPECT_FALSE(HasFailure()) << random.rerun();
}

TEST_F(threads, keep_every_invariant_in_an_image) {
    const temporary_folder folder;
    ASSERT_EQ(qryhost_open(folder.file("device.img").c_str()), 0) << qryhost_error();
    prepare_workload();
    run_threads(random.below(1000000));
    EXPECT_FALSE(HasFailure()) << random.rerun();
    EXPECT_EQ(qryhost_check(folder.file("device.img").c_str(), nullptr, nullptr), 0) << qryhost_error();
}

} // namespace
