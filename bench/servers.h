// The servers that are compared, each a process of its own, and links to them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "load.h"
#include "support/process.h"

namespace bench {

class Server {
 public:
  virtual ~Server() = default;
  virtual int pid() const = 0;
  // A link of a peer of its own; `peer` is its number.
  virtual std::unique_ptr<Link> Connect(std::uint32_t peer) = 0;
};

// How a server's peers come: one, which it waits for and serves alone as fast as it can, or several
// at a time.
enum class Peers : std::uint8_t { kOne, kSeveral };

// Sends back every packet it gets over a SOCK_SEQPACKET socket in `folder`, and does nothing else.
std::unique_ptr<Server> StartBareSocket(const std::filesystem::path& folder, Peers peers);

// libmodbus's TCP server on the loopback address; a request reads two holding registers.
std::unique_ptr<Server> StartModbus(Peers peers);

// The daemon on a board in `folder`; a request reads `bytes` bytes of the test space. `program` is
// another daemon than this build's, or empty.
std::unique_ptr<Server> StartDaemon(const std::filesystem::path& folder, std::uint16_t bytes = 4,
                                    const std::string& program = {});

}  // namespace bench
