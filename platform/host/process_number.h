// How a process names itself to others, so that who waits for it can say whom they wait for.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace qryhost {

// Its number, and the namespace in which the number is meant; 0: not known. Kept, since every write names its
// process, and asking the system would take longer than the write.
struct process_number {
    std::atomic<std::uint32_t> number;
    std::atomic<std::uint32_t> space;
};

extern process_number own_process __attribute__((visibility("hidden")));

// Asks the system again, as a child of fork must.
void learn_own_process() noexcept;

// "process 123", with a word on those that cannot be seen from here.
std::string describe_process(std::uint32_t number, std::uint32_t space);

} // namespace qryhost
