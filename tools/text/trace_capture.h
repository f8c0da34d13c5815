// The process's trace sink, taken for the length of one call.
#pragma once

#include <cstdint>
#include <mutex>
#include <thread>

#include "platform/host/qryhost.h"
#include "tools/text/kept_traces.h"

namespace qrytext {

// Keeps the lines of its own thread, and hands all lines but those of paused look-ups on to the sink that was
// set before, which it gives back at its end. Waits for another one in the process.
class trace_capture : public kept_traces {
  public:
    trace_capture();
    ~trace_capture();
    trace_capture(const trace_capture &) = delete;
    trace_capture &operator=(const trace_capture &) = delete;

  private:
    static void receive(void *context, std::uint32_t destination, std::uint32_t module, std::uint32_t level,
                        const char *text);

    std::lock_guard<std::mutex> turn_;
    std::thread::id thread_;
    qryhost_trace_sink former_ = nullptr;
    void *former_context_ = nullptr;
};

} // namespace qrytext
