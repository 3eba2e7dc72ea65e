#include "support/model_peer.h"

#include <chrono>

namespace model {
namespace {

using namespace std::chrono_literals;

constexpr auto kLimit = 30s;
constexpr std::uint32_t kFirstPeer = 0x7E0100;

// Without the windows and roles of the ports, which a layout sets.
constexpr Stretch kPlainFeatures[] = {
    {0x30, 0x3F},   {0x40, 0x46},   {0x4C, 0x51},   {0x75, 0x98},   {0xA0, 0xB1},
    {0xD5, 0x100},  {0x108, 0x11F}, {0x128, 0x131}, {0x142, 0x1A5}, {0x1A6, 0x1D7},
    {0x1DB, 0x1DE}, {0x1E2, 0x1E9}, {0x1FE, 0x200}};

}  // namespace

std::uint32_t Below(Random& random, std::uint32_t end) {
  return static_cast<std::uint32_t>(random() % end);
}

std::vector<Window> DealFeatures(Random& random, std::size_t peers) {
  std::vector<Window> dealt(peers, {kFeatures, {}});
  for (const Stretch& stretch : kPlainFeatures) {
    for (std::uint32_t at = stretch.begin; at < stretch.end;) {
      const std::uint32_t end = std::min(stretch.end, at + 1 + Below(random, 12));
      dealt[Below(random, static_cast<std::uint32_t>(peers))].stretches.push_back({at, end});
      at = end;
    }
  }
  return dealt;
}

Peer::Peer(const support::Daemon& daemon, Window window, std::uint32_t mark, unsigned seed,
           int number)
    : client_(std::move(daemon.Connect(kFirstPeer + static_cast<unsigned>(number)).value())),
      window_(std::move(window)),
      mark_register_(kFeatures + mark),
      random_(seed) {
  const Bytes page = Read(window_.base, kRegisters);
  for (const Stretch& stretch : window_.stretches) {
    for (std::uint32_t at = stretch.begin; at < stretch.end; ++at) registers_.Own(at, page.at(at));
  }
}

std::string Peer::Work(const std::function<bool()>& more) {
  while (wrong_.empty() && more()) Step();
  Settle();
  return wrong_;
}

void Peer::Step() {
  const std::uint32_t kind = Below(random_, 40);
  if (kind == 0) {
    Settle();
  } else if (kind < 20) {
    WriteSome();
  } else {
    ReadSome();
  }
}

Peer::Bytes Peer::Read(std::uint32_t address, std::uint32_t length) {
  const auto reply =
      client_->Call({.address = address, .length = static_cast<std::uint16_t>(length)}, kLimit);
  if (!reply || reply.value().data.size() != length) {
    wrong_ = reply ? "a read without its data" : reply.error().text;
    return Bytes(length);
  }
  return reply.value().data;
}

void Peer::Write(std::uint32_t address, const Bytes& data) {
  const auto reply = client_->Call(
      {.operation = quivord::Operation::kWrite, .address = address, .data = data}, kLimit);
  if (!reply || reply.value().ack != 0) wrong_ = reply ? "a refused write" : reply.error().text;
}

void Peer::Check(std::uint32_t offset, std::uint32_t length) {
  const Bytes data = Read(window_.base + offset, length);
  if (!wrong_.empty()) return;
  wrong_ = registers_.Compare(offset, data);
  if (!wrong_.empty()) wrong_ += " in the window from " + std::to_string(window_.base);
}

void Peer::WriteSome() {
  const auto& all = window_.stretches;
  const Stretch& stretch = all[Below(random_, static_cast<std::uint32_t>(all.size()))];
  const std::uint32_t begin = stretch.begin + Below(random_, stretch.end - stretch.begin);
  Bytes data(1 + Below(random_, stretch.end - begin));
  for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random_());
  registers_.Write(begin, data);
  Write(window_.base + begin, data);
}

// Anywhere, of any length; one in eight is the whole window, which for the features comes fresh
// from the FPGA.
void Peer::ReadSome() {
  if (Below(random_, 8) == 0) return Check(0, kRegisters);
  const std::uint32_t offset = Below(random_, kRegisters);
  Check(offset, 1 + Below(random_, kRegisters - offset));
}

// The queue works in order: once a mark shows, all that was written in front of it is done.
void Peer::Settle() {
  const auto value = static_cast<std::uint8_t>(Read(mark_register_, 1).front() + 1);
  Write(mark_register_, {value});
  const auto deadline = std::chrono::steady_clock::now() + kLimit;
  while (wrong_.empty() && Read(mark_register_, 1).front() != value) {
    if (std::chrono::steady_clock::now() > deadline) wrong_ = "a write that is never done";
  }
  registers_.Settle();
  if (wrong_.empty()) Check(0, kRegisters);
}

}  // namespace model
