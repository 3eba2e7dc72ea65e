// Years in a rack in short: eight peers at work, three of them unruly, on a board whose links flap,
// whose light sensor fails and whose time jumps. What the well-behaved ones read is held against a
// model of what each space must answer, and the daemon must not grow. QUIVORD_SOAK_MINUTES says how
// long; scripts/soak sets it.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

#include "proto/registerspace_names.h"
#include "support/deeds.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/model_peer.h"
#include "support/on_daemon.h"
#include "support/rough_peer.h"
#include "support/run.h"

namespace {

using namespace std::chrono_literals;
using More = std::function<bool()>;

// Windows into spaces that are memory: what is written is read back. In front of each record of the
// first 256 numbers stands a count that a layout sets, behind them lies a switch of the colour
// side, and at the end of the first 512 positions two registers whose read measures the FPGA's bus
// for seconds.
const model::Window kMemories[] = {
    {0x02300000, {{0, 512}}}, {0x05060100, {{0, 512}}},
    {0x05000100, {{0, 512}}}, {0x0A001000, {{0, 512}}},
    {0x0F010000, {{0, 512}}}, {0x0F800200, {{0, 512}}},
    {0xF1700000, {{0, 512}}}, {0x03100000, {{2, 32}, {34, 64}, {66, 96}}}};

constexpr std::uint32_t kBusEnd = 0x1F0;     // feature registers from here on are not in the FPGA
constexpr std::uint32_t kStored = 0xA3B100;  // all of them in flash
constexpr auto kPatience = 30s;

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;  // keeps what was freed
#else
constexpr bool kSanitized = false;
#endif

// What the peer has written it reads back, and at the end FPGA and flash hold it as well.
std::string WorkOnFeatures(const support::Daemon& daemon, model::Window window, int number,
                           unsigned seed, const More& more) {
  model::Peer peer(daemon, std::move(window), model::kMarks.at(static_cast<std::size_t>(number)),
                   seed, number);
  const std::string wrong = peer.Work(more);
  if (!wrong.empty()) return wrong;
  const std::string fpga = peer.Compare(inprocess::Bytes(device::Fpga(0, kBusEnd).c_str()));
  if (!fpga.empty()) return fpga + " in the FPGA";
  const auto stored = inprocess::Bytes(device::Flash(kStored, model::kRegisters).c_str());
  const std::string flash = peer.Compare(stored);
  return flash.empty() ? "" : flash + " in flash";
}

std::string WorkOnMemories(const support::Daemon& daemon, unsigned seed, const More& more) {
  std::vector<std::unique_ptr<model::Peer>> peers;
  for (const model::Window& window : kMemories) {
    const int number = 10 + static_cast<int>(peers.size());
    peers.push_back(std::make_unique<model::Peer>(daemon, window, model::kMarks[3],
                                                  seed + static_cast<unsigned>(number), number));
  }
  model::Random random(seed);
  while (more()) {
    model::Peer& peer = *peers[random() % peers.size()];
    peer.Step();
    if (!peer.wrong().empty()) return peer.wrong();
  }
  return "";
}

// Operations, and reads anywhere: answered as the tables foresee it, with what the operations show.
class Everywhere {
 public:
  Everywhere(const support::Daemon& daemon, unsigned seed)
      : client_(std::move(daemon.Connect(0x7E0300).value())), random_(seed) {
    // Looks for input boards.
    static_cast<void>(client_->Call({.address = 0x08000000, .length = 1}, kPatience));
  }

  // Works until `more` says no; what is wrong, or empty.
  std::string Work(const More& more) {
    std::string wrong;
    while (wrong.empty() && more()) {
      const std::size_t which = random_() % deeds_.size();
      const std::uint32_t kind = model::Below(random_, 16);
      wrong = kind < 4 ? Do(which) : kind == 4 && shows_[which] ? Look(which) : ReadSomewhere();
    }
    return wrong;
  }

 private:
  std::string Do(std::size_t which) {
    const auto reply = client_->Call(deeds_[which].Request(), kPatience);
    if (!reply) return reply.error().text;
    if (reply.value().ack != 0) return "deed " + std::to_string(which) + " is not taken";
    if (shows_[which] || deeds_[which].shown.bytes.empty()) return Look(which);
    shows_[which] = support::Eventually([&] { return Look(which).empty(); }, kPatience);
    return Look(which);
  }

  // Whether the deed shows, once it has been done.
  std::string Look(std::size_t which) {
    const auto& [address, bytes] = deeds_[which].shown;
    if (bytes.empty()) return "";
    const auto length = static_cast<std::uint16_t>(bytes.size());
    const auto reply = client_->Call({.address = address, .length = length}, kPatience);
    if (!reply) return reply.error().text;
    return reply.value().data == bytes ? "" : "deed " + std::to_string(which) + " does not show";
  }

  std::string ReadSomewhere() {
    using namespace ZEPH_MCUC;
    const std::uint32_t base = kSpaces[random_() % kSpaces.size()]->base();
    const std::uint32_t address = base + model::Below(random_, 0x1000);
    const auto length = static_cast<std::uint16_t>(1 + model::Below(random_, 512));
    const auto reply = client_->Call({.address = address, .length = length}, kPatience);
    if (!reply) return reply.error().text;
    const Prospect prospect = ForeseeRead(address, length);
    const std::size_t got = reply.value().data.size();
    const bool whole = prospect.meets == Meets::kServed;
    const bool some = prospect.meets == Meets::kDropped;
    if (some ? got > 0 && got < length : got == (whole ? length : 0U)) return "";
    return "read of " + std::to_string(length) + " at " + std::to_string(address) + " gave " +
           std::to_string(got) + " bytes; " + prospect.text;
  }

  const std::unique_ptr<quivord::Client> client_;
  const std::vector<deeds::Deed> deeds_ = deeds::All();
  std::vector<bool> shows_ = std::vector<bool>(deeds_.size());
  model::Random random_;
};

// What a process has: its own memory in KiB, without what is mapped of files, and its open files.
struct Holdings {
  long memory = 0;
  long files = 0;
};

Holdings HoldingsOf(pid_t process) {
  const std::filesystem::path folder = "/proc/" + std::to_string(process);
  Holdings holdings;
  std::ifstream status(folder / "status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("RssAnon:")) holdings.memory = std::atol(line.c_str() + 8);
  }
  for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(folder / "fd")) {
    ++holdings.files;
  }
  return holdings;
}

// The same once the connections of peers that have gone are closed: the files no longer change.
Holdings WhenAtRest(pid_t process) {
  Holdings holdings = HoldingsOf(process);
  for (int same = 0; same < 10;) {
    std::this_thread::sleep_for(10ms);
    const Holdings now = HoldingsOf(process);
    same = now.files == holdings.files ? same + 1 : 0;
    holdings = now;
  }
  return holdings;
}

// The eight peers and what disturbs them, on threads, until `End`.
class Traffic {
 public:
  Traffic(const support::Daemon& daemon, unsigned seed) : crowd_(daemon.board(), seed + 5) {
    const More more = [this] { return ++done_, !over_; };
    model::Random random(seed);
    int number = 0;
    for (model::Window& window : model::DealFeatures(random, 3)) {
      Run([&daemon, window = std::move(window), number, seed, more] {
        return WorkOnFeatures(daemon, window, number, seed + static_cast<unsigned>(number), more);
      });
      ++number;
    }
    Run([&daemon, seed, more] { return WorkOnMemories(daemon, seed + 3, more); });
    Run([&daemon, seed, more] { return Everywhere(daemon, seed + 4).Work(more); });
  }

  // Ends it; what was wrong, a line each.
  std::string End() {
    over_ = true;
    std::string wrong = crowd_.End();
    for (auto& work : work_) {
      const std::string said = work.get();
      if (!said.empty()) wrong += said + "\n";
    }
    return wrong;
  }

  long done() const { return done_; }

 private:
  void Run(std::function<std::string()> body) {
    work_.push_back(std::async(std::launch::async, std::move(body)));
  }

  rough::Crowd crowd_;
  std::atomic<bool> over_ = false;
  std::atomic<long> done_ = 0;
  std::vector<std::future<std::string>> work_;
};

// Traffic for so long; what is left of it when all peers have gone.
Holdings AfterTraffic(support::Daemon& daemon, unsigned seed, std::chrono::milliseconds length) {
  constexpr long kFewestPerSecond = 20;  // a sanitizer's build on an idle machine does 300
  Traffic traffic(daemon, seed);
  std::this_thread::sleep_for(length);
  EXPECT_EQ(traffic.End(), "");
  EXPECT_GT(traffic.done(), kFewestPerSecond * length / 1s);
  EXPECT_TRUE(daemon.WaitUntilItAnswers());
  const Holdings holdings = WhenAtRest(daemon.pid());
  std::printf("%ld requests, then %ld KiB, %ld files\n", traffic.done(), holdings.memory,
              holdings.files);
  return holdings;
}

// The least that the daemon held at the later ones of several rests: what the peers leave in the
// heap at a single one is chance.
Holdings Least(support::Daemon& daemon, unsigned seed, std::chrono::milliseconds length,
               int rests) {
  std::vector<Holdings> later;
  for (int rest = 0; rest < rests; ++rest) {
    const Holdings holdings = AfterTraffic(daemon, seed + 100 * rest, length / rests);
    if (rest >= rests / 2) later.push_back(holdings);
  }
  return {std::ranges::min(later, {}, &Holdings::memory).memory,
          std::ranges::min(later, {}, &Holdings::files).files};
}

// The C library gives back at once what is free, so that what the daemon holds is what it uses.
constexpr char kThriftyHeap[] =
    "GLIBC_TUNABLES=glibc.malloc.arena_max=1:glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0:"
    "glibc.malloc.trim_threshold=0:glibc.malloc.top_pad=0:glibc.malloc.mmap_threshold=16384";

using Soak = support::OnDaemon;

TEST_F(Soak, NobodyIsHarmedByTheOthers) {
  const int minutes = support::FromEnvironment("QUIVORD_SOAK_MINUTES", 0);
  const auto whole = minutes > 0 ? std::chrono::seconds(60 * minutes) : 8s;
  const auto first = minutes > 10 ? 600s : whole / 2;  // until the daemon has seen everything
  const int rests = minutes > 0 ? 6 : 2;
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  board_kit::Configure("speed = 50\n");
  Start({}, {kThriftyHeap});
  Load();
  const Holdings before = Least(*daemon_, seed, first, rests);
  const Holdings after = Least(*daemon_, seed + 1000, whole - first, rests);
  EXPECT_EQ(after.files, before.files);
  if (minutes > 0 && !kSanitized) {
    EXPECT_LT(after.memory - before.memory, 64);
  }
}

}  // namespace
