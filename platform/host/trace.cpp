// The trace: formats a line and hands it to the sink, one line at a time. QRYLIB_TRACE names where lines go
// until the process sets a sink of its own.
#include "platform/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/host/environment.h"
#include "platform/host/guard.h"
#include "platform/host/qryhost.h"

namespace {

qryhost::guard_mutex sink_lock(qryhost::lock_rank::trace_sink);
bool sink_is_chosen QRYLIB_GUARDED_BY(sink_lock) = false;
qryhost_trace_sink current_sink QRYLIB_GUARDED_BY(sink_lock) = nullptr;
void *sink_context QRYLIB_GUARDED_BY(sink_lock) = nullptr;

// Flushed line by line: the trace of a process that crashes is the one that is wanted.
void write_line(void *stream, std::uint32_t, std::uint32_t, std::uint32_t, const char *text) {
    auto *file = static_cast<std::FILE *>(stream);
    static_cast<void>(std::fputs(text, file));
    static_cast<void>(std::fflush(file));
}

// A file that cannot be opened drops the traces: tracing must not fail. It stays open until the process ends.
void choose_sink_of_environment() QRYLIB_REQUIRES(sink_lock) {
    sink_is_chosen = true;
    const char *target = qryhost::environment("QRYLIB_TRACE");
    if (target == nullptr) {
        return;
    }
    sink_context = std::strcmp(target, "stderr") == 0 ? stderr : std::fopen(target, "a");
    current_sink = sink_context != nullptr ? write_line : nullptr;
}

} // namespace

extern "C" {

void qryhost_set_trace_sink(qryhost_trace_sink sink, void *context) {
    const qryhost::guard hold(sink_lock);
    sink_is_chosen = true;
    current_sink = sink;
    sink_context = context;
}

void qryhost_get_trace_sink(qryhost_trace_sink *sink, void **context) {
    const qryhost::guard hold(sink_lock);
    if (!sink_is_chosen) {
        choose_sink_of_environment();
    }
    *sink = current_sink;
    *context = sink_context;
}

void pfwGENTrcPrintf(std::uint32_t destination, std::uint32_t module, std::uint32_t level, const char *format,
                     ...) {
    char line[512];
    std::va_list arguments;
    va_start(arguments, format);
    // The analyser does not see va_start.  NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    static_cast<void>(std::vsnprintf(line, sizeof line, format, arguments));
    va_end(arguments);
    const qryhost::guard hold(sink_lock);
    if (!sink_is_chosen) {
        choose_sink_of_environment();
    }
    if (current_sink != nullptr) {
        current_sink(sink_context, destination, module, level, line);
    }
}

} // extern "C"
