// The values of list tables. The lists that a thread opens in one category, before it next moves in a list or
// reads from one, show one moment: a search compares all its conditions with the records as they were
// together.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace qryhost {

class element_store;
struct element_place;

// Stands in front of a list's values.
struct alignas(std::max_align_t) list_values {
    // `joined`: its moment may copy it again. `dropped`: another thread closed it meanwhile, and the moment
    // frees it.
    enum state : std::uint8_t { alone, joined, dropped };

    list_values *previous;
    list_values *next;
    const element_place *place;
    std::uint32_t owner; // the number of the thread that opened it
    std::uint32_t record_num;
    std::atomic<state> now;

    std::uint8_t *bytes() { return reinterpret_cast<std::uint8_t *>(this + 1); }
    static list_values *of(std::uint8_t *bytes) { return reinterpret_cast<list_values *>(bytes) - 1; }
};

// A thread's newest moment.
class list_moment {
  public:
    // The number of its thread, which no other thread has or had.
    explicit list_moment(std::uint32_t owner) : owner_(owner) {}
    list_moment(const list_moment &) = delete;
    list_moment &operator=(const list_moment &) = delete;
    ~list_moment() { end(); }

    // Copies the values of records 1 to `record_num`. `moves` has another value when the thread has moved or
    // read since the last list was opened. Throws `refusal` and bad_alloc.
    std::uint8_t *open(element_store &store, const element_place &place, std::uint32_t record_num,
                       std::uint32_t moves);

    // Frees the values of a list, whichever thread opened it; answers that thread's number.
    std::uint32_t close(std::uint8_t *bytes);

  private:
    void end();
    void join(list_values *values);
    void copy_again(element_store &store, list_values &newest);

    std::uint32_t owner_;
    list_values *first_ = nullptr;
    std::uint32_t category_ = 0; // by its position
    std::uint32_t sequence_ = 0; // the category's, at the moment
    std::uint32_t moves_ = 0;
};

} // namespace qryhost
