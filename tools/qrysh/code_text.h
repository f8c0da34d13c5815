// Return codes in words.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qrysh {

// "QRY_LIB_NOT_ACCEPTED (0xDB00): sentence"; a code of the platform has no name, only its number.
std::string describe_code(std::uint32_t code);

// "QRY_LIB_NOT_ACCEPTED"; empty for a code of the platform.
std::string_view code_name(std::uint32_t code);

} // namespace qrysh
