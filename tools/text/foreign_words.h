// Words of other dialects, and what stands for them in this one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tools/text/finding.h"

namespace qrytext {

// What is wrong with a word, and what to write instead.
struct advice {
    std::string sentence; // "there is no LIMIT"
    std::string hint;     // "write a narrower condition"
};

// Of the first word in the text that this dialect lacks or writes in capitals.
std::optional<advice> advice_for(std::string_view text);

// The same in one sentence; empty where there is no such word.
std::string sentence_for(std::string_view text);

// The first such word outside quotes, for a statement that was refused.
std::optional<finding> find_foreign_word(std::string_view sql);

// What is there instead of a statement that begins with this word, if any statement does.
std::optional<advice> advice_for_verb(const std::string &word);

// What is written in lower case, and is a keyword in capitals.
advice write_in_capitals(std::string_view keyword);

} // namespace qrytext
