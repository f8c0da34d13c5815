// The control calls over the store as a whole, and the sentence about the last one that failed.
#include "platform/host/control.h"

#include <cstdio>
#include <vector>

#include "platform/host/element_store.h"
#include "platform/host/fixture.h"
#include "platform/host/qryhost.h"

namespace qryhost {

namespace {

// A fixed array: telling that memory ran out takes none.
thread_local char error_sentence[1024] = "";

} // namespace

const char *required_path(const char *path) {
    if (path == nullptr || *path == '\0') {
        throw refusal("no file is named");
    }
    return path;
}

void set_error(const char *sentence) noexcept {
    static_cast<void>(std::snprintf(error_sentence, sizeof error_sentence, "%s", sentence));
}

element_store &required_store() {
    element_store *store = current_store();
    if (store == nullptr) {
        throw refusal(std::string(error_sentence));
    }
    return *store;
}

element_store &required_writable_store() {
    element_store &store = required_store();
    if (store.is_read_only()) {
        throw refusal("the device image can only be read");
    }
    return store;
}

} // namespace qryhost

extern "C" {

int qryhost_open(const char *image_path) {
    return qryhost::control([image_path] {
        qryhost::open_store(image_path != nullptr ? qryhost::required_path(image_path) : nullptr);
    });
}

int qryhost_close(void) {
    return qryhost::control([] { qryhost::close_store(); });
}

int qryhost_reset(void) {
    return qryhost::control([] {
        qryhost::element_store &store = qryhost::required_writable_store();
        store.replace(std::vector<std::uint8_t>(store.layout().bytes()));
    });
}

int qryhost_load(const char *json_path) {
    return qryhost::control([json_path] {
        qryhost::element_store &store = qryhost::required_writable_store();
        store.replace(qryhost::load_fixture(qryhost::required_path(json_path)));
    });
}

int qryhost_save(const char *json_path) {
    return qryhost::control([json_path] {
        qryhost::element_store &store = qryhost::required_store();
        qryhost::save_fixture(qryhost::required_path(json_path), store.snapshot());
    });
}

const char *qryhost_error(void) {
    return qryhost::error_sentence;
}

} // extern "C"
