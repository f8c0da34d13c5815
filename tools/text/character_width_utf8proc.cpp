// Character widths from libutf8proc.
#include <utf8proc.h>

#include "tools/text/text.h"

namespace qrytext {

std::size_t character_width(char32_t code_point) {
    const int width = utf8proc_charwidth(static_cast<utf8proc_int32_t>(code_point));
    return width < 0 ? 0 : static_cast<std::size_t>(width);
}

} // namespace qrytext
