// What the replaced operator new answers.
#include "fault/refused_new.h"

#include <atomic>
#include <cstdlib>

#include "replaced_new.h"

namespace {

struct {
    std::atomic<bool> armed{false};
    std::atomic<std::uint32_t> requests{0};
    std::atomic<std::uint32_t> skip{0};
    std::atomic<std::uint32_t> times{0};
    std::atomic<bool> quiet_refused{false};
    std::atomic<std::int32_t> in_use{0};
} state;

bool is_refused() {
    if (!state.armed) {
        return false;
    }
    const std::uint32_t request = state.requests++;
    return request >= state.skip && request - state.skip < state.times;
}

} // namespace

namespace test {

void *take_memory(std::size_t size, bool may_throw) {
    void *block = is_refused() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block != nullptr) {
        ++state.in_use;
    } else if (!may_throw) {
        state.quiet_refused = true;
    }
    return block;
}

void give_memory_back(void *block) {
    --state.in_use;
    std::free(block);
}

} // namespace test

namespace fault {

void refuse_new(std::uint32_t skip, std::uint32_t times) {
    state.requests = 0;
    state.skip = skip;
    state.times = times;
    state.quiet_refused = false;
    state.armed = true;
}

void allow_new() {
    state.armed = false;
}

std::uint32_t new_requests() {
    return state.requests;
}

bool quiet_request_refused() {
    return state.quiet_refused;
}

std::int32_t new_in_use() {
    return state.in_use;
}

} // namespace fault
