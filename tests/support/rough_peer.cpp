#include "support/rough_peer.h"

#include <fstream>
#include <random>
#include <system_error>
#include <thread>

#include "stub/frame_layout.h"
#include "support/board_kit.h"
#include "support/raw_peer.h"

namespace rough {
namespace {

using namespace std::chrono_literals;
using support::Bytes;
using support::RawPeer;

constexpr std::uint32_t kFirstPeer = 0x7E0200;

Bytes ReadFrame(std::uint32_t address, std::uint16_t length) {
  return support::FrameOf({.registerAddress = address, .dataLength = length});
}

Bytes RandomBytes(std::mt19937& random, std::size_t most) {
  Bytes bytes(1 + random() % most);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

Bytes Garbage(std::mt19937& random, std::uint32_t id) {
  switch (random() % 4) {
    case 0:
      return RandomBytes(random, 60);
    case 1:
      return support::Message(RandomBytes(random, 200), id, 0, random());
    case 2:
      return support::Message(RandomBytes(random, 3000), id);
    default: {
      Bytes frame = ReadFrame(0x02000000, 512);
      frame[random() % frame.size()] ^= static_cast<std::uint8_t>(1 + random() % 255);
      frame[ZEPH_MCUC::frame::kCode] &= 0xFE;  // never a write, whatever the sum says
      return support::Message(frame, id);
    }
  }
}

// Sleeps, but no longer than `more` lets it.
void Rest(std::chrono::milliseconds length, const More& more) {
  const auto end = std::chrono::steady_clock::now() + length;
  while (more() && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(10ms);
}

}  // namespace

void SendGarbage(const std::filesystem::path& board, unsigned seed, const More& more) {
  std::mt19937 random(seed);
  while (more()) {
    RawPeer peer(board, kFirstPeer);
    for (int i = 0; i < 50 && peer.Send(Garbage(random, kFirstPeer)); ++i) peer.Receive(1ms);
  }
}

void ComeAndGo(const std::filesystem::path& board, unsigned seed, const More& more) {
  std::mt19937 random(seed);
  while (more()) {
    const auto id = kFirstPeer + 1 + static_cast<std::uint32_t>(random() % 50);
    RawPeer peer(board, id);
    for (auto left = random() % 30; left > 0; --left) {
      peer.Send(support::Message(ReadFrame(0x02000000, 512), id));
    }
    // Mostly it keeps to the daemon's pace; all the time in a hurry it would leave the others
    // nothing.
    if (random() % 4 != 0) peer.Receive(100ms);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
  }
}

void Stall(const std::filesystem::path& board, unsigned, const More& more) {
  constexpr std::uint32_t kId = kFirstPeer + 60;
  RawPeer peer(board, kId);
  while (more()) {
    for (int i = 0; i < 1500; ++i) peer.Send(support::Message(ReadFrame(0x02810000, 1000), kId));
    Rest(100ms, more);
    while (peer.Receive(20ms)) continue;
    Rest(500ms, more);  // the others' turn
  }
}

void Disturb(const std::filesystem::path& board, unsigned seed, const More& more) {
  std::mt19937 random(seed);
  while (more()) {
    const auto port = random() % 2;
    board_kit::RunTool("link " + std::to_string(port) + (random() % 2 == 0 ? " down" : " up") +
                       " " + board.string());
    std::ofstream(board / "sensors/lux") << (random() % 3 == 0 ? "fail" : "900");
    const std::int64_t offset = static_cast<std::int64_t>(random() % 2000000) * 1000000;
    std::fstream(board / "clock", std::ios::in | std::ios::out | std::ios::binary)
        .write(reinterpret_cast<const char*>(&offset), sizeof(offset));
    Rest(50ms, more);
  }
}

Crowd::Crowd(const std::filesystem::path& board, unsigned seed) {
  for (const auto work : {SendGarbage, ComeAndGo, Stall, Disturb}) {
    work_.push_back(std::async(std::launch::async, work, board, seed++, [this] { return !over_; }));
  }
}

std::string Crowd::End() {
  over_ = true;
  std::string why;
  for (auto& work : work_) {
    try {
      work.get();
    } catch (const std::system_error& fault) {
      why += std::string(fault.what()) + "\n";
    }
  }
  work_.clear();
  return why;
}

}  // namespace rough
