// The board's bus from both sides: this process is the daemon, raw sockets are its peers.
#include <gtest/gtest.h>
#include <platform/mbus.h>
#include <pthread.h>
#include <sys/resource.h>
#include <time.h>

#include <atomic>
#include <cstring>
#include <map>
#include <thread>
#include <utility>

#include "board/faults.h"
#include "board/mbus_peer.h"
#include "stub/mcucmessagestruct_layout.h"
#include "support/board_kit.h"
#include "support/eventually.h"
#include "support/raw_peer.h"

namespace {

using support::Bytes;
using support::Eventually;
using support::Message;
using support::RawPeer;
using support::Registration;

constexpr std::uint32_t kSelf = 0x0A4200;
constexpr std::uint32_t kDispatcher = 0x070400;
constexpr std::uint32_t kOwd = 0x0A3900;
constexpr std::uint32_t kAlice = 0x7F0001;
constexpr std::uint32_t kBob = 0x7F0002;

// Runs `mbus_loop_wait` until it is paused.
class Loop {
 public:
  ~Loop() { Pause(); }

  void Resume() {
    paused_ = false;
    thread_ = std::thread([this] {
      while (!paused_) mbus_loop_wait(nullptr, Queue);
    });
  }

  void Pause() {
    if (paused_.exchange(true)) return;
    const RawPeer waker(board_kit::Named(), 0);  // it would look by itself, but not at once
    thread_.join();
  }

  double CpuSeconds() {
    clockid_t clock{};
    timespec time{};
    pthread_getcpuclockid(thread_.native_handle(), &clock);
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  }

 private:
  static int32_t Queue(mbus_sess_t*, void*, void* data, int32_t) {
    auto* message = static_cast<mbus_msg_t*>(data);
    return mbus_enq(&message);
  }

  std::atomic<bool> paused_{true};
  std::thread thread_;
};

std::optional<Bytes> TakeNow() {
  mbus_msg_t* message = nullptr;
  if (mbus_deq(&message) < 0) return std::nullopt;
  auto* data = static_cast<std::uint8_t*>(mbus_que_attach(message));
  const std::size_t size = ZEPH_MCUC::kEnvelopeSize + ZEPH_MCUC::ReadEnvelope(data).payloadLength;
  Bytes bytes(data, data + size);
  EXPECT_EQ(mbus_que_detach(message, data), 0);
  return bytes;
}

// The daemon's next message, waited for; nothing where none comes.
std::optional<Bytes> Take() {
  std::optional<Bytes> message;
  Eventually([&] { return (message = TakeNow()).has_value(); });
  return message;
}

std::uint32_t IdOf(const Bytes& message) { return ZEPH_MCUC::ReadEnvelope(message.data()).uiid; }
std::uint32_t TagOf(const Bytes& message) { return ZEPH_MCUC::ReadEnvelope(message.data()).detail; }

bool Connected(std::uint32_t id) { return mbus_connect_chk_task_by_taskid(id) != -1; }

int32_t SendTo(std::uint32_t id, std::uint32_t tag, const Bytes& frame = {1, 2, 3}) {
  const Bytes message = Message(frame, id, tag);
  return mbus_send(kDispatcher, message.data(), static_cast<std::uint32_t>(message.size()));
}

class MessageBus : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    static bool once = false;  // several suites of one process share the bus
    if (std::exchange(once, true)) return;
    board_kit::Configure("trace = none\n");
    mbus_msg_t* message = nullptr;
    EXPECT_LT(mbus_deq(&message), 0);  // no bus yet
    EXPECT_LT(SendTo(kAlice, 1), 0);
    EXPECT_FALSE(Connected(kAlice));
    ASSERT_EQ(mbus_init(kSelf, 0), 0);
  }

  void SetUp() override { loop_.Resume(); }

  void TearDown() override {
    EXPECT_TRUE(Eventually([] {  // the test's peers have closed; what they left is taken away
      while (TakeNow().has_value()) continue;
      return !Connected(kAlice) && !Connected(kBob) && !Connected(kOwd);
    }));
    loop_.Pause();
  }

  static RawPeer Connect(std::uint32_t id) {
    RawPeer peer(board_kit::Named(), id);
    EXPECT_TRUE(Eventually([&] { return Connected(id); })) << std::hex << id;
    return peer;
  }

  Loop loop_;
};

TEST_F(MessageBus, FirstPacketThatIsNoFreeIdentifierEndsTheConnection) {
  const Bytes cases[] = {
      {}, {1, 2, 3}, {1, 2, 3, 4, 5}, Registration(kSelf), Registration(kDispatcher),
  };
  for (const Bytes& first : cases) {
    RawPeer peer(board_kit::Named(), 0);
    ASSERT_TRUE(peer.Send(first));
    EXPECT_TRUE(peer.Ended()) << "after " << first.size() << " bytes";
  }
  EXPECT_FALSE(Connected(kSelf));
}

TEST_F(MessageBus, NewerConnectionTakesTheOlderOnesPlace) {
  RawPeer older = Connect(kAlice);
  RawPeer newer = Connect(kAlice);
  EXPECT_TRUE(older.Ended());
  EXPECT_TRUE(Connected(kAlice));
  ASSERT_EQ(SendTo(kAlice, 7), 0);
  const auto message = newer.Receive();
  ASSERT_TRUE(message.has_value());
  EXPECT_EQ(TagOf(*message), 7U);
}

// Sends `count` messages and waits until the first has come, the others behind it.
void SendMany(RawPeer& peer, std::uint32_t count) {
  for (std::uint32_t tag = 1; tag <= count; ++tag) ASSERT_TRUE(peer.Send(Message({1}, 0, tag)));
  ASSERT_TRUE(Take().has_value());
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

TEST_F(MessageBus, WhatIsSentWhileMessagesWaitKeepsItsOrder) {
  constexpr std::uint32_t kMessages = 100;
  RawPeer alice = Connect(kAlice);
  RawPeer bob = Connect(kBob);
  SendMany(alice, kMessages);
  const auto receiver = [](std::uint32_t tag) { return tag % 3 == 0 ? kBob : kAlice; };
  for (std::uint32_t tag = 1; tag <= kMessages; ++tag) {
    ASSERT_EQ(SendTo(receiver(tag), tag, Bytes(tag % 10 == 0 ? 2000 : 4)), 0);
    if (tag == kMessages) break;
    ASSERT_TRUE(Take().has_value());
  }
  for (std::uint32_t tag = 1; tag <= kMessages; ++tag) {
    const auto message = (receiver(tag) == kBob ? bob : alice).Receive();
    ASSERT_TRUE(message.has_value()) << tag;
    EXPECT_EQ(TagOf(*message), tag);
  }
}

TEST_F(MessageBus, ReplyDoesNotWaitForALongRequestBehindIt) {
  RawPeer alice = Connect(kAlice);
  SendMany(alice, 3);
  ASSERT_EQ(SendTo(kAlice, 1), 0);
  ASSERT_TRUE(Take().has_value());  // the long one: nothing is taken or sent while it lasts
  EXPECT_TRUE(alice.Receive(std::chrono::milliseconds(200)).has_value());
}

TEST_F(MessageBus, PacketsThatAreNoMessageAreDroppedAndTheConnectionLives) {
  const Bytes whole = Message({1, 2, 3});
  const Bytes cases[] = {
      {},
      {1},
      Bytes(whole.begin(), whole.begin() + 27),
      Message({1, 2, 3}, 0, 0, 2),
      Message({1, 2, 3}, 0, 0, 4),
      Message({1, 2, 3}, 0, 0, 0xFFFFFFFF),
      Message(Bytes(65537)),
      Message(Bytes(100000)),
  };
  RawPeer alice = Connect(kAlice);
  for (const Bytes& packet : cases) ASSERT_TRUE(alice.Send(packet));
  const Bytes largest = Message(Bytes(65536, 0x5A), kAlice, 9);
  ASSERT_TRUE(alice.Send(Message(Bytes(65536, 0x5A), 0xDEADBEEF, 9)));
  const auto message = Take();
  ASSERT_TRUE(message.has_value());
  EXPECT_TRUE(*message == largest) << "tag " << TagOf(*message);
  EXPECT_FALSE(TakeNow().has_value());
  EXPECT_EQ(SendTo(kAlice, 10, Bytes(65536)), 0);
  EXPECT_TRUE(alice.Receive().has_value());
}

TEST_F(MessageBus, WhatAPeerSentBeforeItLeftArrives) {
  {
    RawPeer alice = Connect(kAlice);
    for (std::uint32_t tag = 1; tag <= 100; ++tag) ASSERT_TRUE(alice.Send(Message({1}, 0, tag)));
    ASSERT_TRUE(alice.Send({}));
    ASSERT_TRUE(alice.Send(Message({1}, 0, 101)));
  }
  for (std::uint32_t tag = 1; tag <= 101; ++tag) {
    const auto message = Take();
    ASSERT_TRUE(message.has_value()) << tag;
    EXPECT_EQ(TagOf(*message), tag);
  }
  EXPECT_TRUE(Eventually([] { return !Connected(kAlice); }));
}

TEST_F(MessageBus, PeerThatNeverReadsLosesTheLatestAndHoldsUpNobody) {
  constexpr std::uint32_t kMessages = 4000;
  RawPeer deaf = Connect(kAlice);
  RawPeer bob = Connect(kBob);
  for (std::uint32_t tag = 1; tag <= kMessages; ++tag) {
    ASSERT_EQ(SendTo(kAlice, tag, Bytes(1000)), 0);
    ASSERT_EQ(SendTo(kBob, tag), 0);
    ASSERT_TRUE(bob.Receive().has_value());
  }
  std::uint32_t read = 0;
  while (const auto message = deaf.Receive(std::chrono::milliseconds(500))) {
    ASSERT_EQ(TagOf(*message), ++read);
  }
  EXPECT_GE(read, board::mbus::kMostBacklog);
  EXPECT_LT(read, kMessages);
  ASSERT_EQ(SendTo(kAlice, kMessages + 1), 0);  // and it is served again
  const auto message = deaf.Receive();
  ASSERT_TRUE(message.has_value());
  EXPECT_EQ(TagOf(*message), kMessages + 1);
}

// Sends until nothing is taken any more; returns the number of messages.
std::uint32_t SendUntilHeld(RawPeer& peer, const Bytes& frame) {
  std::uint32_t sent = 0;
  while (Eventually([&] { return peer.TrySend(Message(frame, 0, sent + 1)); },
                    std::chrono::milliseconds(300))) {
    ++sent;
  }
  return sent;
}

struct HeldCase {
  const char* name;
  std::size_t frame;
  std::uint64_t fewest, most;  // messages that the bus takes before it holds the peer
};

class MessageBusLimit : public MessageBus, public testing::WithParamInterface<HeldCase> {};

TEST_P(MessageBusLimit, PeerIsHeldAtTheLimitAndOthersAreServed) {
  RawPeer alice = Connect(kAlice);
  RawPeer bob = Connect(kBob);
  const std::uint32_t sent = SendUntilHeld(alice, Bytes(GetParam().frame));
  ASSERT_TRUE(bob.Send(Message({1}, 0, 77)));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  loop_.Pause();

  std::map<std::uint32_t, std::uint32_t> taken;
  while (const auto message = TakeNow()) ++taken[IdOf(*message)];
  EXPECT_GE(taken[kAlice], GetParam().fewest);
  EXPECT_LE(taken[kAlice], GetParam().most);
  EXPECT_EQ(taken[kBob], 1U);

  loop_.Resume();
  for (std::uint32_t tag = taken[kAlice] + 1; tag <= sent; ++tag) {
    const auto message = Take();
    ASSERT_TRUE(message.has_value()) << "of " << sent;
    EXPECT_EQ(TagOf(*message), tag);
  }
}

constexpr std::uint64_t kWholeMessages = (4 << 20) / (28 + 65536);
INSTANTIATE_TEST_SUITE_P(By, MessageBusLimit,
                         testing::Values(HeldCase{"Count", 20, 1024, 1024},
                                         HeldCase{"Bytes", 65536, kWholeMessages + 1,
                                                  kWholeMessages + 1}),
                         [](const auto& test) { return test.param.name; });

TEST_F(MessageBus, HeldPeerThatLeavesCostsNothingAndLosesNothing) {
  std::uint32_t sent = 0;
  {
    RawPeer alice = Connect(kAlice);
    sent = SendUntilHeld(alice, Bytes(20));
  }
  const double before = loop_.CpuSeconds();
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_LT(loop_.CpuSeconds() - before, 0.1);
  for (std::uint32_t tag = 1; tag <= sent; ++tag) {
    const auto message = Take();
    ASSERT_TRUE(message.has_value()) << tag << " of " << sent;
    EXPECT_EQ(TagOf(*message), tag);
  }
  EXPECT_TRUE(Eventually([] { return !Connected(kAlice); }));
}

TEST_F(MessageBus, FloodingPeerDoesNotKeepOthersWaiting) {
  RawPeer flooder = Connect(kAlice);
  RawPeer bob = Connect(kBob);
  std::atomic<bool> enough{false};
  std::thread flood([&] {
    while (!enough) flooder.TrySend(Message({1}));
  });
  for (int round = 0; round < 20; ++round) {
    ASSERT_TRUE(bob.Send(Message({1})));
    std::uint32_t before_bob = 0;
    for (auto message = Take(); message.has_value() && IdOf(*message) != kBob; message = Take()) {
      ++before_bob;
    }
    EXPECT_LT(before_bob, 3 * board::mbus::kMostUndelivered) << "round " << round;
  }
  enough = true;
  flood.join();
}

void AllowManyFiles() {
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = std::min<rlim_t>(files.rlim_max, 4096);
  setrlimit(RLIMIT_NOFILE, &files);
}

TEST_F(MessageBus, KeepsFiveHundredAndTwelvePeersAndRefusesTheNext) {
  constexpr std::uint32_t kMost = 512;
  AllowManyFiles();
  std::vector<RawPeer> peers;
  peers.reserve(kMost);
  for (std::uint32_t i = 0; i < kMost; ++i) peers.push_back(Connect(kAlice + i));
  EXPECT_TRUE(RawPeer(board_kit::Named(), kAlice + kMost).Ended());
  peers.pop_back();
  EXPECT_TRUE(Eventually([&] { return !Connected(kAlice + kMost - 1); }));
  peers.push_back(Connect(kAlice + kMost));
  EXPECT_TRUE(Connected(kAlice));
}

TEST_F(MessageBus, SilentConnectionsKeepNobodyOut) {
  AllowManyFiles();
  RawPeer alice = Connect(kAlice);
  std::vector<RawPeer> silent;
  silent.reserve(700);
  for (int i = 0; i < 700; ++i) silent.emplace_back(board_kit::Named(), 0);
  RawPeer bob = Connect(kBob);
  ASSERT_TRUE(bob.Send(Message({1}, 0, 5)));
  EXPECT_TRUE(Take().has_value());
  EXPECT_TRUE(Connected(kAlice));
}

TEST_F(MessageBus, RefusesMessagesOfTheDaemonThatBreakTheRules) {
  const std::pair<taskid_t, Bytes> cases[] = {
      {kAlice, Message({1}, kAlice)},  // past the dispatching task
      {kDispatcher, Bytes(27)},        // no envelope
      {kDispatcher, Message({1, 2}, kAlice, 0, 1)},
      {kDispatcher, Message({1, 2}, kAlice, 0, 3)},
      {kDispatcher, Message(Bytes(65537), kAlice)},
  };
  for (const auto& [destination, message] : cases) {
    const auto size = static_cast<std::uint32_t>(message.size());
    EXPECT_LT(mbus_send(destination, message.data(), size), 0) << size;
  }
}

}  // namespace
