// The roomy device, which is a program of its own: the capacities are compiled into it.
#pragma once

namespace qrysh {

// Becomes qrysh-roomy, with the same arguments but --roomy. Answers an exit status when there is none.
int become_roomy(char **argv);

} // namespace qrysh
