// .watch: a statement again and again.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <fmt/format.h>

#include "tools/qrysh/commands/actions.h"
#include "tools/qrysh/commands/arguments.h"
#include "tools/qrysh/printing/output.h"
#include "tools/qrysh/prompt/interrupt.h"
#include "tools/text/text.h"

namespace qrysh {

using namespace qrytext;

namespace {

using seconds = std::chrono::duration<double>;

constexpr double longest_wait = 86400;

// False when Ctrl-C came first.
bool wait(seconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        if (take_interrupt()) {
            return false;
        }
        const seconds left = end - std::chrono::steady_clock::now();
        std::this_thread::sleep_for(std::min(left, seconds(0.05)));
    }
    return !take_interrupt();
}

} // namespace

outcome watch_line(const std::string &order, const std::function<outcome(const std::string &line)> &answer) {
    const word_and_rest parts = split_first_word(order);
    char *end = nullptr;
    const double time = std::strtod(parts.word.c_str(), &end);
    if (*end != '\0' || !(time > 0) || time > longest_wait || parts.rest.empty()) {
        return session::fail("expected seconds and a statement: .watch SECONDS SQL");
    }
    take_interrupt();
    for (int round = 1;; ++round) {
        say(fmt::format("-- {}, every {} s, Ctrl-C ends\n", round, parts.word));
        if (answer(parts.rest) != outcome::done) {
            return outcome::failed;
        }
        if (!wait(seconds(time))) {
            say("\n");
            return outcome::done;
        }
    }
}

} // namespace qrysh
