// The control calls that open, close and reset the store, and the sentence about the last call that failed.
#include "platform/host/control.h"

#include <cstdio>
#include <vector>

#include "platform/host/element_store.h"
#include "platform/host/qryhost.h"

namespace qryhost {

namespace {

// A fixed array: telling that memory ran out takes none.
thread_local char error_sentence[1024] = "";

} // namespace

void set_error(const char *sentence) noexcept {
    std::snprintf(error_sentence, sizeof error_sentence, "%s", sentence);
}

element_store &required_store() {
    element_store *store = current_store();
    if (store == nullptr) {
        throw refusal(std::string(error_sentence));
    }
    return *store;
}

} // namespace qryhost

extern "C" {

int qryhost_open(const char *image_path) {
    return qryhost::control([image_path] { qryhost::open_store(image_path); });
}

int qryhost_close(void) {
    return qryhost::control([] { qryhost::close_store(); });
}

int qryhost_reset(void) {
    return qryhost::control([] {
        qryhost::element_store &store = qryhost::required_store();
        store.replace(std::vector<std::uint8_t>(store.layout().bytes()));
    });
}

const char *qryhost_error(void) {
    return qryhost::error_sentence;
}

} // extern "C"
