// Readers and writers on one store, each a process of its own: processes ENGINE READERS WRITERS SECONDS.
// Prints how many statements a second they made together, and how long single ones took, as one line of JSON.
#include "processes.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "library.h"

namespace {

using clock_type = std::chrono::steady_clock;

// Counts durations in nanoseconds by size class: 32 for each power of two, so that no class is wider than 3
// percent.
class durations {
  public:
    void add(std::uint64_t nanoseconds) {
        ++counts_[class_of(nanoseconds)];
        longest_ = std::max(longest_, nanoseconds);
        ++num_;
    }
    void add(const durations &other) {
        std::transform(counts_.begin(), counts_.end(), other.counts_.begin(), counts_.begin(), std::plus<>());
        longest_ = std::max(longest_, other.longest_);
        num_ += other.num_;
    }
    std::uint64_t num() const { return num_; }
    std::uint64_t longest() const { return longest_; }

    // What that part of them do not exceed.
    std::uint64_t quantile(double part) const {
        const auto wanted = static_cast<std::uint64_t>(part * static_cast<double>(num_));
        std::uint64_t passed = 0;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            passed += counts_[i];
            if (passed > wanted) {
                return upper_end(i);
            }
        }
        return longest_;
    }

  private:
    static constexpr unsigned step_bits = 5;
    static constexpr std::size_t steps = std::size_t{1} << step_bits;

    static std::size_t class_of(std::uint64_t value) {
        if (value < steps) {
            return value;
        }
        const unsigned shift = 63 - static_cast<unsigned>(__builtin_clzll(value)) - step_bits;
        return steps * (shift + 1) + (value >> shift) - steps;
    }
    static std::uint64_t upper_end(std::size_t index) {
        if (index < steps) {
            return index;
        }
        const std::size_t shift = index / steps - 1;
        return ((steps + index % steps + 1) << shift) - 1;
    }

    std::array<std::uint64_t, steps *(64 - step_bits + 1)> counts_{};
    std::uint64_t longest_ = 0;
    std::uint64_t num_ = 0;
};

constexpr unsigned process_max = 16;

// What all processes see. Each writes its own durations.
struct shared_state {
    std::atomic<unsigned> ready;
    std::atomic<bool> started;
    std::atomic<bool> stopped;
    durations taken[process_max];
};

shared_state &make_shared_state() {
    void *memory =
        ::mmap(nullptr, sizeof(shared_state), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    bench::require(memory != MAP_FAILED, "no memory to share");
    return *new (memory) shared_state;
}

// One process: a reader or a writer.
void run(const bench::engine &engine, const std::string &folder, unsigned number, bool writes,
         shared_state &shared) {
    const std::unique_ptr<bench::session> session = engine.open(folder);
    std::mt19937 random(number);
    const std::uint32_t departments = bench::department_num();
    const auto once = [&] {
        const int id = 1 + static_cast<int>(random() % departments);
        writes ? session->write(id, random() % 65536) : session->read(id);
    };
    once();
    ++shared.ready;
    while (!shared.started) {
        std::this_thread::yield();
    }
    while (!shared.stopped.load(std::memory_order_relaxed)) {
        const auto begin = clock_type::now();
        once();
        const auto end = clock_type::now();
        shared.taken[number].add(static_cast<std::uint64_t>((end - begin).count()));
    }
}

void print(const char *kind, const durations &taken, double seconds) {
    std::printf(", \"%s\": {\"per_second\": %.0f, \"median\": %llu, \"p999\": %llu, \"longest\": %llu}", kind,
                static_cast<double>(taken.num()) / seconds,
                static_cast<unsigned long long>(taken.quantile(0.5)),
                static_cast<unsigned long long>(taken.quantile(0.999)),
                static_cast<unsigned long long>(taken.longest()));
}

void measure(const bench::engine &engine, unsigned readers, unsigned writers, double seconds,
             const std::string &folder) {
    shared_state &shared = make_shared_state();
    engine.create(folder);
    for (unsigned number = 0; number < readers + writers; ++number) {
        if (::fork() == 0) {
            run(engine, folder, number, number >= readers, shared);
            std::_Exit(0);
        }
    }
    while (shared.ready < readers + writers) {
        bench::require(::waitpid(-1, nullptr, WNOHANG) == 0, "a process did not open the store");
        std::this_thread::yield();
    }
    const auto begin = clock_type::now();
    shared.started = true;
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    shared.stopped = true;
    const std::chrono::duration<double> passed = clock_type::now() - begin;
    for (int status = 0; ::wait(&status) > 0;) {
        bench::require(status == 0, "a process failed");
    }
    durations reads;
    durations writes;
    for (unsigned number = 0; number < readers + writers; ++number) {
        (number < readers ? reads : writes).add(shared.taken[number]);
    }
    std::printf("{\"engine\": \"%s\", \"readers\": %u, \"writers\": %u", engine.name, readers, writers);
    print("reads", reads, passed.count());
    print("writes", writes, passed.count());
    std::puts("}");
}

// Files in memory where there is room for such.
std::filesystem::path make_folder() {
    const std::filesystem::path memory = "/dev/shm";
    std::string name =
        (std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path()) /
        "qrylib-processes-XXXXXX";
    bench::require(::mkdtemp(name.data()) != nullptr, "no folder can be made: " + name);
    return name;
}

} // namespace

int main(int argc, char **argv) {
    bench::require(argc == 5, "usage: processes ENGINE READERS WRITERS SECONDS");
    const unsigned long readers = std::strtoul(argv[2], nullptr, 10);
    const unsigned long writers = std::strtoul(argv[3], nullptr, 10);
    const auto chosen =
        std::find_if(bench::engines.begin(), bench::engines.end(),
                     [&](const bench::engine &one) { return std::string(one.name) == argv[1]; });
    bench::require(chosen != bench::engines.end(), std::string("there is no engine ") + argv[1]);
    bench::require(readers <= process_max && writers <= process_max && readers + writers <= process_max,
                   "too many processes");
    const std::filesystem::path folder = make_folder();
    measure(*chosen, static_cast<unsigned>(readers), static_cast<unsigned>(writers),
            std::strtod(argv[4], nullptr), folder);
    std::filesystem::remove_all(folder);
    return 0;
}
