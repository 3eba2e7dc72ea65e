// Three peers write and read the feature registers at the same time, each its own, while the loop
// polls; what a peer reads is compared with what it has written, and store and FPGA in the end.
#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "board/cells.h"
#include "board/stores.h"
#include "support/model_peer.h"
#include "support/ready_daemon.h"

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kPeers = 3;
constexpr std::uint32_t kPage = model::kRegisters;
constexpr std::uint32_t kBusEnd = 0x1F0;     // registers from here on are not in the FPGA
constexpr std::uint32_t kStored = 0xA3B100;  // the page in flash

Bytes FpgaPage() {
  Bytes page(kBusEnd);
  board::LoadCells(1, 0, kBusEnd, page.data());
  return page;
}

Bytes StoredPage() {
  std::ifstream store(board::StorePath(board::Store::kLive), std::ios::binary);
  store.seekg(kStored);
  Bytes page(kPage);
  store.read(reinterpret_cast<char*>(page.data()), kPage);
  return page;
}

TEST(Model, ThreePeersAtOnceLoseNothing) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  support::ReadyDaemon daemon("speed = 20\n");  // a pass of the loop each 10 ms
  model::Random random(seed);
  std::vector<std::unique_ptr<model::Peer>> peers;
  for (model::Window& window : model::DealFeatures(random, kPeers)) {
    const auto number = static_cast<int>(peers.size());
    peers.push_back(
        std::make_unique<model::Peer>(*daemon, std::move(window), model::kMarks[peers.size()],
                                      seed + 1 + static_cast<unsigned>(number), number));
  }

  std::atomic<long> done = 0;
  const auto deadline = std::chrono::steady_clock::now() + 4s;
  const auto more = [&] { return ++done, std::chrono::steady_clock::now() < deadline; };
  std::vector<std::future<std::string>> work;
  for (const auto& peer : peers) {
    work.push_back(std::async(std::launch::async, [&] { return peer->Work(more); }));
  }
  for (auto& result : work) EXPECT_EQ(result.get(), "");

  daemon->Kill();
  for (const auto& peer : peers) {
    EXPECT_EQ(peer->Compare(FpgaPage()), "") << "in the FPGA";
    EXPECT_EQ(peer->Compare(StoredPage()), "") << "in flash";
  }
  EXPECT_GT(done, 100);
}

}  // namespace
