// Words of other dialects, and what stands for them in this one.
#pragma once

#include <string>
#include <string_view>

namespace qrytext {

// What to write instead of the first word in the text that this dialect lacks or writes in capitals; empty
// where there is none. "there is no LIMIT: ...", "keywords are upper case", for example.
std::string advice_for(std::string_view text);

} // namespace qrytext
