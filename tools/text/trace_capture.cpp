// Taking the sink and giving it back.
#include "tools/text/trace_capture.h"

namespace qrytext {

namespace {

// There is one sink in a process, so one capture at a time. Nothing else is kept between calls.
std::mutex one_capture;

} // namespace

trace_capture::trace_capture() : turn_(one_capture), thread_(std::this_thread::get_id()) {
    qryhost_get_trace_sink(&former_, &former_context_);
    qryhost_set_trace_sink(receive, this);
}

trace_capture::~trace_capture() {
    qryhost_set_trace_sink(former_, former_context_);
}

void trace_capture::receive(void *context, std::uint32_t destination, std::uint32_t module,
                            std::uint32_t level, const char *text) {
    auto &capture = *static_cast<trace_capture *>(context);
    const bool is_own = std::this_thread::get_id() == capture.thread_;
    const bool is_wanted = !is_own || capture.keep(text);
    if (is_wanted && capture.former_ != nullptr) {
        capture.former_(capture.former_context_, destination, module, level, text);
    }
}

} // namespace qrytext
