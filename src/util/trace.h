// The library's trace lines. A return trace is an interface: service people search logs for its numbers, so a
// fixed point is a literal number at the place that detects the failure and stays when the file is edited.
#pragma once

#include <cstdint>

#include <qrylib/types.h>

namespace norvane {

// Writes "function():[Return]:(line) (code)" and hands the code back.
std::uint32_t trace_return(const char *function, int line, std::uint32_t code);

// A text or statement is not accepted.
inline std::uint32_t refuse(const char *function, int line) {
    return trace_return(function, line, QRY_LIB_NOT_ACCEPTED);
}

// The same with code 0 in the line, as service people know some points.
inline std::uint32_t refuse_showing_0(const char *function, int line) {
    trace_return(function, line, QRY_LIB_OK);
    return QRY_LIB_NOT_ACCEPTED;
}

// trace_return for the classes whose operations answer an int.
inline int trace_code(const char *function, int line, int code) {
    return static_cast<int>(trace_return(function, line, static_cast<std::uint32_t>(code)));
}

// Write the entry and the exit line of a function that reports no code.
void trace_enter(const char *function, int line);
void trace_leave(const char *function, int line);

} // namespace norvane
