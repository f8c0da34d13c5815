// Open files as the workstation has them: those of whatever reads and writes files.
#pragma once

#include "platform/host/refusal.h"
#include "tools/files/open_file.h"

namespace qryhost {

using qryfiles::fail;
using qryfiles::open_file;

} // namespace qryhost
