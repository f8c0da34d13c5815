// Device images: files of any bytes, and valid ones with anything in their header, their locks, their writes
// in progress and their values. Exactly those of this build open, and none is changed by being refused or
// examined.
#include <cstring>
#include <fstream>

#include "fuzz/fuzz_support.h"
#include "platform/host/qryhost.h"
#include "platform/host/store_memory.h"

namespace {

using fuzz::check;
using fuzz::input;
using qryhost::image_header;
using qryhost::memory_shape;
using qryhost::store_layout;
using qryhost::value_guard;

std::string make_image(const std::string &path) {
    check(qryhost_open(path.c_str()) == 0, "no image is created");
    fuzz::restore_store();
    qryhost_close();
    return fuzz::content_of(path);
}

void overwrite(std::string &bytes, std::size_t at, const void *patch, std::size_t size) {
    if (at < bytes.size()) {
        std::memcpy(&bytes[at], patch, std::min(size, bytes.size() - at));
    }
}

// What a process that died in the middle of a write leaves: mostly possible, often not.
void leave_write(input &in, std::string &bytes) {
    const store_layout &layout = store_layout::get();
    const auto category = in.ConsumeIntegralInRange<std::size_t>(0, layout.categories().size() - 1);
    const auto element = in.ConsumeIntegralInRange<std::size_t>(0, layout.elements().size() - 1);
    const qryhost::element_place &place = layout.elements()[element];
    const auto number = [&](std::uint32_t likely) {
        return in.ConsumeIntegralInRange<int>(0, 3) != 0 ? likely : in.ConsumeIntegral<std::uint32_t>();
    };
    const std::uint32_t fields[] = {number(1),
                                    in.ConsumeIntegralInRange<std::uint32_t>(0, 3),
                                    number(static_cast<std::uint32_t>(
                                        place.value_offset(in.ConsumeIntegralInRange<std::uint32_t>(0, 6)))),
                                    number(place.size),
                                    number(1),
                                    number(6)};
    const std::size_t lock = in.ConsumeBool() ? place.lock : category;
    const std::size_t guard = sizeof(image_header) + lock * memory_shape::get().guard_stride;
    overwrite(bytes, guard + offsetof(value_guard, sequence), fields, sizeof fields);
}

std::string damaged(input &in, std::string bytes) {
    while (in.remaining_bytes() > 0) {
        const std::string patch = in.ConsumeRandomLengthString(16);
        switch (in.ConsumeIntegralInRange<int>(0, 15)) {
        case 0:
            bytes.resize(in.ConsumeIntegralInRange<std::size_t>(0, bytes.size() + 100));
            break;
        case 1:
            overwrite(bytes, in.ConsumeIntegralInRange<std::size_t>(0, sizeof(image_header)), patch.data(),
                      patch.size());
            break;
        case 2:
        case 3:
        case 4:
            overwrite(bytes, in.ConsumeIntegralInRange<std::size_t>(0, bytes.size()), patch.data(),
                      patch.size());
            break;
        default:
            leave_write(in, bytes);
        }
    }
    return bytes;
}

void use_store(const std::string &choice) {
    const fuzz::table_name &table = fuzz::tables()[choice.size() % fuzz::tables().size()];
    qry_lib_db_stmt_ stmt;
    qry_lib_db_get_stmt(table.database, &stmt);
    qry_lib_db_rowset_ rowset{};
    const std::string column = table.columns.front();
    const std::string sql = "SELECT " + column + " FROM " + table.table + " ORDER BY " + column;
    const std::uint32_t code = qry_lib_db_exec_query(&stmt, sql.c_str(), &rowset);
    check(code == 0, "a SELECT fails on an image that opened");
    fuzz::read_and_release(code, rowset);
    check(qry_lib_db_exec(&stmt, ("DROP TABLE " + table.table).c_str()) == 0,
          "a DROP fails on an image that opened");
}

void note_write_in_progress(void *context, int, const char *text) {
    if (std::strstr(text, "a write in progress") != nullptr) {
        *static_cast<bool *>(context) = true;
    }
}

void check_image(const std::string &path, const std::string &bytes, const std::string &valid) {
    bool is_senseless = false;
    const int examined = qryhost_check(path.c_str(), note_write_in_progress, &is_senseless);
    check(fuzz::content_of(path) == bytes, "an image is changed by being examined");
    const bool is_own = bytes.size() == valid.size() &&
                        bytes.compare(0, sizeof(image_header), valid, 0, sizeof(image_header)) == 0;
    const bool opened = qryhost_open(path.c_str()) == 0;
    check(opened == (is_own && !is_senseless),
          std::string("an image opens that must not, or the reverse: ") + qryhost_error());
    check(opened || (examined != 0 && fuzz::content_of(path) == bytes),
          "a refused image is changed, or found sound");
    if (opened) {
        use_store(bytes);
        qryhost_close();
        qryhost_check(path.c_str(), note_write_in_progress, &is_senseless);
        check(!is_senseless, "an image that was used has a senseless write in progress");
    }
    qryhost_close();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const fuzz::temporary_folder files;
    static const std::string path = files.file("device.image");
    static const std::string valid = make_image(files.file("valid.image"));
    const fuzz::balanced_memory balanced;
    input in(data, size);
    const std::string bytes =
        in.ConsumeIntegralInRange<int>(0, 15) == 0 ? in.ConsumeRemainingBytesAsString() : damaged(in, valid);
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    check_image(path, bytes, valid);
    return 0;
}
