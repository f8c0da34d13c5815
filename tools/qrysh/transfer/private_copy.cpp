// A child of fork, whose records come in the platform's own readable form and whose answer comes through a
// pipe.
#include "tools/qrysh/transfer/private_copy.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <stdexcept>
#include <system_error>

#include "platform/host/qryhost.h"
#include "tools/files/open_file.h"

namespace qrysh {

namespace {

using qryfiles::open_file;

// What an answer begins with.
constexpr char worked = '+';
constexpr char failed = '-';

void require(int result) {
    if (result != 0) {
        throw std::runtime_error(qryhost_error());
    }
}

std::string saved_records() {
    std::string text;
    const auto take = [](void *context, const char *json) { *static_cast<std::string *>(context) = json; };
    require(qryhost_save_text(take, &text));
    return text;
}

std::string answer_of(const std::function<std::string(const put_back &)> &work, const std::string &records) {
    try {
        require(qryhost_open(nullptr));
        require(qryhost_load_text(records.c_str()));
        return worked + work([&] { require(qryhost_load_text(records.c_str())); });
    } catch (const std::exception &error) {
        return failed + std::string(error.what());
    }
}

// Leaves without the parent's work: its buffers, its files and its end.
[[noreturn]] void run_child(const std::function<std::string(const put_back &)> &work,
                            const std::string &records, const open_file &answer) {
    int status = 1;
    try {
        write_all(answer, answer_of(work, records), "the trial");
        status = 0;
    } catch (const std::exception &) { // nobody reads the answer any more
    }
    ::_exit(status);
}

std::string read_all(const open_file &answer) {
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t now = ::read(answer.number(), buffer, sizeof buffer);
        if (now == 0 || (now < 0 && errno != EINTR)) {
            return text;
        }
        text.append(buffer, now > 0 ? static_cast<std::size_t>(now) : 0);
    }
}

} // namespace

std::string on_private_copy(const std::function<std::string(const put_back &records)> &work) {
    const std::string records = saved_records();
    int ends[2];
    if (::pipe(ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "a pipe");
    }
    const open_file from_child(ends[0]);
    open_file to_parent(ends[1]);
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "a process for the trial");
    }
    if (child == 0) {
        run_child(work, records, to_parent);
    }
    to_parent.close();
    const std::string text = read_all(from_child);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (text.empty() || text.front() != worked) {
        throw std::runtime_error(text.empty() ? "the trial was ended from outside" : text.substr(1));
    }
    return text.substr(1);
}

} // namespace qrysh
