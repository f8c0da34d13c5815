// What every part of the workstation knows of failing: a refusal with its sentence, and where the last
// sentence of a thread stands.
#pragma once

#include <stdexcept>
#include <string>

namespace qryhost {

// A call that is refused; what() is the sentence for the user.
struct refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The path itself; throws `refusal` when none is given.
const char *required_path(const char *path);

// What qryhost_error() answers on this thread from now on.
void set_error(const char *sentence) noexcept;

const char *last_error() noexcept;

} // namespace qryhost
