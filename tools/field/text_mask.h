// Secrets in the texts of statements.
#pragma once

#include <cstddef>

#include "tools/field/masking.h"

namespace field {

// Masks in place what a statement or one of its phrases compares a secret column with. A text that names such
// a column otherwise than in a list of columns or in a condition that can be read is masked from there to its
// end. True when anything was masked.
bool mask_text(const masking &masks, char *text, std::size_t length);

} // namespace field
