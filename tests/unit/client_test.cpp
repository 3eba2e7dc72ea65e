// The client library against a daemon that the test plays itself.
#include "quivord/client.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <thread>

#include "stub/frame_layout.h"
#include "support/fake_daemon.h"

namespace {

namespace bus = ZEPH_MCUC;
using namespace std::chrono_literals;
using quivord::Client;
using quivord::Reply;
using quivord::Request;
using quivord::Result;
using quivord::Trouble;
using support::Bytes;
using support::FakeDaemon;
using support::Message;

constexpr std::uint32_t kId = 0x7F1234;
constexpr std::uint32_t kRegister = 0xF0000100;
constexpr auto kLong = 20s;

std::uint32_t TagOf(const Bytes& packet) { return bus::ReadEnvelope(packet.data()).detail; }

bus::FrameHead HeadOf(const Bytes& packet) {
  return bus::ReadFrameHead(std::span(packet).subspan(bus::kEnvelopeSize)).value();
}

Bytes Frame(bus::FrameHead head, const Bytes& data) {
  head.dataLength = static_cast<std::uint16_t>(data.size());
  return support::FrameOf(head, data);
}

Bytes ReplyTo(const Bytes& request, const Bytes& data, std::uint8_t ack = 0) {
  bus::FrameHead head = HeadOf(request);
  head.ack = ack;
  return Message(Frame(head, data), kId, TagOf(request));
}

class ClientTest : public testing::Test {
 protected:
  void SetUp() override {
    auto connected = Client::Connect({
        .board = daemon_.board(),
        .id = kId,
        .on_report =
            [this](const quivord::Report& report) {
              const std::lock_guard lock(mutex_);
              reports_.push_back(report);
            },
        .on_end =
            [this](const quivord::Error&) {
              ended_ = true;
              ended_.notify_all();
            },
    });
    ASSERT_TRUE(connected) << connected.error().text;
    client_ = std::move(connected.value());
    ASSERT_EQ(daemon_.Accept(), kId);
  }

  std::future<Result<Reply>> Call(Request request, std::chrono::milliseconds timeout = kLong) {
    return std::async(std::launch::async, [this, request = std::move(request), timeout] {
      return client_->Call(request, timeout);
    });
  }

  Bytes NextRequest() { return daemon_.Receive().value_or(Bytes(48)); }

  // A request and its answer, after everything that was sent before has been looked at.
  void Sync() {
    auto call = Call({.address = kRegister, .length = 1});
    daemon_.Send(ReplyTo(NextRequest(), {1}));
    ASSERT_TRUE(call.get());
  }

  FakeDaemon daemon_;
  std::mutex mutex_;
  std::vector<quivord::Report> reports_;  // guarded by `mutex_`
  std::atomic<bool> ended_{false};
  std::unique_ptr<Client> client_;
};

TEST_F(ClientTest, RequestsHaveTheBytesOfTheProtocol) {
  auto read = Call({.address = 0x02000018, .length = 4});
  const Bytes request = NextRequest();
  EXPECT_EQ(
      request,
      Message({0x55, 0xAA, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x18, 0, 0, 2, 4, 0, 0x73, 0x55}, kId, 1));
  daemon_.Send(Message({0xAA, 0x55, 0, 0, 0, 0, 0,    0,    0,    0,    0,    0,
                        0x18, 0,    0, 2, 4, 0, 0x11, 0x22, 0x33, 0x44, 0x1D, 0x56},
                       kId, 1));
  auto reply = read.get();
  ASSERT_TRUE(reply) << reply.error().text;
  EXPECT_EQ(reply.value().ack, 0);
  EXPECT_EQ(reply.value().data, (Bytes{0x11, 0x22, 0x33, 0x44}));

  auto write = Call({.operation = quivord::Operation::kWrite,
                     .target = {bus::JSHL_TypeReceiver, 0xFF, 0xFFFF},
                     .address = 0x02000001,
                     .data = {0x80}});
  const Bytes written = NextRequest();
  EXPECT_EQ(Bytes(written.begin() + bus::kEnvelopeSize, written.end()),
            (Bytes{0x55, 0xAA, 0, 0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 1,
                   0,    1,    0, 0, 2, 1, 0, 0x80, 0xD8, 0x58}));
  EXPECT_EQ(TagOf(written), 2U);
  daemon_.Send(ReplyTo(written, {}, 4));
  reply = write.get();
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply.value().ack, 4);
  EXPECT_TRUE(reply.value().data.empty());
}

TEST_F(ClientTest, RepliesInAnyOrderReachTheirRequests) {
  constexpr std::uint32_t kCount = 500;
  std::mutex mutex;
  std::vector<std::pair<std::uint32_t, Bytes>> got;
  for (std::uint32_t i = 0; i < kCount; ++i) {
    ASSERT_TRUE(client_->Start({.address = i, .length = 4}, kLong, [&, i](Result<Reply> reply) {
      const std::lock_guard lock(mutex);
      got.emplace_back(i, reply ? reply.value().data : Bytes{});
    }));
    if (i % 50 != 49) continue;
    std::vector<Bytes> requests;
    requests.reserve(50);
    for (int k = 0; k < 50; ++k) requests.push_back(NextRequest());
    std::reverse(requests.begin(), requests.end());
    for (const Bytes& request : requests) {
      const std::uint32_t address = HeadOf(request).registerAddress;
      daemon_.Send(ReplyTo(
          request, {static_cast<std::uint8_t>(address), static_cast<std::uint8_t>(address >> 8)}));
    }
  }
  Sync();
  const std::lock_guard lock(mutex);
  ASSERT_EQ(got.size(), kCount);
  for (const auto& [i, data] : got) {
    EXPECT_EQ(data, (Bytes{static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i >> 8)}));
  }
}

TEST_F(ClientTest, TagGivenUpIsNotAnsweredLater) {
  auto first = Call({.address = 1, .length = 1}, 50ms);
  const Bytes late = NextRequest();
  const auto reply = first.get();
  ASSERT_FALSE(reply);
  EXPECT_EQ(reply.error().trouble, Trouble::kTimeout);

  auto second = Call({.address = 1, .length = 1});
  const Bytes request = NextRequest();
  EXPECT_NE(TagOf(request), TagOf(late));
  daemon_.Send(ReplyTo(late, {1}));
  daemon_.Send(ReplyTo(request, {2}));
  const auto answer = second.get();
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer.value().data, Bytes{2});
  EXPECT_EQ(client_->dropped(), 1U);
}

TEST_F(ClientTest, ReplyThatFitsAnotherRequestIsNotTaken) {
  auto call = Call({.address = kRegister, .length = 1});
  const Bytes request = NextRequest();
  Bytes strange = request;
  bus::DWQ_ENCDW(&strange[bus::kEnvelopeSize + bus::frame::kRegister], kRegister + 1);
  daemon_.Send(ReplyTo(strange, {7}));  // of an earlier peer of this name, under the same tag
  daemon_.Send(ReplyTo(request, {8}));
  const auto reply = call.get();
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply.value().data, Bytes{8});
}

TEST_F(ClientTest, GarbageIsDroppedAndCounted) {
  auto call = Call({.address = kRegister, .length = 1});
  const Bytes request = NextRequest();
  const Bytes whole = ReplyTo(request, {1});
  Bytes other_label = whole;
  other_label[22] = 3;
  Bytes broken_report = Message(Frame({}, {1}), kId, 0);
  broken_report.back() ^= 1;
  const Bytes cases[] = {
      {},
      {1},
      Bytes(whole.begin(), whole.begin() + 27),
      Bytes(whole.begin(), whole.end() - 1),  // shorter than its label says
      Message(Bytes(19), kId, TagOf(request)),
      Bytes(1000, 0xFF),
      other_label,
      broken_report,
  };
  for (const Bytes& packet : cases) daemon_.Send(packet);
  daemon_.Send(whole);
  EXPECT_TRUE(call.get());
  EXPECT_EQ(client_->dropped(), std::size(cases));
  EXPECT_TRUE(reports_.empty());
}

TEST_F(ClientTest, ReplyWithWrongSumIsAnErrorOfItsRequest) {
  auto call = Call({.address = kRegister, .length = 1});
  Bytes reply = ReplyTo(NextRequest(), {1});
  reply.back() ^= 1;
  daemon_.Send(reply);
  const auto result = call.get();
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().trouble, Trouble::kGarbled);
}

TEST_F(ClientTest, DataEndsWhereTheFrameEnds) {
  auto call = Call({.address = kRegister, .length = 4});
  Bytes frame = Frame(HeadOf(NextRequest()), {1, 2});
  bus::DWQ_ENCWD(&frame[bus::frame::kDataLength], 4);  // says four, carries two
  bus::DWQ_ENCWD(&frame[frame.size() - 2],
                 bus::FrameSum(&frame[2], static_cast<std::int32_t>(frame.size()) - 4));
  daemon_.Send(Message(frame, kId, 1));
  const auto reply = call.get();
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply.value().data, (Bytes{1, 2}));
}

TEST_F(ClientTest, ReportsArriveInOrderBesideReplies) {
  for (std::uint8_t i = 0; i < 10; ++i) {
    daemon_.Send(Message(Frame({.registerAddress = 0x14000000U + i}, {i}), kId, 0));
  }
  Sync();
  const std::lock_guard lock(mutex_);
  ASSERT_EQ(reports_.size(), 10U);
  for (std::uint8_t i = 0; i < 10; ++i) {
    EXPECT_EQ(reports_[i].address, 0x14000000U + i);
    EXPECT_EQ(reports_[i].data, Bytes{i});
  }
}

TEST_F(ClientTest, DaemonThatDiesEndsEveryRequest) {
  std::atomic<int> ended{0};
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(
        client_->Start({.address = kRegister, .length = 1}, kLong, [&](const Result<Reply>& reply) {
          if (!reply && reply.error().trouble == Trouble::kDisconnected) ++ended;
        }));
  }
  auto call = Call({.address = kRegister, .length = 1});
  for (int i = 0; i < 21; ++i) NextRequest();
  daemon_.HangUp();
  const auto reply = call.get();
  ASSERT_FALSE(reply);
  EXPECT_EQ(reply.error().trouble, Trouble::kDisconnected);
  EXPECT_EQ(client_->Call({.address = 1, .length = 1}, kLong).error().trouble,
            Trouble::kDisconnected);
  ended_.wait(false);  // the client is told last
  client_.reset();
  EXPECT_EQ(ended, 20);
}

TEST_F(ClientTest, DestructionEndsWhatIsInFlight) {
  std::atomic<int> ended{0};
  ASSERT_TRUE(client_->Start({.address = 1, .length = 1}, kLong,
                             [&](const Result<Reply>& reply) { ended += reply ? 0 : 1; }));
  client_.reset();
  EXPECT_EQ(ended, 1);
  EXPECT_FALSE(ended_);
}

TEST_F(ClientTest, DaemonThatTakesNothingHoldsASendUntilItsTimeoutOnly) {
  const Request large{.operation = quivord::Operation::kWrite,
                      .address = kRegister,
                      .data = Bytes(bus::frame::kMostData)};
  std::atomic<int> ended{0};
  int started = 0;
  bool held = false;
  while (!held && started < 1000) {
    const auto begin = std::chrono::steady_clock::now();
    const auto sent = client_->Start(large, 100ms, [&](const Result<Reply>&) { ++ended; });
    held = std::chrono::steady_clock::now() - begin >= 100ms;
    ++started;
    if (!sent) {
      EXPECT_EQ(sent.error().trouble, Trouble::kTimeout);
      ++ended;
    }
  }
  EXPECT_TRUE(held);
  client_.reset();
  EXPECT_EQ(ended, started);  // each by an error or by its completion, never both
}

TEST_F(ClientTest, ManyThreadsShareOneClient) {
  std::atomic<bool> enough{false};
  std::thread echo([&] {
    while (!enough) {
      const auto request = daemon_.Receive();
      if (!request.has_value()) return;
      const auto address = static_cast<std::uint8_t>(HeadOf(*request).registerAddress);
      daemon_.Send(ReplyTo(*request, {address}));
    }
  });
  std::vector<std::thread> callers;
  std::atomic<int> right{0};
  for (std::uint8_t caller = 1; caller <= 4; ++caller) {
    callers.emplace_back([&, caller] {
      for (int i = 0; i < 200; ++i) {
        const auto reply = client_->Call({.address = caller, .length = 1}, kLong);
        right += reply && reply.value().data == Bytes{caller} ? 1 : 0;
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  enough = true;
  (void)client_->Start({.address = 0, .length = 1}, kLong, [](const Result<Reply>&) {});
  echo.join();
  EXPECT_EQ(right, 4 * 200);
}

TEST(ClientConnect, NoDaemonAndTooLongAPathAreToldApart) {
  const auto absent = Client::Connect({.board = "/nonexistent", .id = kId});
  ASSERT_FALSE(absent);
  EXPECT_EQ(absent.error().trouble, Trouble::kNoDaemon);
  EXPECT_NE(absent.error().text.find("/nonexistent"), std::string::npos);
  const auto too_long = Client::Connect({.board = "/" + std::string(200, 'x'), .id = kId});
  ASSERT_FALSE(too_long);
  EXPECT_EQ(too_long.error().trouble, Trouble::kWrongUse);
}

TEST(ClientConnect, WaitsForItsTurnAtABusyDaemon) {
  support::FakeDaemon busy;  // lets two connections wait
  const auto connect = [&] { return bool(Client::Connect({.board = busy.board(), .id = kId})); };
  ASSERT_TRUE(connect() && connect());
  auto third = std::async(std::launch::async, connect);
  EXPECT_EQ(third.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  busy.Accept();
  EXPECT_TRUE(third.get());
}

}  // namespace
