// Return codes in words.
#pragma once

#include <cstdint>
#include <string>

namespace qrytext {

// "QRY_LIB_NOT_ACCEPTED (0xDB00): sentence"; a code of the platform has no name, only its number.
std::string describe_code(std::uint32_t code);

// Without the sentence.
std::string code_and_name(std::uint32_t code);

} // namespace qrytext
