// Words of other dialects, and what stands for them in this one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/text/finding.h"

namespace qrytext {

// What to write instead of the first word in the text that this dialect lacks or writes in capitals; empty
// where there is none. "there is no LIMIT: ...", "keywords are upper case", for example.
std::string advice_for(std::string_view text);

// The first such word outside quotes, for a statement that was refused.
std::optional<finding> find_foreign_word(std::string_view sql);

// What is there instead of a statement that begins with this word; empty for a word that no statement begins
// with.
std::string advice_for_verb(const std::string &word);

} // namespace qrytext
