// Snapshots: what is put back is what was read, and a refused one changes nothing.
#include "fuzz/fuzz_support.h"
#include "platform/host/element_store.h"
#include "platform/host/qryhost.h"
#include "tools/field/restore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const fuzz::balanced_memory balanced;
    const std::vector<std::uint8_t> before = qryhost::current_store()->snapshot();
    const std::string text(reinterpret_cast<const char *>(data), size);
    try {
        const field::restore_plan plan = field::plan_restore(field::parse_snapshot(text));
        fuzz::check(qryhost::current_store()->snapshot() == before, "planning changes the store");
        field::carry_out(plan);
    } catch (const std::runtime_error &refused) {
        fuzz::check(*refused.what() != '\0', "a refusal without a sentence");
        fuzz::check(qryhost::current_store()->snapshot() == before, "a refused snapshot changes the store");
        return 0;
    }
    fuzz::check(field::plan_restore(field::parse_snapshot(text)).changes.empty(),
                "what was put back differs from the snapshot");
    return 0;
}
