// Fault injection: every platform call asks here first whether it is to fail.
#pragma once

#include <cstdint>

#include "platform/host/qryhost.h"

namespace qryhost {

// Counts one call; the code that it is to fail with, or 0 to go on.
std::uint32_t injected_fault(qryhost_call call);

} // namespace qryhost
