#include "quivord/client.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "inflight.h"
#include "packet.h"
#include "socket.h"

namespace quivord {

class Client::Impl {
 public:
  Impl(Connection connection, Descriptor socket)
      : connection_(std::move(connection)),
        socket_(std::move(socket)),
        waker_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
        receiver_([this] { Receive(); }) {}

  ~Impl() {
    stopping_ = true;
    Wake();
    receiver_.join();
    End({Trouble::kDisconnected, "the client has ended"});
  }

  Outcome Start(const Request& request, std::chrono::milliseconds timeout, Completion completion);
  std::uint64_t dropped() const { return dropped_; }

 private:
  void Receive();
  bool TakePackets();
  void TakePacket(std::span<const std::uint8_t> packet);
  void TakeReply(const Arrival& arrival);
  void Expire();
  void End(const Error& error);
  void Wake();
  int PollTimeout();

  const Connection connection_;
  const Descriptor socket_;
  const Descriptor waker_;
  std::atomic<bool> stopping_{false};
  std::atomic<std::uint64_t> dropped_{0};

  std::mutex mutex_;  // guards what follows; never held while a callback runs
  InFlight in_flight_;
  std::optional<Error> ended_;
  Clock::time_point awake_at_ = Clock::time_point::max();  // when the receiver looks by itself

  std::vector<std::uint8_t> buffer_ = std::vector<std::uint8_t>(kMostPacket);  // the receiver's
  std::thread receiver_;  // last: runs from the end of the construction on
};

Outcome Client::Impl::Start(const Request& request, std::chrono::milliseconds timeout,
                            Completion completion) {
  auto packet = RequestPacket(request, 0, connection_.id);
  if (!packet) return packet.error();
  const Clock::time_point deadline = Clock::now() + timeout;
  std::uint32_t tag = 0;
  bool wake = false;
  {
    const std::lock_guard lock(mutex_);
    if (ended_.has_value()) return *ended_;
    tag = in_flight_.Add(request, deadline, std::move(completion));
    wake = deadline < awake_at_;
    if (wake) awake_at_ = deadline;
  }
  SetTag(tag, packet.value());
  if (wake) Wake();
  Outcome sent = SendPacket(socket_.get(), packet.value(), deadline);
  if (sent) return sent;
  const std::lock_guard lock(mutex_);
  // Where the completion is gone it has been called already, and with it the request has ended.
  return in_flight_.Take(tag) == nullptr ? Outcome(Done{}) : sent;
}

void Client::Impl::Receive() {
  while (!stopping_) {
    pollfd sources[] = {{socket_.get(), POLLIN, 0}, {waker_.get(), POLLIN, 0}};
    poll(sources, std::size(sources), PollTimeout());
    if (sources[1].revents != 0) {
      std::uint64_t times = 0;
      if (read(waker_.get(), &times, sizeof times) < 0) continue;
    }
    Expire();
    if (sources[0].revents != 0 && !TakePackets()) {
      End({Trouble::kDisconnected, "the daemon or the bus has ended the connection"});
      return;
    }
  }
}

// The receiver keeps its next look where it is until that time comes: a request that is answered
// early costs no second look, and one that is added later no wake-up.
int Client::Impl::PollTimeout() {
  const std::lock_guard lock(mutex_);
  const Clock::time_point now = Clock::now();
  if (awake_at_ <= now) {
    awake_at_ = in_flight_.NextDeadline().value_or(Clock::time_point::max());
  }
  if (awake_at_ == Clock::time_point::max()) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(awake_at_ - now).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, 60'000));
}

bool Client::Impl::TakePackets() {
  while (!stopping_) {
    const Received received = ReceivePacket(socket_.get(), buffer_);
    if (received.kind == Received::Kind::kEnd) return false;
    if (received.kind == Received::Kind::kNothing) return true;
    TakePacket(received.packet);
  }
  return true;
}

void Client::Impl::TakePacket(std::span<const std::uint8_t> packet) {
  const Arrival arrival = ReadPacket(packet);
  switch (arrival.kind) {
    case Arrival::Kind::kGarbage:
      ++dropped_;
      break;
    case Arrival::Kind::kReport:
      if (connection_.on_report == nullptr) break;
      connection_.on_report(
          {arrival.head.registerAddress, {arrival.data.begin(), arrival.data.end()}});
      break;
    case Arrival::Kind::kReply:
    case Arrival::Kind::kBrokenReply:
      TakeReply(arrival);
      break;
  }
}

void Client::Impl::TakeReply(const Arrival& arrival) {
  const bool broken = arrival.kind == Arrival::Kind::kBrokenReply;
  Completion completion;
  {
    const std::lock_guard lock(mutex_);
    completion =
        broken ? in_flight_.Take(arrival.tag) : in_flight_.TakeAnswered(arrival.tag, arrival.head);
  }
  if (completion == nullptr) {
    ++dropped_;
  } else if (broken) {
    completion(Error{Trouble::kGarbled, "the reply had a wrong checksum"});
  } else {
    completion(Reply{arrival.head.ack, {arrival.data.begin(), arrival.data.end()}});
  }
}

void Client::Impl::Expire() {
  std::vector<Completion> due;
  {
    const std::lock_guard lock(mutex_);
    due = in_flight_.TakeDue(Clock::now());
  }
  for (const Completion& completion : due) {
    completion(Error{Trouble::kTimeout, "the daemon did not answer in time"});
  }
}

void Client::Impl::End(const Error& error) {
  std::vector<Completion> open;
  {
    const std::lock_guard lock(mutex_);
    if (!ended_.has_value()) ended_ = error;
    open = in_flight_.TakeAll();
  }
  for (const Completion& completion : open) completion(error);
  if (!stopping_ && connection_.on_end != nullptr) connection_.on_end(error);
}

void Client::Impl::Wake() {
  const std::uint64_t one = 1;
  if (write(waker_.get(), &one, sizeof one) < 0) return;  // full: it is awake already
}

Client::Client(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Client::~Client() = default;

Result<std::unique_ptr<Client>> Client::Connect(Connection connection) {
  Result<Descriptor> socket = ConnectToBus(connection.board, connection.id);
  if (!socket) return socket.error();
  auto impl = std::make_unique<Impl>(std::move(connection), std::move(socket.value()));
  return std::unique_ptr<Client>(new Client(std::move(impl)));
}

Outcome Client::Start(const Request& request, std::chrono::milliseconds timeout,
                      Completion completion) {
  return impl_->Start(request, timeout, std::move(completion));
}

Result<Reply> Client::Call(const Request& request, std::chrono::milliseconds timeout) {
  struct Wait {
    std::mutex mutex;
    std::condition_variable arrived;
    std::optional<Result<Reply>> reply;
  };
  const auto wait = std::make_shared<Wait>();  // the completion may outlast this call by a moment
  Outcome started = Start(request, timeout, [wait](Result<Reply> reply) {
    const std::lock_guard lock(wait->mutex);
    wait->reply.emplace(std::move(reply));
    wait->arrived.notify_one();
  });
  if (!started) return started.error();
  std::unique_lock lock(wait->mutex);
  wait->arrived.wait(lock, [&] { return wait->reply.has_value(); });
  return std::move(*wait->reply);
}

std::uint64_t Client::dropped() const { return impl_->dropped(); }

}  // namespace quivord
