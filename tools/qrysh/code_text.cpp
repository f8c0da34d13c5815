// The names that types.h gives the codes, and the library's sentences.
#include "tools/qrysh/code_text.h"

#include <qrylib/types.h>
#include <qrylib/version.h>

#include <fmt/format.h>

namespace qrysh {

namespace {

struct code_row {
    std::uint32_t code;
    std::string_view name;
};

constexpr code_row code_names[] = {{QRY_LIB_OK, "QRY_LIB_OK"},
                                   {QRY_LIB_NO_MEMORY, "QRY_LIB_NO_MEMORY"},
                                   {QRY_LIB_BAD_PARAMETER, "QRY_LIB_BAD_PARAMETER"},
                                   {QRY_LIB_ROWSET_NOT_CREATED, "QRY_LIB_ROWSET_NOT_CREATED"},
                                   {QRY_LIB_ROWSET_NOT_FILLED, "QRY_LIB_ROWSET_NOT_FILLED"},
                                   {QRY_LIB_TABLE_ARGUMENT, "QRY_LIB_TABLE_ARGUMENT"},
                                   {QRY_LIB_TABLE_ACCESS, "QRY_LIB_TABLE_ACCESS"},
                                   {QRY_LIB_NOT_ACCEPTED, "QRY_LIB_NOT_ACCEPTED"},
                                   {QRY_LIB_NO_SUCH_ITEM, "QRY_LIB_NO_SUCH_ITEM"},
                                   {QRY_LIB_NO_FREE_ENTRY, "QRY_LIB_NO_FREE_ENTRY"},
                                   {QRY_LIB_INVALID_ARGUMENT, "QRY_LIB_INVALID_ARGUMENT"},
                                   {QRY_LIB_FAILURE, "QRY_LIB_FAILURE"}};

} // namespace

std::string_view code_name(std::uint32_t code) {
    for (const code_row &row : code_names) {
        if (row.code == code) {
            return row.name;
        }
    }
    return {};
}

std::string describe_code(std::uint32_t code) {
    const std::string_view name = code_name(code);
    return name.empty() ? fmt::format("code 0x{:04X}: {}", code, qry_lib_code_text(code))
                        : fmt::format("{} (0x{:04X}): {}", name, code, qry_lib_code_text(code));
}

} // namespace qrysh
