// The frame of every control call: a failure becomes a sentence for the calling thread and a result of 1.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace qryhost {

// A control call that is refused; what() is the sentence for the user.
struct refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The path itself; throws `refusal` when none is given.
const char *required_path(const char *path);

// What qryhost_error() answers on this thread from now on.
void set_error(const char *sentence) noexcept;

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
