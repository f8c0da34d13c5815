// operator new of the whole program, with requests that can be refused one by one.
#pragma once

#include <cstdint>

namespace fault {

// Lets `skip` requests through and refuses the next `times`; starts the count anew. A request that may not
// throw is answered with null.
void refuse_new(std::uint32_t skip, std::uint32_t times);

// Ends the refusals; requests are counted no longer.
void allow_new();

// Requests since refuse_new, and whether one that may not throw was among the refused.
std::uint32_t new_requests();
bool quiet_request_refused();

// Blocks of operator new now in use.
std::int32_t new_in_use();

} // namespace fault
