#include "board/mbus_hub.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

#include "board/board.h"
#include "board/mbus_listen.h"
#include "board/mbus_warn.h"

namespace board::mbus {
namespace {

constexpr int kWaitMilliseconds = 500;
constexpr int kCollectedMilliseconds = 1;  // while something may be collected in the outbox
constexpr std::size_t kMostPeers = 512;
// The daemon looks for messages every 100 us at best, so while many come they may as well be read
// together: each look into the sockets that finds a few costs as much as one that finds all.
constexpr std::chrono::microseconds kGather(75);
constexpr int kAcceptAtOnce = 16;
constexpr taskid_t kDispatcherTask = 0x070400;
constexpr taskid_t kSlotMask = 0xFF000000;

bool Control(const FileHandle& poller, int operation, int descriptor, std::uint32_t events,
             void* owner) {
  epoll_event event{};
  event.events = events;
  event.data.ptr = owner;
  return epoll_ctl(poller.get(), operation, descriptor, &event) == 0;
}

}  // namespace

std::unique_ptr<Hub> Hub::Make(taskid_t id) {
  FileHandle listener = mbus::Listen(Folder() / "run" / "mbus");
  FileHandle poller(epoll_create1(EPOLL_CLOEXEC));
  FileHandle waker(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
  if (!listener || !poller || !waker) return nullptr;
  return std::unique_ptr<Hub>(
      new Hub(id, std::move(listener), std::move(poller), std::move(waker)));
}

Hub::Hub(taskid_t id, FileHandle listener, FileHandle poller, FileHandle waker)
    : id_(id),
      dispatcher_((id & kSlotMask) | kDispatcherTask),
      listener_(std::move(listener)),
      poller_(std::move(poller)),
      waker_(std::move(waker)),
      outbox_([this](std::shared_ptr<Peer> peer) {
        Ask({std::move(peer), true});
      }) {
  // An event's owner is its peer; the listener and the waker own theirs by these addresses.
  Control(poller_, EPOLL_CTL_ADD, listener_.get(), EPOLLIN, &peers_);
  Control(poller_, EPOLL_CTL_ADD, waker_.get(), EPOLLIN, &wishes_);
}

int32_t Hub::Round(void* self, mbus_handler_t handler) {
  std::array<epoll_event, 64> events;
  if (several_ && !left_) std::this_thread::sleep_for(kGather);
  several_ = left_ = false;
  const int count = epoll_wait(poller_.get(), events.data(), events.size(), WaitAtMost());
  if (count < 0) return errno == EINTR ? 0 : -1;
  if (outbox_.overdue()) outbox_.Flush();
  self_ = self;
  handler_ = handler;
  for (const epoll_event& event : std::span(events).first(count)) {
    if (event.data.ptr == &peers_) {
      AcceptAll();
    } else if (event.data.ptr == &wishes_) {
      GrantWishes();
    } else {
      Serve(*static_cast<Peer*>(event.data.ptr), event.events);
    }
  }
  ended_.clear();
  return 0;
}

// Nothing comes into the outbox but while messages wait for the daemon, and those come from here.
int Hub::WaitAtMost() const {
  return queue_.emptied() && !outbox_.pending() ? kWaitMilliseconds : kCollectedMilliseconds;
}

void Hub::Ask(Wish wish) {
  const std::lock_guard lock(wishing_);
  wishes_.push_back(std::move(wish));
  const std::uint64_t one = 1;
  if (write(waker_.get(), &one, sizeof one) < 0) return;  // full: `Round` is awake already
}

void Hub::GrantWishes() {
  std::uint64_t times = 0;
  if (read(waker_.get(), &times, sizeof times) < 0) return;
  std::vector<Wish> wishes;
  {
    const std::lock_guard lock(wishing_);
    wishes.swap(wishes_);
  }
  for (const Wish& wish : wishes) {
    if (wish.peer->closed) continue;
    (wish.writing ? wish.peer->writing : wish.peer->reading) = true;
    Watch(*wish.peer);
  }
}

void Hub::AcceptAll() {
  for (int i = 0; i < kAcceptAtOnce; ++i) {
    FileHandle socket(accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket) {
      // Out of descriptors: a connection that ends makes the next attempt worth while.
      if (errno == EMFILE || errno == ENFILE) SetListening(false);
      return;
    }
    if (peers_.size() >= kMostPeers && !MakeRoom()) {
      Warn("refused a connection: there are %zu already", peers_.size());
      continue;
    }
    peers_.push_back(std::make_shared<Peer>(std::move(socket)));
    Watch(*peers_.back());
  }
}

bool Hub::MakeRoom() {
  const auto silent = std::find_if(peers_.begin(), peers_.end(),
                                   [](const auto& peer) { return !peer->registered; });
  if (silent == peers_.end()) return false;
  Close(**silent);
  return true;
}

void Hub::SetListening(bool listening) {
  if (listening_ == listening) return;
  const std::uint32_t events = listening ? EPOLLIN : 0U;
  if (Control(poller_, EPOLL_CTL_MOD, listener_.get(), events, &peers_)) listening_ = listening;
}

// A socket that is waited on for nothing would still report its end, again and again, so it is
// taken out of the poller meanwhile.
void Hub::Watch(Peer& peer) {
  const std::uint32_t events =
      (peer.reading ? EPOLLIN | EPOLLRDHUP : 0U) | (peer.writing ? std::uint32_t{EPOLLOUT} : 0U);
  if (events == 0) {
    Control(poller_, EPOLL_CTL_DEL, peer.socket(), 0, nullptr);
    return;
  }
  if (!Control(poller_, EPOLL_CTL_MOD, peer.socket(), events, &peer) && errno == ENOENT) {
    Control(poller_, EPOLL_CTL_ADD, peer.socket(), events, &peer);
  }
}

void Hub::Close(Peer& peer) {
  if (std::exchange(peer.closed, true)) return;
  if (peer.registered) registry_.Remove(peer);
  peer.HangUp();
  Control(poller_, EPOLL_CTL_DEL, peer.socket(), 0, nullptr);
  const auto place = std::find_if(peers_.begin(), peers_.end(),
                                  [&](const auto& other) { return other.get() == &peer; });
  ended_.push_back(std::move(*place));
  peers_.erase(place);
  SetListening(true);
}

void Hub::Send(std::span<const std::uint8_t> message) {
  std::uint32_t id = 0;
  std::memcpy(&id, &message[kIdOffset], sizeof id);
  std::shared_ptr<Peer> peer = registry_.Find(id);
  if (peer == nullptr) return;  // accepted, and nobody is there to get it
  outbox_.Send(std::move(peer), message, queue_);
}

mbus_msg_t* Hub::Take() {
  mbus_msg_t* message = queue_.Take();
  if (message != nullptr) {
    Delivered(message);
  } else if (outbox_.pending()) {
    outbox_.Flush();
  }
  return message;
}

void Hub::Release(mbus_msg_t* message) {
  Delivered(message);
  pool_.Give(message);
}

void Hub::Delivered(mbus_msg_t* message) {
  std::shared_ptr<Peer> sender = std::move(message->sender);
  if (sender != nullptr && sender->CountOut(message->length)) Ask({std::move(sender), false});
}

}  // namespace board::mbus
