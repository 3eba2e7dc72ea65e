// Waiting for work that the device has taken and not yet done.
#pragma once

#include "access/registers.h"

namespace quivord::access {

// Waits until the device has carried out what it was asked for before, `limit` at most; kRefused
// where it hasn't by then. `sender` are the sending card's registers. Other clients' requests may
// wait meanwhile, as behind any write.
Outcome AwaitWork(const Registers& sender, std::chrono::milliseconds limit);

}  // namespace quivord::access
