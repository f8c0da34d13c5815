// Trace lines over the platform trace.
#include "util/trace.h"

#include "platform/trace.h"

namespace norvane {

namespace {

constexpr std::uint32_t trace_destination = 0;
constexpr std::uint32_t trace_module = 258;
constexpr std::uint32_t trace_level = 2;

} // namespace

std::uint32_t trace_return(const char *function, int line, std::uint32_t code) {
    pfwGENTrcPrintf(trace_destination, trace_module, trace_level, "%s():[Return]:(%d) (0x%08lX)\n", function,
                    line, static_cast<unsigned long>(code));
    return code;
}

void trace_enter(const char *function, int line) {
    pfwGENTrcPrintf(trace_destination, trace_module, trace_level, "%s():[Enter]:(%d) \n", function, line);
}

void trace_leave(const char *function, int line) {
    pfwGENTrcPrintf(trace_destination, trace_module, trace_level, "%s():[Return]:(%d) \n", function, line);
}

} // namespace norvane
