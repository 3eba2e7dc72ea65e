// Modbus TCP with many requests in flight, which the library's own client does not do.
#pragma once

#include <memory>

#include "load.h"

namespace bench {

// A link to a Modbus TCP server on this port of the loopback address; the tag is the transaction.
std::unique_ptr<Link> ConnectModbus(int port);

}  // namespace bench
