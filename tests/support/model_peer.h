// A peer that writes registers of its own and knows what each of them must show: what it reads is
// compared with the model at once. Several of them work at the same time, each on a thread.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/daemon.h"
#include "support/model.h"

namespace model {

using Random = std::mt19937;

// A number below `end`.
std::uint32_t Below(Random& random, std::uint32_t end);

// Neighbouring registers, as offsets into a window.
struct Stretch {
  std::uint32_t begin, end;
};

// Up to `kRegisters` registers from `base` on, of which the peer owns `stretches`. All of it can be
// read; what it doesn't own may show anything.
struct Window {
  std::uint32_t base;
  std::vector<Stretch> stretches;
};

inline constexpr std::uint32_t kFeatures = 0x02000000;

// Feature registers for marks, which no window owns: one a thread that works with peers.
inline constexpr std::array<std::uint32_t, 5> kMarks = {0x1F9, 0x1FA, 0x1FB, 0x1FC, 0x1FD};

// The other feature registers without a meaning of their own, dealt to `peers` windows in pieces of
// 1 to 12: reads show them as they are, and a write sets off nothing.
std::vector<Window> DealFeatures(Random& random, std::size_t peers);

class Peer {
 public:
  // `mark` is one of `kMarks`, for this thread alone; `number` tells the peers on the bus apart.
  Peer(const support::Daemon& daemon, Window window, std::uint32_t mark, unsigned seed, int number);

  // Works until `more` says no; what is wrong, or empty.
  std::string Work(const std::function<bool()>& more);

  // One random step, and the wait until all that was written is done.
  void Step();
  void Settle();

  const std::string& wrong() const { return wrong_; }

  // Compares the window as it stands somewhere else, from its first register on.
  std::string Compare(std::span<const std::uint8_t> bytes) { return registers_.Compare(0, bytes); }

 private:
  using Bytes = std::vector<std::uint8_t>;

  Bytes Read(std::uint32_t address, std::uint32_t length);
  void Write(std::uint32_t address, const Bytes& data);
  void Check(std::uint32_t offset, std::uint32_t length);
  void WriteSome();
  void ReadSome();

  const std::unique_ptr<quivord::Client> client_;
  const Window window_;
  const std::uint32_t mark_register_;
  Random random_;
  Registers registers_;
  std::string wrong_;
};

}  // namespace model
