// The library's version and its return codes in words.
#include <cstddef>
#include <cstdint>

#include <qrylib/types.h>
#include <qrylib/version.h>

namespace {

// In ascending order. A code that several functions return for different reasons names each reason.
constexpr struct {
    std::uint32_t code;
    const char *sentence;
} sentences[] = {
    {QRY_LIB_OK, "The call succeeded."},
    {QRY_LIB_NO_MEMORY, "The memory partition could not supply a block."},
    {0x0002, "A device setting could not be read, or the file store answered its code 4."},
    {0x0003, "The file store answered its code 35."},
    {0x0004, "The file store answered its code 36."},
    {0x0005, "The file store answered its code 1."},
    {0x0101, "A file could not be opened, read, written or closed, or a directory not made or removed."},
    {QRY_LIB_BAD_PARAMETER, "An argument is null, or an index or value is out of range."},
    {QRY_LIB_ROWSET_NOT_CREATED, "The result rowset could not be created; memory may have run out."},
    {QRY_LIB_ROWSET_NOT_FILLED, "A value could not be stored into the result rowset."},
    {QRY_LIB_TABLE_ARGUMENT,
     "The element tables refused an argument: category, record, or an operation that the column's type does "
     "not allow."},
    {QRY_LIB_TABLE_ACCESS, "A search of the element tables failed: no memory, or a record was out of reach."},
    {QRY_LIB_NOT_ACCEPTED, "The SQL text or the statement was not accepted; the trace tells where."},
    {QRY_LIB_NO_SUCH_ITEM, "No such item: an index beyond the end, or an UPDATE that matches no row."},
    {QRY_LIB_NO_FREE_ENTRY, "There is no free id in the range, or no free record for the new row."},
    {QRY_LIB_INVALID_ARGUMENT,
     "An argument is null or too long, or names a database, table or column that does not exist."},
    {QRY_LIB_FAILURE, "A step of the call failed for a reason that has no code of its own."},
};

constexpr bool ascending() {
    for (std::size_t i = 1; i < sizeof sentences / sizeof *sentences; ++i) {
        if (sentences[i - 1].code >= sentences[i].code) {
            return false;
        }
    }
    return true;
}
static_assert(ascending(), "every code has one sentence, in ascending order");

} // namespace

extern "C" {

const char *qry_lib_version(void) {
    return QRYLIB_VERSION;
}

const char *qry_lib_code_text(std::uint32_t code) {
    for (const auto &row : sentences) {
        if (row.code == code) {
            return row.sentence;
        }
    }
    return "This is not a code of the library; the platform's own codes are passed on unchanged.";
}

} // extern "C"
