// The control calls over the store as a whole, and the sentence about the last one that failed.
#include "platform/host/control.h"

#include <vector>

#include "platform/host/element_store.h"
#include "platform/host/fixture.h"
#include "platform/host/qryhost.h"

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
        const qryhost::store_use use;
        qryhost::element_store &store = qryhost::required_writable_store();
        store.replace(std::vector<std::uint8_t>(store.layout().bytes()));
    });
}

int qryhost_load(const char *json_path) {
    return qryhost::control([json_path] {
        const qryhost::store_use use;
        qryhost::element_store &store = qryhost::required_writable_store();
        store.replace(qryhost::load_fixture(qryhost::required_path(json_path)));
    });
}

int qryhost_save(const char *json_path) {
    return qryhost::control([json_path] {
        const qryhost::store_use use;
        qryhost::element_store &store = qryhost::required_store();
        qryhost::save_fixture(qryhost::required_path(json_path), store.snapshot());
    });
}

int qryhost_load_text(const char *json) {
    return qryhost::control([json] {
        if (json == nullptr) {
            throw qryhost::refusal("no text is given");
        }
        qryhost::element_store &store = qryhost::required_writable_store();
        store.replace(qryhost::parse_fixture(json));
    });
}

int qryhost_save_text(qryhost_text_sink sink, void *context) {
    return qryhost::control([sink, context] {
        sink(context, qryhost::fixture_text(qryhost::required_store().snapshot()).c_str());
    });
}

const char *qryhost_error(void) {
    return qryhost::last_error();
}

} // extern "C"
