// What a shared device image costs beside private memory: the same statements on both, in one run.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include "library.h"
#include "platform/host/qryhost.h"
#include "statements.h"

namespace {

using clock_type = std::chrono::steady_clock;

constexpr int blocks = 15;
constexpr auto block_time = std::chrono::milliseconds(20);

// Nanoseconds for one call, of one block of calls.
double time_block(const bench::call &call) {
    int calls = 0;
    const auto start = clock_type::now();
    auto now = start;
    for (; now - start < block_time; now = clock_type::now()) {
        for (int i = 0; i < 16; ++i) {
            call.run();
        }
        calls += 16;
    }
    return std::chrono::duration<double, std::nano>(now - start).count() / calls;
}

// The fastest block: what disturbs a measurement only ever slows it.
std::vector<double> time_calls(const std::vector<bench::call> &calls) {
    std::vector<double> best(calls.size(), 1e300);
    for (int block = 0; block < blocks; ++block) {
        for (std::size_t i = 0; i < calls.size(); ++i) {
            best[i] = std::min(best[i], time_block(calls[i]));
        }
    }
    return best;
}

bool open_and_fill(const char *image) {
    if (qryhost_open(image) != 0) {
        std::fprintf(stderr, "%s\n", qryhost_error());
        return false;
    }
    bench::fill_element_tables();
    return true;
}

} // namespace

int main() {
    qryhost_set_trace_sink(nullptr, nullptr);
    const std::vector<bench::call> calls = bench::library_calls();
    const std::string image =
        (std::filesystem::temp_directory_path() / ("qrylib-bench-" + std::to_string(getpid()) + ".img"))
            .string();
    if (!open_and_fill(nullptr)) {
        return 1;
    }
    const std::vector<double> in_private = time_calls(calls);
    const bool opened = open_and_fill(image.c_str());
    const std::vector<double> in_image = opened ? time_calls(calls) : in_private;
    qryhost_close();
    std::filesystem::remove(image);
    if (!opened) {
        return 1;
    }
    std::printf("%-20s %12s %12s %7s\n", "statement", "private ns", "image ns", "ratio");
    for (std::size_t i = 0; i < calls.size(); ++i) {
        std::printf("%-20s %12.0f %12.0f %7.2f\n", calls[i].name.c_str(), in_private[i], in_image[i],
                    in_image[i] / in_private[i]);
    }
    return 0;
}
