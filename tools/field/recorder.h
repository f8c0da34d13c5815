// The recorder of this process: what its interposed functions share.
#pragma once

#include <cerrno>
#include <cstdint>

#include "tools/field/frame_writer.h"
#include "tools/field/functions.h"
#include "tools/field/masking.h"
#include "tools/field/ring.h"

namespace field {

// The next definition of a function behind this library's own. Null where a program has none.
void *find_behind_us(const char *name);

template <typename Function>
class next_function {
  public:
    constexpr explicit next_function(const char *name) noexcept : name_(name) {}

    Function *get() {
        Function *const known = __atomic_load_n(&known_, __ATOMIC_RELAXED);
        return known != nullptr ? known : find();
    }

  private:
    Function *find() {
        void *const found = find_behind_us(name_);
        __atomic_store_n(&known_, reinterpret_cast<Function *>(found), __ATOMIC_RELAXED);
        return reinterpret_cast<Function *>(found);
    }

    const char *name_;
    Function *known_ = nullptr;
};

// What the caller finds in errno is the platform's, not ours.
class kept_errno {
  public:
    kept_errno() = default;
    kept_errno(const kept_errno &) = delete;
    kept_errno &operator=(const kept_errno &) = delete;
    ~kept_errno() { errno = value_; }

  private:
    int value_ = errno;
};

// A list table that is open in a thread.
struct open_list {
    const void *list;
    std::uint16_t number;
    std::uint16_t size; // of a value; 0: not known
    std::uint32_t category;
    std::uint32_t element;
    bool is_secret;
};

// What a thread is about. Trivial, so that the first use of a thread costs nothing.
struct thread_state {
    static constexpr std::uint32_t list_num = 32;

    std::uint16_t number;       // 0: not numbered yet
    std::uint16_t calls;        // of the library, one inside the other; only the outermost is recorded
    std::uint16_t lists;        // that were opened in this call
    std::uint16_t position;     // of a list that was moved and not read yet
    std::uint16_t moved_number; // of that list
    const void *moved;          // null: none
    std::uint32_t moves;        // list calls that were only counted
    std::uint32_t reads;
    bool is_last; // the recording stops with this call
    open_list open[list_num];

    // A frame of values that lists were moved to and read, as yet unwritten: nothing else happened since.
    std::uint16_t pairs_size; // bytes behind the room for the frame's head; 0: none
    alignas(4) std::uint8_t pairs[1200];
};

extern thread_local thread_state thread;

class recorder {
  public:
    static recorder &get();

    // Whether the platform's calls of this thread are recorded.
    static bool is_on() { return is_active && thread.calls != 0; }
    static bool has_values() { return keeps_values; }

    // Of the process: read from the environment once.
    static bool is_active;
    static bool keeps_values;

    void write(frame_writer &frame, frame_kind kind);
    // A value that a list was moved to and read; it is written with those that follow.
    void add_pair(std::uint16_t list, std::uint16_t position, const void *value, std::uint16_t size);
    void count_dropped() { ring_.count_dropped(); }
    // A code that was traced or returned, or a line that was traced.
    void look_at(std::uint32_t code, std::int32_t line);
    void end_call();

    bool keeps_secrets() const { return keeps_secrets_; }
    const masking &masks() const { return masks_; }

    // A buffer of `frame_size_max` bytes for large frames of this thread; null when there is no memory.
    static std::uint8_t *large_buffer();

    void start();
    void start_in_child();

  private:
    bool read_environment(const char *text);
    bool read_option(const char *text, std::size_t length);
    void open_file();
    void write_pairs();
    void write_move();

    ring ring_;
    masking masks_;
    bool keeps_secrets_ = false;
    bool has_process_in_name_ = false;
    bool is_child_ = false;
    std::uint32_t ring_size_ = 1024 * 1024;
    std::int64_t stop_code_ = -1;
    std::int64_t stop_line_ = -1;
    const char *(*version_)() = nullptr;
    char pattern_[1024] = "";
};

// A small frame on the stack, written at its end.
template <std::uint32_t Size = 1200>
class small_frame : public frame_writer {
  public:
    // Its bytes are written before they are read.
    // cppcheck-suppress uninitMemberVar
    explicit small_frame(frame_kind kind) : frame_writer(bytes_, sizeof bytes_), kind_(kind) {}
    small_frame(const small_frame &) = delete;
    small_frame &operator=(const small_frame &) = delete;
    ~small_frame() { recorder::get().write(*this, kind_); }

  private:
    kept_errno kept_;
    frame_kind kind_;
    alignas(4) std::uint8_t bytes_[Size];
};

} // namespace field
