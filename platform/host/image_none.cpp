// No device images: in place of what opens and examines them where there are no processes to share one with.
#include "platform/host/control.h"
#include "platform/host/image_file.h"
#include "platform/host/qryhost.h"

namespace qryhost {

namespace {

[[noreturn]] void refuse_image(const std::string &path) {
    throw refusal(path + ": there are no device images on this machine");
}

} // namespace

store_memory open_image(const std::string &path) {
    refuse_image(path);
}

} // namespace qryhost

int qryhost_check(const char *image_path, qryhost_check_sink /*sink*/, void * /*context*/) {
    return qryhost::control([image_path] { qryhost::refuse_image(qryhost::required_path(image_path)); });
}
