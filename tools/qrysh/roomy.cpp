// Another program in this one's place.
#include "tools/qrysh/roomy.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "tools/qrysh/commands/device.h"
#include "tools/qrysh/commands/session.h"

namespace qrysh {

int become_roomy(char **argv) {
    constexpr const char *name = "qrysh-roomy";
    std::vector<char *> arguments;
    for (char **word = argv; *word != nullptr; ++word) {
        if (std::strcmp(*word, "--roomy") != 0) {
            arguments.push_back(*word);
        }
    }
    arguments.push_back(nullptr);
    execv((program_folder() / name).c_str(), arguments.data());
    if (errno == ENOENT) {
        execvp(name, arguments.data());
    }
    session::fail(fmt::format("{}: {}; a full build makes it beside the shell, no package has it", name,
                              std::generic_category().message(errno)));
    return 1;
}

} // namespace qrysh
