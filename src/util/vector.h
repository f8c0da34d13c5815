// The vector's growth, reachable for tests. The public operations are in qrylib/vector.h.
#pragma once

#include <cstdint>

#include <qrylib/vector.h>

extern "C" {

// Adds grow_step zero-filled slots. 0; 0x102 for null; 1 without memory, the vector unchanged. Not exported.
std::uint32_t qry_lib_vector_expand_data(qry_lib_vector_ *vector);

} // extern "C"
