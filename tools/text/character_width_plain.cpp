// Character widths without libutf8proc: two columns for the blocks of East Asian scripts, one for all else.
#include "tools/text/text.h"

namespace qrytext {

namespace {

struct block {
    char32_t first;
    char32_t last;
};

constexpr block wide_blocks[] = {{0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF},
                                 {0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},
                                 {0xFF01, 0xFF60}, {0xFFE0, 0xFFE6}, {0x20000, 0x3FFFD}};

} // namespace

std::size_t character_width(char32_t code_point) {
    for (const block &wide : wide_blocks) {
        if (code_point >= wide.first && code_point <= wide.last) {
            return 2;
        }
    }
    return 1;
}

} // namespace qrytext
