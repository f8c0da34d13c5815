// The database-handle service and file access.
#include <atomic>
#include <cstring>

#include "platform/db_handle.h"
#include "platform/file_access.h"
#include "tools/platform_check/checks.h"

namespace platform_check {

namespace {

std::atomic<bool> service_call_runs{false};
std::atomic<bool> called_back_inside{false};

// The library holds its mutex while it calls the service: a callback from inside would wait for ever.
std::uint32_t note_callback(void *) {
    if (service_call_runs) {
        called_back_inside = true;
    }
    return 0;
}

template <typename Call>
auto inside_service(Call call) {
    service_call_runs = true;
    const auto result = call();
    service_call_runs = false;
    return result;
}

std::uint32_t create_handle(report &out) {
    std::int32_t code = -1;
    const std::uint32_t handle = inside_service([&] { return sdb_CreateDBHandle(&code); });
    if (out.succeeds(static_cast<std::uint32_t>(code), "sdb_CreateDBHandle",
                     "a new handle (its stored code)")) {
        out.expect(handle != 0, "sdb_CreateDBHandle",
                   "gives the handle 0, which stands for a thread without a handle.");
    }
    return handle;
}

// The file store's calls on one directory, with the directory's address in one place.
struct directory {
    report &out;
    options where;

    std::uint32_t exists(const char *name) { return fsa_fio_existfile(where.area, where.directory, name); }

    std::uint32_t open(const char *name, std::uint32_t mode, std::uint32_t &file) {
        return fsa_fio_fopen(where.area, where.directory, name, mode, &file);
    }

    bool make() {
        return out.succeeds(fsa_fio_mkdir(where.area, where.directory), "fsa_fio_mkdir",
                            "making directory " + std::to_string(where.directory) + " of area " +
                                std::to_string(where.area) + " (another can be named on the command line)");
    }

    void store(const char *name, const char *text) {
        std::uint32_t file = 0;
        if (!out.succeeds(open(name, 1, file), "fsa_fio_fopen", "opening a new file for writing")) {
            return;
        }
        out.succeeds(fsa_fio_fwrite(file, text, static_cast<std::uint32_t>(std::strlen(text))),
                     "fsa_fio_fwrite", "writing into a new file");
        out.succeeds(fsa_fio_fclose(file), "fsa_fio_fclose", "closing a written file");
    }
};

constexpr std::uint32_t is_there = 0;
constexpr std::uint32_t is_not_there = 5;

void check_reading(directory &in) {
    std::uint32_t file = 0;
    if (!in.out.succeeds(in.open("version", 0, file), "fsa_fio_fopen", "opening a file for reading")) {
        return;
    }
    char text[5] = {};
    if (in.out.succeeds(fsa_fio_fread(file, text, 4), "fsa_fio_fread", "reading the 4 bytes of a file")) {
        in.out.expect(std::strcmp(text, "1234") == 0, "fsa_fio_fread",
                      "reads other bytes than were written.");
    }
    in.out.expect(fsa_fio_fread(file, text, 4) != 0, "fsa_fio_fread",
                  "answers 0 at the end of a file; a short read must fail.");
    in.out.succeeds(fsa_fio_fclose(file), "fsa_fio_fclose", "closing a file after a failed read");
}

void check_overwriting(directory &in) {
    in.store("version", "5678");
    std::uint32_t file = 0;
    if (in.open("version", 0, file) != 0) {
        return;
    }
    char text[5] = {};
    fsa_fio_fread(file, text, 4);
    fsa_fio_fclose(file);
    in.out.expect(std::strcmp(text, "5678") == 0, "fsa_fio_fwrite",
                  "does not write an existing file from its start.");
}

void check_two_open_files(directory &in) {
    in.store("other", "abcd");
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    const bool both = in.open("version", 0, first) == 0 && in.open("other", 0, second) == 0;
    if (in.out.expect(both && first != second, "fsa_fio_fopen", "does not keep two files open at once.")) {
        char text[5] = {};
        fsa_fio_fread(second, text, 4);
        in.out.expect(std::strcmp(text, "abcd") == 0, "fsa_fio_fread",
                      "reads from another file than the one that it was given.");
    }
    fsa_fio_fclose(first);
    fsa_fio_fclose(second);
}

void check_missing_file(directory &in) {
    in.out.expect(in.exists("version") == is_not_there, "fsa_fio_existfile",
                  "does not answer 5 for a file that is not there.");
    std::uint32_t file = 0;
    const std::uint32_t code = in.open("version", 0, file);
    in.out.expect(code != 0, "fsa_fio_fopen", "opens a file for reading that is not there.");
    if (code == 0) {
        fsa_fio_fclose(file);
    }
}

void check_removal(directory &in) {
    in.out.succeeds(fsa_fio_remove(in.where.area, in.where.directory), "fsa_fio_remove",
                    "removing a directory with two files in it");
    in.out.expect(in.exists(nullptr) == is_not_there, "fsa_fio_remove",
                  "leaves the directory there, or fsa_fio_existfile does not answer 5 for it.");
    if (in.make()) {
        in.out.expect(in.exists("version") == is_not_there, "fsa_fio_remove",
                      "leaves files behind: they are back when the directory is made again.");
        fsa_fio_remove(in.where.area, in.where.directory);
    }
}

} // namespace

void check_db_handles(report &out) {
    out.begin("database handles");
    int cell = 0;
    called_back_inside = false;
    for (int round = 0; round < 2; ++round) {
        const std::int32_t code =
            inside_service([&] { return sdb_RegisterDBHandleService(note_callback, &cell); });
        const char *when = round == 0 ? "the first registration" : "a registration after deregistering";
        if (!out.succeeds(static_cast<std::uint32_t>(code), "sdb_RegisterDBHandleService", when)) {
            return;
        }
        const std::uint32_t first = create_handle(out);
        out.expect(first == 0 || first != create_handle(out), "sdb_CreateDBHandle",
                   "gives two requests the same handle.");
        inside_service([] { return sdb_DeregisterDBHandleService(); });
    }
    out.expect(
        !called_back_inside, "sdb_RegisterDBHandleService",
        "or another call of the service calls back before it returns; the library would wait for ever.");
}

void check_files(report &out, const options &where) {
    out.begin("file access");
    directory in{out, where};
    if (!out.expect(in.exists(nullptr) == is_not_there, "fsa_fio_existfile",
                    "does not answer 5 for directory " + std::to_string(where.directory) + " of area " +
                        std::to_string(where.area) +
                        ". If it is really there, name another on the command line: it would be removed.") ||
        !in.make()) {
        return;
    }
    out.expect(in.exists(nullptr) == is_there, "fsa_fio_existfile", "does not answer 0 for a directory.");
    check_missing_file(in);
    in.store("version", "1234");
    out.expect(in.exists("version") == is_there, "fsa_fio_existfile", "does not answer 0 for a file.");
    check_reading(in);
    check_overwriting(in);
    check_two_open_files(in);
    check_removal(in);
}

} // namespace platform_check
