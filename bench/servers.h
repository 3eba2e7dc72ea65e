// The servers that are compared, each a process of its own, and links to them.
#pragma once

#include <filesystem>
#include <memory>

#include "load.h"
#include "support/process.h"

namespace bench {

class Server {
 public:
  virtual ~Server() = default;
  virtual int pid() const = 0;
  virtual std::unique_ptr<Link> Connect() = 0;
};

// Sends back every packet it gets over a SOCK_SEQPACKET socket in `folder`, and does nothing else.
std::unique_ptr<Server> StartBareSocket(const std::filesystem::path& folder);

// libmodbus's TCP server on the loopback address; a request reads two holding registers.
std::unique_ptr<Server> StartModbus();

// The daemon on a board in `folder`; a request reads four bytes of the test space.
std::unique_ptr<Server> StartDaemon(const std::filesystem::path& folder);

}  // namespace bench
