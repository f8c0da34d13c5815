// The frame of every control call: a failure becomes a sentence for the calling thread and a result of 1.
#pragma once

#include <exception>
#include <new>

#include "platform/host/refusal.h"

namespace qryhost {

// Runs a control call's work; no exception leaves it.
template <typename Work>
int control(Work work) noexcept {
    set_error("");
    try {
        work();
        return 0;
    } catch (const std::bad_alloc &) {
        set_error("out of memory");
    } catch (const std::exception &failure) {
        set_error(failure.what());
    }
    return 1;
}

} // namespace qryhost
