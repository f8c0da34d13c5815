// A variable, or the home folder.
#include "tools/qrysh/prompt/personal_file.h"

#include <cstdlib>

namespace qrysh {

std::string personal_file(const char *variable, const char *name) {
    if (const char *const chosen = std::getenv(variable)) {
        return chosen;
    }
    const char *const home = std::getenv("HOME");
    return home == nullptr || *home == '\0' ? "" : std::string(home) + '/' + name;
}

} // namespace qrysh
