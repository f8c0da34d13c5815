// The trace sink of the shell.
#include "tools/qrysh/printing/trace_log.h"

#include <cstdlib>

#include <fmt/format.h>

#include "platform/host/qryhost.h"
#include "tools/qrysh/printing/output.h"
#include "tools/text/trace_explainer.h"

namespace qrysh {

using namespace qrytext;

namespace {

bool traces_go_elsewhere() {
    const char *const place = std::getenv("QRYLIB_TRACE");
    return place != nullptr && *place != '\0';
}

} // namespace

trace_log::trace_log() {
    if (!traces_go_elsewhere()) {
        qryhost_set_trace_sink(receive, this);
    }
}

trace_log::~trace_log() {
    qryhost_set_trace_sink(nullptr, nullptr);
}

void trace_log::set_printing(bool on) {
    printing_ = on;
    qryhost_set_trace_sink(receive, this);
}

void trace_log::receive(void *context, std::uint32_t /*destination*/, std::uint32_t /*module*/,
                        std::uint32_t /*level*/, const char *text) {
    auto &log = *static_cast<trace_log *>(context);
    if (log.keep(text) && log.printing_) {
        say(fmt::format("{}\n", explain_trace(text)));
    }
}

} // namespace qrysh
