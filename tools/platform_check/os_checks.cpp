// Memory partition, mutexes, task lock and trace.
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "platform/os.h"
#include "platform/trace.h"
#include "tools/platform_check/checks.h"

namespace platform_check {

namespace {

constexpr std::uint32_t partition = 0;
constexpr std::int32_t without_limit = -1;

struct block {
    std::uint8_t *start;
    std::uint32_t size;
};

void take(report &out, std::uint32_t size, std::vector<block> &taken) {
    void *start = nullptr;
    const std::uint32_t code = pfwOSWOrgAllocMemPart(partition, &start, size);
    const std::string bytes = std::to_string(size) + " bytes";
    if (!out.succeeds(code, "pfwOSWOrgAllocMemPart", "a request for " + bytes) ||
        !out.expect(start != nullptr, "pfwOSWOrgAllocMemPart",
                    "answers 0 to a request for " + bytes + " and stores no address.")) {
        return;
    }
    out.expect(reinterpret_cast<std::uintptr_t>(start) % alignof(std::max_align_t) == 0,
               "pfwOSWOrgAllocMemPart",
               "gives a block of " + bytes + " that is not aligned to " +
                   std::to_string(alignof(std::max_align_t)) + " bytes.");
    taken.push_back({static_cast<std::uint8_t *>(start), size});
}

// Blocks that overlap overwrite each other's marks.
void check_marks(report &out, const std::vector<block> &taken) {
    for (std::size_t i = 0; i < taken.size(); ++i) {
        std::memset(taken[i].start, static_cast<int>(i + 1), taken[i].size);
    }
    for (std::size_t i = 0; i < taken.size(); ++i) {
        const auto mark = static_cast<std::uint8_t>(i + 1);
        out.expect(taken[i].start[0] == mark && taken[i].start[taken[i].size - 1] == mark,
                   "pfwOSWOrgAllocMemPart", "gives blocks that overlap while both are in use.");
    }
}

// Far more in sum than a device has: it works only when what is given back can be had again.
void check_return(report &out) {
    constexpr std::uint32_t size = 64 * 1024;
    for (int i = 0; i < 20000; ++i) {
        void *start = nullptr;
        const std::uint32_t code = pfwOSWOrgAllocMemPart(partition, &start, size);
        if (!out.succeeds(code, "pfwOSWOrgAllocMemPart",
                          "block number " + std::to_string(i + 1) +
                              " of 64 KiB, each given back before the next (does giving back work?)")) {
            return;
        }
        pfwOSWOrgFreeMemPart(partition, start);
    }
}

// What two threads see of one lock. Shared, since a thread that is never woken outlives the check.
struct contest {
    std::atomic<bool> second_is_in{false};
    std::atomic<std::uint32_t> second_code{0};
    std::atomic<bool> second_is_done{false};
};

bool wait_until(const std::atomic<bool> &flag, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!flag && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return flag;
}

struct lock_calls {
    const char *take_name;
    const char *release_name;
    std::uint32_t (*take)(std::uint32_t mutex);
    std::uint32_t (*release)(std::uint32_t mutex);
};

std::uint32_t take_mutex(std::uint32_t mutex) {
    return pfwOSWRequestMutexSem(mutex, without_limit);
}

constexpr lock_calls mutex_calls{"pfwOSWRequestMutexSem", "pfwOSWReleaseMutexSem", take_mutex,
                                 pfwOSWReleaseMutexSem};
constexpr lock_calls task_calls{"pfwOSWLockTask", "pfwOSWUnlockTask",
                                [](std::uint32_t) { return pfwOSWLockTask(); },
                                [](std::uint32_t) { return pfwOSWUnlockTask(); }};

void check_exclusion(report &out, const lock_calls &calls, std::uint32_t mutex) {
    if (!out.succeeds(calls.take(mutex), calls.take_name, "the first request")) {
        return;
    }
    const auto shared = std::make_shared<contest>();
    std::thread([shared, calls, mutex] {
        shared->second_code = calls.take(mutex);
        shared->second_is_in = true;
        if (shared->second_code == 0) {
            calls.release(mutex);
        }
        shared->second_is_done = true;
    }).detach();
    const bool early = wait_until(shared->second_is_in, std::chrono::milliseconds(100));
    out.expect(!early, calls.take_name, "does not make a second thread wait while the first holds the lock.");
    out.succeeds(calls.release(mutex), calls.release_name, "the holder's release");
    if (!out.expect(wait_until(shared->second_is_done, std::chrono::seconds(3)), calls.release_name,
                    "does not let the waiting thread go on: it still waits after 3 seconds.")) {
        return;
    }
    out.expect(early || shared->second_code == 0, calls.take_name, "fails in the thread that had to wait.");
    if (out.succeeds(calls.take(mutex), calls.take_name, "a request after the release")) {
        calls.release(mutex);
    }
}

} // namespace

void check_memory_partition(report &out) {
    out.begin("memory partition");
    std::vector<block> taken;
    for (const std::uint32_t size : {1u, 2u, 8u, 17u, 3164u, 3u, 65536u, 400000u, 1048576u}) {
        take(out, size, taken);
    }
    check_marks(out, taken);
    for (const block &one : taken) {
        pfwOSWOrgFreeMemPart(partition, one.start);
    }
    check_return(out);
}

void check_mutexes(report &out) {
    out.begin("mutexes and task lock");
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    if (out.succeeds(pfwOSWCreateMutexSem(&first, 0, 1), "pfwOSWCreateMutexSem",
                     "a mutex with option 0, count 1") &&
        out.succeeds(pfwOSWCreateMutexSem(&second, 0, 1), "pfwOSWCreateMutexSem", "a second mutex")) {
        out.expect(first != 0 && second != 0, "pfwOSWCreateMutexSem",
                   "gives a mutex the identifier 0, which the library takes for no mutex.");
        out.expect(first != second, "pfwOSWCreateMutexSem", "gives two mutexes the same identifier.");
        check_exclusion(out, mutex_calls, first);
    }
    check_exclusion(out, task_calls, 0);
}

// Nothing comes back from the trace, so a person has to look at it.
void check_trace(report &out) {
    out.begin("trace");
    pfwGENTrcPrintf(0, 258, 2, "%s():[Return]:(%d) (0x%08lX)\n", "qrylib_platform_check", 447, 0xDB00ul);
    pfwGENTrcPrintf(0, 258, 2, "%s():[Enter]:(%d) \n", "qrylib_platform_check", 1);
    pfwGENTrcPrintf(0, 258, 2, "%s():[Return]:(%d) \n", "qrylib_platform_check", 2);
    out.note("the trace (destination 0, module 258, level 2) now ends with these three lines:\n"
             "    qrylib_platform_check():[Return]:(447) (0x0000DB00)\n"
             "    qrylib_platform_check():[Enter]:(1) \n"
             "    qrylib_platform_check():[Return]:(2) ");
}

} // namespace platform_check
