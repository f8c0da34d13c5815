// The code's name, its number and the library's sentence.
#include "tools/text/code_text.h"

#include <qrylib/error.hpp>

#include <fmt/format.h>

namespace qrytext {

std::string code_and_name(std::uint32_t code) {
    const std::string name = qrylib::code_name(code);
    return name.empty() ? fmt::format("code 0x{:04X}", code) : fmt::format("{} (0x{:04X})", name, code);
}

std::string describe_code(std::uint32_t code) {
    return fmt::format("{}: {}", code_and_name(code), qry_lib_code_text(code));
}

} // namespace qrytext
