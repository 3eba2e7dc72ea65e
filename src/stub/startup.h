// What is wired to what when the daemon starts.
#pragma once

#include "stub/stubutil.h"

namespace ZEPH_MCUC {

// The entries that transport calls, joined to the floors above it. A program that serves requests
// in-process hands them to `StubUtil::wire` and then runs without threads.
StubUtil::Wiring DaemonWiring();

}  // namespace ZEPH_MCUC
