// Which search for the fault a code asks for.
#include "tools/qrysh/diagnosis.h"

#include <qrylib/types.h>

namespace qrysh {

std::optional<finding> diagnose(const std::string &db_name, const std::string &sql, std::uint32_t code,
                                const std::deque<std::string> &traces) {
    if (code == QRY_LIB_NOT_ACCEPTED) {
        if (std::optional<finding> place = find_refused_place(sql, traces)) {
            return place;
        }
    }
    // A join is refused as not accepted where its names are at fault.
    const bool may_be_a_name =
        code == QRY_LIB_NOT_ACCEPTED || code == QRY_LIB_INVALID_ARGUMENT || code == QRY_LIB_TABLE_ARGUMENT;
    return may_be_a_name ? find_unknown_name(db_name, sql) : std::nullopt;
}

} // namespace qrysh
