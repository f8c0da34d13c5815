// The library's trace lines of the statement that is running, printed as they come when asked to.
#pragma once

#include <cstdint>

#include "tools/text/kept_traces.h"

namespace qrysh {

// Receives every trace line while it lives. One at a time. Where QRYLIB_TRACE sends the traces elsewhere it
// leaves them there until printing is on.
class trace_log : public qrytext::kept_traces {
  public:
    trace_log();
    ~trace_log();
    trace_log(const trace_log &) = delete;
    trace_log &operator=(const trace_log &) = delete;

    void set_printing(bool on);
    bool is_printing() const { return printing_; }

  private:
    static void receive(void *context, std::uint32_t destination, std::uint32_t module, std::uint32_t level,
                        const char *text);

    bool printing_ = false;
};

} // namespace qrysh
