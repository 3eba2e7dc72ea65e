// Three peers write and read the feature registers at the same time, each its own, while the loop
// polls; what a peer reads is compared with what it has written, and store and FPGA in the end.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <random>

#include "board/cells.h"
#include "board/power.h"
#include "board/stores.h"
#include "support/board_kit.h"
#include "support/daemon.h"
#include "support/model.h"

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;
using Random = std::mt19937;

constexpr int kPeers = 3;
constexpr std::uint32_t kBase = 0x02000000;
constexpr std::uint32_t kPage = model::kRegisters;
constexpr std::uint32_t kBusEnd = 0x1F0;     // registers from here on are not in the FPGA
constexpr std::uint32_t kStored = 0xA3B100;  // the page in flash
constexpr std::uint32_t kOwd = 0x0A3900;
constexpr std::uint32_t kReady = 0x14000000;
constexpr auto kLimit = 30s;

// Registers without a meaning of their own: reads show them as they are, a write sets off nothing.
struct Stretch {
  std::uint32_t begin, end;
};
constexpr Stretch kPlain[] = {{0x30, 0x3F},   {0x40, 0x46},   {0x4C, 0x74},   {0x75, 0x9C},
                              {0xA0, 0xD4},   {0xD5, 0x11F},  {0x128, 0x1A5}, {0x1A6, 0x1D7},
                              {0x1DB, 0x1DE}, {0x1E2, 0x1E9}, {0x1F9, 0x200}};

std::uint32_t Below(Random& random, std::uint32_t end) {
  return static_cast<std::uint32_t>(random() % end);
}

// Neighbouring registers of one peer.
using Ranges = std::vector<Stretch>;

// Deals all plain registers to the peers in pieces of 1 to 12.
std::array<Ranges, kPeers> Deal(Random& random) {
  std::array<Ranges, kPeers> dealt;
  for (const Stretch& stretch : kPlain) {
    for (std::uint32_t at = stretch.begin; at < stretch.end;) {
      const std::uint32_t end = std::min(stretch.end, at + 1 + Below(random, 12));
      dealt[Below(random, kPeers)].push_back({at, end});
      at = end;
    }
  }
  return dealt;
}

class Peer {
 public:
  Peer(const support::Daemon& daemon, Ranges ranges, unsigned seed, int number)
      : client_(std::move(daemon.Connect(0x7E0100U + static_cast<unsigned>(number)).value())),
        ranges_(std::move(ranges)),
        mark_register_(ranges_.front().begin),
        random_(seed) {
    if (++ranges_.front().begin == ranges_.front().end) ranges_.erase(ranges_.begin());
    const Bytes page = Read(0, kPage);
    registers_.Own(mark_register_, page.at(mark_register_));
    mark_ = page.at(mark_register_);
    for (const Stretch& range : ranges_) {
      for (std::uint32_t at = range.begin; at < range.end; ++at) registers_.Own(at, page.at(at));
    }
  }

  // Works until `more` says no; what is wrong, or empty.
  std::string Work(const std::function<bool()>& more) {
    while (wrong_.empty() && more()) {
      const std::uint32_t kind = Below(random_, 40);
      if (kind == 0) {
        Settle();
      } else if (kind < 20) {
        WriteSome();
      } else {
        ReadSome();
      }
    }
    Settle();
    return wrong_;
  }

  // Compares the page as it stands somewhere else, from offset 0 on.
  std::string Compare(const Bytes& page) { return registers_.Compare(0, page); }

 private:
  Bytes Read(std::uint32_t offset, std::uint32_t length) {
    const auto reply = client_->Call(
        {.address = kBase + offset, .length = static_cast<std::uint16_t>(length)}, kLimit);
    if (!reply || reply.value().data.size() != length) {
      wrong_ = reply ? "a read without its data" : reply.error().text;
      return Bytes(length);
    }
    return reply.value().data;
  }

  void Write(std::uint32_t offset, const Bytes& data) {
    registers_.Write(offset, data);
    const auto reply = client_->Call(
        {.operation = quivord::Operation::kWrite, .address = kBase + offset, .data = data}, kLimit);
    if (!reply || reply.value().ack != 0) wrong_ = reply ? "a refused write" : reply.error().text;
  }

  void Check(std::uint32_t offset, std::uint32_t length) {
    const Bytes data = Read(offset, length);
    if (wrong_.empty()) wrong_ = registers_.Compare(offset, data);
  }

  void WriteSome() {
    const Stretch& range = ranges_[Below(random_, static_cast<std::uint32_t>(ranges_.size()))];
    const std::uint32_t begin = range.begin + Below(random_, range.end - range.begin);
    Bytes data(1 + Below(random_, range.end - begin));
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random_());
    Write(begin, data);
  }

  // Anywhere, of any length; one in eight is the whole page, which comes fresh from the FPGA.
  void ReadSome() {
    if (Below(random_, 8) == 0) return Check(0, kPage);
    const std::uint32_t offset = Below(random_, kPage);
    Check(offset, 1 + Below(random_, kPage - offset));
  }

  // The queue works in order: once a mark shows, all that was written in front of it is done.
  void Settle() {
    const std::uint8_t value = ++mark_;
    Write(mark_register_, {value});
    const auto deadline = std::chrono::steady_clock::now() + kLimit;
    while (wrong_.empty() && Read(mark_register_, 1).front() != value) {
      if (std::chrono::steady_clock::now() > deadline) wrong_ = "a write that is never done";
    }
    registers_.Settle();
    if (wrong_.empty()) Check(0, kPage);
  }

  const std::unique_ptr<quivord::Client> client_;
  Ranges ranges_;
  const std::uint32_t mark_register_;  // the first of them, for marks alone
  Random random_;
  model::Registers registers_;
  std::uint8_t mark_ = 0;
  std::string wrong_;
};

// A daemon whose FPGA has loaded.
class Wall {
 public:
  Wall() : daemon_({.board = Folder()}) {
    EXPECT_TRUE(daemon_.WaitUntilItAnswers()) << daemon_.OutputText();
    std::promise<void> ready;
    owd_ = std::move(quivord::Client::Connect({.board = daemon_.board(),
                                               .id = kOwd,
                                               .on_report =
                                                   [&](const quivord::Report& report) {
                                                     if (report.address == kReady)
                                                       ready.set_value();
                                                   }})
                         .value());
    board::FinishFpgaLoad();
    EXPECT_EQ(ready.get_future().wait_for(kLimit), std::future_status::ready);
    owd_.reset();
  }

  support::Daemon& daemon() { return daemon_; }

 private:
  static std::filesystem::path Folder() {
    board_kit::Configure("speed = 20\n");  // a pass of the loop each 10 ms
    return board::Folder();
  }

  support::Daemon daemon_;
  std::unique_ptr<quivord::Client> owd_;
};

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
  const char* const soak = std::getenv("QUIVORD_SOAK");  // operations; without it, some seconds
  const long operations = soak == nullptr ? 0 : std::atol(soak);
  const char* const given = std::getenv("QUIVORD_SEED");
  const auto seed = given == nullptr ? std::random_device()()
                                     : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
  SCOPED_TRACE("QUIVORD_SEED=" + std::to_string(seed));
  Wall wall;
  Random random(seed);
  const auto dealt = Deal(random);
  std::vector<std::unique_ptr<Peer>> peers;
  for (int i = 0; i < kPeers; ++i) {
    peers.push_back(std::make_unique<Peer>(wall.daemon(), dealt[static_cast<std::size_t>(i)],
                                           seed + static_cast<unsigned>(i) + 1, i));
  }

  std::atomic<long> done = 0;
  const auto deadline = std::chrono::steady_clock::now() + 4s;
  const auto more = [&] {
    const long so_far = ++done;
    return operations > 0 ? so_far <= operations : std::chrono::steady_clock::now() < deadline;
  };
  std::vector<std::future<std::string>> work;
  for (const auto& peer : peers) {
    work.push_back(std::async(std::launch::async, [&] { return peer->Work(more); }));
  }
  for (auto& result : work) EXPECT_EQ(result.get(), "");

  wall.daemon().Kill();
  for (const auto& peer : peers) {
    EXPECT_EQ(peer->Compare(FpgaPage()), "") << "in the FPGA";
    EXPECT_EQ(peer->Compare(StoredPage()), "") << "in flash";
  }
  std::printf("%ld operations\n", done.load());
  EXPECT_GT(done, 100);
}

}  // namespace
