// Fixture files: what loads must come back the same from what it is saved as.
#include <fstream>

#include "fuzz/fuzz_support.h"
#include "platform/host/element_store.h"
#include "platform/host/qryhost.h"

namespace {

void check_round_trip(const std::string &first, const std::string &second) {
    const std::vector<std::uint8_t> loaded = qryhost::current_store()->snapshot();
    fuzz::check(qryhost_save(first.c_str()) == 0, "a store that was loaded is not saved");
    fuzz::check(qryhost_reset() == 0, "the store is not reset");
    fuzz::check(qryhost_load(first.c_str()) == 0,
                std::string("what was saved is refused: ") + qryhost_error());
    fuzz::check(qryhost::current_store()->snapshot() == loaded, "what was saved loads differently");
    fuzz::check(qryhost_save(second.c_str()) == 0, "the store is not saved again");
    fuzz::check(fuzz::content_of(first) == fuzz::content_of(second), "the same store is saved differently");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const fuzz::temporary_folder files;
    static const std::string given = files.file("given.json");
    const fuzz::balanced_memory balanced;
    std::ofstream(given, std::ios::binary)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    const std::vector<std::uint8_t> before = qryhost::current_store()->snapshot();
    if (qryhost_load(given.c_str()) == 0) {
        check_round_trip(files.file("first.json"), files.file("second.json"));
    } else {
        fuzz::check(*qryhost_error() != '\0', "a refusal without a sentence");
        fuzz::check(qryhost::current_store()->snapshot() == before, "a refused fixture changes the store");
    }
    return 0;
}
