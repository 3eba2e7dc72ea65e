// platform/mbus.h: the bus, as far as it goes alone, and the rest with a task that sends everything
// back.
#include <platform/mbus.h>
#include <platform/system.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <map>
#include <optional>
#include <thread>

#include "check/report.h"

namespace check {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::uint32_t kOwnTask = 0x0A4200, kDispatcher = 0x070400, kAbsentTask = 0x7E00FE;
constexpr std::size_t kEnvelopeSize = 28, kSizeOffset = 24;
constexpr std::size_t kMostFrame = 65536;
constexpr auto kLimit = seconds(10);

taskid_t InOwnSlot(std::uint32_t task) {
  return static_cast<taskid_t>(cardsel_bit_self()) << 24 | task;
}

using Bytes = std::vector<std::uint8_t>;

Bytes Message(taskid_t to, std::uint32_t number, std::size_t frame_size) {
  Bytes bytes(kEnvelopeSize + frame_size, static_cast<std::uint8_t>(number));
  const auto size = static_cast<std::uint32_t>(frame_size);
  std::memcpy(bytes.data(), &to, sizeof to);
  std::memcpy(&bytes[kSizeOffset], &size, sizeof size);
  std::memcpy(&bytes[kEnvelopeSize], &number, sizeof number);
  return bytes;
}

bool Send(Bytes bytes) {
  const bool sent = mbus_send(InOwnSlot(kDispatcher), bytes.data(),
                              static_cast<std::uint32_t>(bytes.size())) == 0;
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0xEE});  // the buffer may be reused at once
  return sent;
}

std::uint32_t WordAt(const std::uint8_t* bytes, std::size_t offset) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes + offset, sizeof word);
  return word;
}

// The bus's thread: puts each message into the bus's own queue, as the daemon does.
class Loop {
 public:
  Loop() : thread_([this] { Run(); }) {}
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;
  ~Loop() {
    ended_ = true;
    thread_.join();
  }

  // Whether each call of the handler was as promised.
  bool good() const { return good_; }

 private:
  void Run() {
    while (!ended_) mbus_loop_wait(this, Take);
  }

  static int32_t Take(mbus_sess_t*, void* self, void* data, int32_t length) {
    auto* const message = static_cast<mbus_msg_t*>(data);
    auto& loop = *static_cast<Loop*>(self);
    if (message == nullptr || length < static_cast<int32_t>(kEnvelopeSize)) loop.good_ = false;
    mbus_msg_t* queued = message;
    if (mbus_enq(&queued) < 0) loop.good_ = false;
    return 0;
  }

  std::atomic<bool> ended_{false};
  std::atomic<bool> good_{true};
  std::thread thread_;
};

// The next message, released already; nothing where none comes in time.
std::optional<Bytes> Receive() {
  const auto deadline = steady_clock::now() + kLimit;
  mbus_msg_t* message = nullptr;
  while (mbus_deq(&message) < 0) {
    if (steady_clock::now() > deadline) return std::nullopt;
    platform::SleepMicroseconds(100);
  }
  auto* const data = static_cast<std::uint8_t*>(mbus_que_attach(message));
  if (data == nullptr) return std::nullopt;
  const std::size_t frame = WordAt(data, kSizeOffset);
  Bytes bytes(data, data + kEnvelopeSize + std::min(frame, kMostFrame));
  if (mbus_que_detach(message, data) < 0) return std::nullopt;
  return bytes;
}

// Whether `bytes` is message `number` back from the echoing task; the other fields of the envelope
// are the bus's.
bool IsEcho(const Bytes& bytes, taskid_t echo, std::uint32_t number, std::size_t frame_size) {
  const Bytes sent = Message(echo, number, frame_size);
  return bytes.size() == sent.size() && WordAt(bytes.data(), 0) == echo &&
         std::equal(bytes.begin() + kEnvelopeSize, bytes.end(), sent.begin() + kEnvelopeSize);
}

void Alone(Report& report) {
  const auto start = steady_clock::now();
  mbus_loop_wait(nullptr, [](mbus_sess_t*, void*, void*, int32_t) { return 0; });
  report.Holds(steady_clock::now() - start < seconds(5), "the wait for messages has an end");
  mbus_msg_t* message = nullptr;
  report.Holds(mbus_deq(&message) < 0 && message == nullptr,
               "an empty queue gives nothing and leaves the pointer");
  const taskid_t absent = InOwnSlot(kAbsentTask);
  report.Holds(mbus_connect_chk_task_by_taskid(absent) == -1,
               "a task that is not there is not connected");
  bool sent = true;
  const auto before = steady_clock::now();
  for (std::uint32_t i = 0; i < 2000; ++i) sent = Send(Message(absent, i, 20)) && sent;
  report.Holds(sent && steady_clock::now() - before < seconds(5),
               "messages to a task that is not there are accepted at once");
}

void InOrder(Report& report, taskid_t echo) {
  constexpr std::uint32_t kCount = 500;
  bool sent = true, same = true;
  for (std::uint32_t i = 0; i < kCount; ++i) sent = Send(Message(echo, i, 20 + i % 50)) && sent;
  for (std::uint32_t i = 0; sent && same && i < kCount; ++i) {
    const auto bytes = Receive();
    same = bytes && IsEcho(*bytes, echo, i, 20 + i % 50);
  }
  report.Holds(sent && same, "messages come whole, from their sender, in their order");
}

void InOrderOfEachThread(Report& report, taskid_t echo) {
  constexpr std::uint32_t kThreads = 4, kCount = 100, kStep = 1000;
  const bool sent = AtOnce(kThreads, [&](int thread) {
    bool good = true;
    for (std::uint32_t i = 0; i < kCount; ++i) {
      good = Send(Message(echo, static_cast<std::uint32_t>(thread) * kStep + i, 20)) && good;
    }
    return good;
  });
  std::map<std::uint32_t, std::uint32_t> next;
  bool same = true;
  for (std::uint32_t i = 0; sent && same && i < kThreads * kCount; ++i) {
    const auto bytes = Receive();
    same = bytes && bytes->size() >= kEnvelopeSize + 4;
    if (!same) break;
    const std::uint32_t number = WordAt(bytes->data(), kEnvelopeSize);
    same = next[number / kStep]++ == number % kStep;
  }
  report.Holds(sent && same, "messages of each of several threads keep their order");
}

void WithEcho(Report& report, taskid_t echo) {
  Loop loop;
  const auto deadline = steady_clock::now() + kLimit;
  bool connected = false;
  while (!(connected = mbus_connect_chk_task_by_taskid(echo) != -1)) {
    if (steady_clock::now() > deadline) break;
    platform::SleepMicroseconds(1000);
  }
  if (!report.Holds(connected, "the task that echoes is connected")) return;
  InOrder(report, echo);
  InOrderOfEachThread(report, echo);
  const bool sent = Send(Message(echo, 7, kMostFrame));
  const auto bytes = Receive();
  report.Holds(sent && bytes && IsEcho(*bytes, echo, 7, kMostFrame),
               "a frame of 65536 bytes comes whole");
  mbus_msg_t* message = nullptr;
  report.Holds(mbus_deq(&message) < 0, "nothing comes twice");
  report.Holds(loop.good(), "the handler gets each message with its length and its own pointer");
}

}  // namespace

void Bus(Report& report, const Options& options) {
  report.Holds(cardsel_bit_self() == cardsel_bit_self(), "the slot code is stable");
  report.Holds(mbus_init(InOwnSlot(kOwnTask), 0) >= 0, "the daemon's task is registered");
  Alone(report);
  if (options.echo) return WithEcho(report, *options.echo);
  report.Skip("what arrives, and in which order", "needs --echo TASK");
}

}  // namespace check
