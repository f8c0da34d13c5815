// The generic vector: a header block and a storage block of the memory partition, growing linearly.
#include "util/vector.h"

#include <algorithm>
#include <cstring>

#include "util/pool_block.h"
#include "util/trace.h"

using norvane::pool_block;
using norvane::trace_return;

namespace {

constexpr std::uint32_t least_capacity = 10;

// Where slot `index` starts; index 0 to capacity.
std::uint8_t *slot(const qry_lib_vector_ *vector, std::uint32_t index) {
    return static_cast<std::uint8_t *>(vector->data) + static_cast<std::size_t>(index) * vector->elem_size;
}

// Takes zero-filled room for `slots` elements. A capacity beyond 32 bits is refused even where the elements
// are of no size.
std::uint32_t take_slots(pool_block &storage, std::uint64_t slots, std::uint32_t elem_size) {
    if (slots > UINT32_MAX) {
        return QRY_LIB_NO_MEMORY;
    }
    return storage.take_zeroed(slots * elem_size);
}

// Adds one step of slots. The storage that it replaces goes to `retired`, so that the caller's element, which
// may lie in it, outlives the move.
std::uint32_t expand(qry_lib_vector_ *vector, pool_block &retired) {
    const std::uint64_t slots = std::uint64_t{vector->capacity} + vector->grow_step;
    pool_block storage;
    if (const std::uint32_t code = take_slots(storage, slots, vector->elem_size); code != 0) {
        trace_return("qry_lib_vector_expand_data", __LINE__, code);
        return QRY_LIB_NO_MEMORY;
    }
    std::memcpy(storage.as<void>(), vector->data,
                static_cast<std::size_t>(vector->capacity) * vector->elem_size);
    retired = pool_block(vector->data);
    vector->data = storage.release();
    vector->capacity = static_cast<std::uint32_t>(slots);
    return 0;
}

// Sees to it that the slot behind the last element exists.
std::uint32_t make_room(qry_lib_vector_ *vector, pool_block &retired) {
    return vector->count == vector->capacity ? expand(vector, retired) : 0;
}

} // namespace

extern "C" {

std::uint32_t qry_lib_vector_init(std::uint32_t elem_size, std::uint32_t capacity, qry_lib_vector_ **vector) {
    if (vector == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    const std::uint32_t slots = std::max(capacity, least_capacity);
    pool_block header;
    if (const std::uint32_t code = header.take_zeroed(sizeof(qry_lib_vector_)); code != 0) {
        trace_return(__func__, __LINE__, code);
        return QRY_LIB_NO_MEMORY;
    }
    pool_block storage;
    if (const std::uint32_t code = take_slots(storage, slots, elem_size); code != 0) {
        trace_return(__func__, __LINE__, code);
        return QRY_LIB_NO_MEMORY;
    }
    auto *fresh = static_cast<qry_lib_vector_ *>(header.release());
    fresh->data = storage.release();
    fresh->capacity = slots;
    fresh->grow_step = slots;
    fresh->elem_size = elem_size;
    *vector = fresh;
    return 0;
}

std::uint32_t qry_lib_vector_free(qry_lib_vector_ *vector) {
    if (vector == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    const pool_block header(vector);
    const pool_block storage(vector->data);
    return 0;
}

std::uint32_t qry_lib_vector_expand_data(qry_lib_vector_ *vector) {
    if (vector == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    pool_block retired;
    return expand(vector, retired);
}

std::uint32_t qry_lib_vector_add_data(qry_lib_vector_ *vector, const void *element) {
    if (vector == nullptr || element == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    pool_block retired;
    if (const std::uint32_t code = make_room(vector, retired); code != 0) {
        return trace_return(__func__, __LINE__, code);
    }
    std::memmove(slot(vector, vector->count), element, vector->elem_size);
    ++vector->count;
    return 0;
}

std::uint32_t qry_lib_vector_set_data(qry_lib_vector_ *vector, std::uint32_t index, const void *element) {
    if (vector == nullptr || element == nullptr || index >= vector->count) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    std::memmove(slot(vector, index), element, vector->elem_size);
    return 0;
}

std::uint32_t qry_lib_vector_get_data(qry_lib_vector_ *vector, std::uint32_t index, void *buffer) {
    if (vector == nullptr || buffer == nullptr || index >= vector->count) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    std::memmove(buffer, slot(vector, index), vector->elem_size);
    return 0;
}

std::uint32_t qry_lib_vector_pull_data(qry_lib_vector_ *vector, std::uint32_t index) {
    if (vector == nullptr || index >= vector->count) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    const std::size_t behind = vector->count - index - 1;
    std::memmove(slot(vector, index), slot(vector, index + 1), behind * vector->elem_size);
    --vector->count;
    return 0;
}

std::uint32_t qry_lib_vector_swap_data(qry_lib_vector_ *vector, std::uint32_t a, std::uint32_t b) {
    if (vector == nullptr || a >= vector->count || b >= vector->count) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    if (a == b) {
        return 0;
    }
    pool_block retired;
    if (const std::uint32_t code = make_room(vector, retired); code != 0) {
        return trace_return(__func__, __LINE__, code);
    }
    std::uint8_t *scratch = slot(vector, vector->count);
    std::memcpy(scratch, slot(vector, a), vector->elem_size);
    std::memcpy(slot(vector, a), slot(vector, b), vector->elem_size);
    std::memcpy(slot(vector, b), scratch, vector->elem_size);
    return 0;
}

std::uint32_t qry_lib_vector_get_data_num(qry_lib_vector_ *vector, std::uint32_t *count) {
    if (vector == nullptr || count == nullptr) {
        return trace_return(__func__, __LINE__, QRY_LIB_BAD_PARAMETER);
    }
    *count = vector->count;
    return 0;
}

} // extern "C"
