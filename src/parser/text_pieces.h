// The pieces of a text between the occurrences of a keyword.
#pragma once

#include <string_view>

namespace norvane {

// Reads the pieces one by one, from left to right, where the text stands: N occurrences make N + 1 pieces,
// empty ones included. The text must stay as it is meanwhile.
class text_pieces {
  public:
    text_pieces(std::string_view text, std::string_view keyword) : rest_(text), keyword_(keyword) {}

    // False behind the last piece.
    bool next(std::string_view &piece) {
        if (at_end_) {
            return false;
        }
        const std::size_t at = rest_.find(keyword_);
        at_end_ = at == std::string_view::npos;
        piece = rest_.substr(0, at);
        rest_.remove_prefix(at_end_ ? rest_.size() : at + keyword_.size());
        return true;
    }

    bool at_end() const { return at_end_; }

  private:
    std::string_view rest_; // behind the pieces read
    std::string_view keyword_;
    bool at_end_ = false;
};

} // namespace norvane
