// The process's own number and namespace, and what can be told of another's.
#include "platform/host/process_number.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace qryhost {

process_number own_process;

namespace {

bool learn_at_start() noexcept {
    learn_own_process();
    return true;
}

const bool is_known_from_the_start = learn_at_start();

bool exists(std::uint32_t number) {
    return ::kill(static_cast<pid_t>(number), 0) == 0 || errno == EPERM;
}

} // namespace

void learn_own_process() noexcept {
    struct stat space {};
    const bool is_known = ::stat("/proc/self/ns/pid", &space) == 0;
    own_process.number.store(static_cast<std::uint32_t>(::getpid()), std::memory_order_relaxed);
    own_process.space.store(is_known ? static_cast<std::uint32_t>(space.st_ino) : 0,
                            std::memory_order_relaxed);
}

std::string describe_process(std::uint32_t number, std::uint32_t space) {
    std::string name = "process " + std::to_string(number);
    if (space != own_process.space.load(std::memory_order_relaxed)) {
        return name + " of another process-number namespace, which cannot be seen from here";
    }
    if (number == own_process.number.load(std::memory_order_relaxed)) {
        return "another thread of this process";
    }
    if (number == 0 || number > INT32_MAX || !exists(number)) {
        return name + ", which cannot be seen from here";
    }
    return name;
}

} // namespace qryhost
