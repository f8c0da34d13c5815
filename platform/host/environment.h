// What the user's environment says. Programs that run with more rights than their user do not listen to it:
// it names files to open and to write.
#pragma once

#include <cstdlib>

namespace qryhost {

// Null when the variable is not set, is empty, or may not be obeyed.
inline const char *environment(const char *name) {
#ifdef __EMSCRIPTEN__
    const char *value = ::getenv(name); // nobody has more rights than others there
#else
    const char *value = ::secure_getenv(name);
#endif
    return value != nullptr && *value != '\0' ? value : nullptr;
}

} // namespace qryhost
