// A growing list of large records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace norvane {

// Grows by chunks of at most ChunkSize entries. Entries of a full chunk never move, and room is made for no
// more than one chunk ahead: what a list takes follows from what it holds, not from what it was said to get.
// A value type. References last until the next entry is added.
template <typename T, std::size_t ChunkSize>
class chunked_list {
  public:
    // How many entries there will be, as far as is known: a chunk that grows makes room for those among them
    // that fall into it at once.
    void expect(std::size_t num) { expected_ = std::max(expected_, num); }

    template <typename... Args>
    T &emplace_back(Args &&...args) {
        return chunk_with_room().emplace_back(std::forward<Args>(args)...);
    }

    std::size_t size() const {
        return more_.empty() ? first_.size() : more_.size() * ChunkSize + more_.back().size();
    }
    const T &operator[](std::size_t index) const {
        return index < ChunkSize ? first_[index] : more_[index / ChunkSize - 1][index % ChunkSize];
    }

  private:
    std::vector<T> &chunk_with_room() {
        std::vector<T> *last = more_.empty() ? &first_ : &more_.back();
        if (last->size() == ChunkSize) {
            last = &more_.emplace_back();
        }
        if (last->size() == last->capacity()) {
            const std::size_t begin = more_.size() * ChunkSize;
            const std::size_t announced = expected_ > begin ? expected_ - begin : 1;
            last->reserve(std::min(ChunkSize, std::max(announced, 2 * last->capacity())));
        }
        return *last;
    }

    std::vector<T> first_; // most lists never need another
    std::vector<std::vector<T>> more_;
    std::size_t expected_ = 0;
};

} // namespace norvane
