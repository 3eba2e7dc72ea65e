// The daemon ends by SIGKILL at random instants while a client writes settings, another one has
// operations of all kinds done, unruly peers bother it and the board gives trouble; it comes back
// within its documented start, each setting as it was or as it was written.
// QUIVORD_SOAK_KILLS says how often; scripts/soak sets it.
#include <gtest/gtest.h>

#include <future>
#include <random>
#include <thread>

#include "board/power.h"
#include "support/board_kit.h"
#include "support/daemon.h"
#include "support/deeds.h"
#include "support/device.h"
#include "support/eventually.h"
#include "support/inprocess.h"
#include "support/model_peer.h"
#include "support/rough_peer.h"
#include "support/run.h"

namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kStored = 0xA3B100;
constexpr auto kStart = 5s;  // at most; two seconds of it are waits on a board at speed 1

Bytes Stored() { return inprocess::Bytes(device::Flash(kStored, model::kRegisters).c_str()); }

// Writes plain registers until the connection ends, each noted in front of its request.
void WriteUntilItDies(quivord::Client& client, const model::Window& window, model::Random& random,
                      model::Registers& registers) {
  while (true) {
    const auto& stretches = window.stretches;
    const model::Stretch stretch = stretches[random() % stretches.size()];
    Bytes data(stretch.end - stretch.begin);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random());
    registers.Write(stretch.begin, data);
    const auto reply = client.Call({.operation = quivord::Operation::kWrite,
                                    .address = model::kFeatures + stretch.begin,
                                    .data = data},
                                   10s);
    if (!reply) return;
  }
}

// The same with operations of all kinds.
void OperateUntilItDies(quivord::Client& client, model::Random random) {
  const std::vector<deeds::Deed> all = deeds::All();
  while (true) {
    if (!client.Call(all[random() % all.size()].Request(), 10s)) return;
  }
}

model::Registers Owned(const model::Window& window, const Bytes& page) {
  model::Registers registers;
  for (const model::Stretch& stretch : window.stretches) {
    for (std::uint32_t at = stretch.begin; at < stretch.end; ++at) registers.Own(at, page[at]);
  }
  return registers;
}

// Both, among a crowd, until the daemon is killed.
void WorkUntilKilled(support::Daemon& daemon, const model::Window& window, model::Random& random,
                     model::Registers& registers) {
  const auto client = std::move(daemon.Connect(0x7E0100).value());
  const auto operator_client = std::move(daemon.Connect(0x7E0101).value());
  const rough::Crowd crowd(daemon.board(), static_cast<unsigned>(random()));
  const auto operating = std::async(std::launch::async, [&, own = model::Random(random())] {
    OperateUntilItDies(*operator_client, own);
  });
  std::thread killer([&, after = std::chrono::microseconds(random() % 60000)] {
    std::this_thread::sleep_for(after);
    daemon.Kill();
  });
  WriteUntilItDies(*client, window, random, registers);
  killer.join();
  operating.wait();
}

// What the daemon shows once it has given the FPGA what was stored.
Bytes ShownAfterRestore(const support::Daemon& daemon) {
  EXPECT_TRUE(support::Eventually(
      [&] { return daemon.OutputText().find("load flag") != std::string::npos; }));
  const auto client = std::move(daemon.Connect(0x7E0100).value());
  const auto page = client->Call({.address = model::kFeatures, .length = model::kRegisters}, 10s);
  return page ? page.value().data : Bytes();
}

TEST(Kill, AtAnyInstantNoSettingIsLost) {
  constexpr int kAsk = 10;  // each so many kills the daemon is asked too, in place of flash alone
  const int kills = support::FromEnvironment("QUIVORD_SOAK_KILLS", 10);
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  model::Random random(seed);
  const model::Window window = model::DealFeatures(random, 1).front();
  board_kit::Configure("speed = 50\n");
  board::FinishFpgaLoad();
  auto slowest = 0ms;
  Bytes before = Stored();
  for (int kill = 0; kill < kills; ++kill) {
    const auto begin = std::chrono::steady_clock::now();
    std::filesystem::remove(board::Folder() / "output.txt");
    support::Daemon daemon({.board = board::Folder()});
    ASSERT_TRUE(daemon.WaitUntilItAnswers()) << daemon.OutputText();
    slowest = std::max(slowest, std::chrono::duration_cast<std::chrono::milliseconds>(
                                    std::chrono::steady_clock::now() - begin));
    model::Registers registers = Owned(window, before);
    if (kill % kAsk == 1) {
      const Bytes shown = ShownAfterRestore(daemon);
      ASSERT_EQ(shown.size(), model::kRegisters);
      ASSERT_EQ(Owned(window, before).Compare(0, shown), "") << "after " << kill << " kills";
    }
    WorkUntilKilled(daemon, window, random, registers);
    before = Stored();
    ASSERT_EQ(registers.Compare(0, before), "") << "after " << kill + 1 << " kills";
  }
  std::printf("%d kills, the slowest start took %lld ms\n", kills,
              static_cast<long long>(slowest.count()));
  EXPECT_LT(slowest, kStart);
}

}  // namespace
