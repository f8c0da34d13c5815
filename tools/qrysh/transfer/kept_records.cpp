// The records, in the platform's own readable form, in a folder of their own.
#include "tools/qrysh/transfer/kept_records.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "platform/host/qryhost.h"

namespace qrysh {

namespace {

void require(int result) {
    if (result != 0) {
        throw std::runtime_error(qryhost_error());
    }
}

} // namespace

kept_records::kept_records(bool needed) {
    if (!needed) {
        return;
    }
    std::string name = (std::filesystem::temp_directory_path() / "qrysh-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    folder_ = name;
    require(qryhost_save(path().c_str()));
}

kept_records::~kept_records() {
    if (!folder_.empty()) {
        qryhost_load(path().c_str());
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
}

void kept_records::put_back() const {
    if (!folder_.empty()) {
        require(qryhost_load(path().c_str()));
    }
}

} // namespace qrysh
