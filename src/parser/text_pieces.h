// The pieces of a text between the occurrences of a keyword.
#pragma once

#include <cstring>
#include <string_view>

namespace norvane {

// Reads the pieces one by one, from left to right, where the text stands: N occurrences make N + 1 pieces,
// empty ones included. The text must stay as it is meanwhile.
class text_pieces {
  public:
    text_pieces(const char *text, const char *keyword)
        : rest_(text), keyword_(keyword), keyword_length_(std::strlen(keyword)) {}

    // False behind the last piece.
    bool next(std::string_view &piece) {
        if (rest_ == nullptr) {
            return false;
        }
        const char *at = std::strstr(rest_, keyword_);
        piece = at == nullptr ? std::string_view(rest_)
                              : std::string_view(rest_, static_cast<std::size_t>(at - rest_));
        rest_ = at == nullptr ? nullptr : at + keyword_length_;
        return true;
    }

    bool at_end() const { return rest_ == nullptr; }

  private:
    const char *rest_; // null behind the last piece
    const char *keyword_;
    std::size_t keyword_length_;
};

} // namespace norvane
