// What the element-table calls answer beside 0, and the frame of those that may have to wait.
#pragma once

#include <cstdint>
#include <exception>
#include <new>

#include "platform/host/refusal.h"

namespace qryhost {

enum element_code : std::uint32_t {
    element_refused = 0x5241,   // an argument that names nothing
    element_no_store = 0x5242,  // the store cannot be opened: qryhost_error() says why
    element_no_memory = 0x5244, //
    element_read_only = 0x5245, // the store is a device image that cannot be written; the same
    element_held = 0x5246       // others keep the records for too long; the same
};

// Runs a call's work on the store.
template <typename Work>
std::uint32_t waiting_call(Work work) noexcept {
    try {
        work();
        return 0;
    } catch (const std::bad_alloc &) {
        return element_no_memory;
    } catch (const std::exception &failure) {
        set_error(failure.what());
        return element_held;
    }
}

} // namespace qryhost
