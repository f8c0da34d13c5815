// The trace: formats a line and hands it to the sink, one line at a time.
#include "platform/trace.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

#include "platform/host/qryhost.h"

namespace {

std::mutex sink_lock;
qryhost_trace_sink current_sink = nullptr;
void *sink_context = nullptr;

} // namespace

extern "C" {

void qryhost_set_trace_sink(qryhost_trace_sink sink, void *context) {
    const std::lock_guard<std::mutex> hold(sink_lock);
    current_sink = sink;
    sink_context = context;
}

void pfwGENTrcPrintf(std::uint32_t destination, std::uint32_t module, std::uint32_t level, const char *format,
                     ...) {
    char line[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    const std::lock_guard<std::mutex> hold(sink_lock);
    if (current_sink != nullptr) {
        current_sink(sink_context, destination, module, level, line);
    }
}

} // extern "C"
