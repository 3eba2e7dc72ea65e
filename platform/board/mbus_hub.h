// The bus itself: its socket, its peers, and the loop that reads from them.
//
// One thread runs `Round`; all other public functions may be called from any thread.
#pragma once

#include <platform/mbus.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "board/files.h"
#include "board/mbus_message.h"
#include "board/mbus_outbox.h"
#include "board/mbus_peer.h"
#include "board/mbus_pool.h"
#include "board/mbus_reader.h"
#include "board/mbus_registry.h"

namespace board::mbus {

class Hub {
 public:
  // A bus on which the daemon is task `id`, or null where the socket could not be made.
  static std::unique_ptr<Hub> Make(taskid_t id);

  // Waits for peers, at most a good while, and runs `handler` for each message that has come.
  // Returns 0, or -1 where it could not wait.
  int32_t Round(void* self, mbus_handler_t handler);

  // Hands `message` (checked: envelope and frame) to the peer that its envelope names.
  void Send(std::span<const std::uint8_t> message);

  bool Connected(taskid_t id) const { return registry_.Find(id) != nullptr; }

  // The task that everything is sent to.
  taskid_t dispatcher() const { return dispatcher_; }

  // Messages between `Round`'s handler and whoever serves them: put, take the oldest or null,
  // release.
  void Put(mbus_msg_t* message) { queue_.Put(message); }
  mbus_msg_t* Take();
  void Release(mbus_msg_t* message);

 private:
  Hub(taskid_t id, FileHandle listener, FileHandle poller, FileHandle waker);

  struct Wish {
    std::shared_ptr<Peer> peer;
    bool writing;  // else reading
  };

  int WaitAtMost() const;
  void Ask(Wish wish);
  void GrantWishes();
  void AcceptAll();
  bool MakeRoom();
  void Serve(Peer& peer, std::uint32_t events);
  void ReadFrom(Peer& peer);
  bool Register(Peer& peer, std::span<const std::uint8_t> packet);
  mbus_msg_t* ToMessage(Peer& peer, std::span<const std::uint8_t> packet, bool oversize);
  void Deliver(mbus_msg_t* message);
  void Delivered(mbus_msg_t* message);
  void Watch(Peer& peer);
  void Close(Peer& peer);
  void SetListening(bool listening);

  const taskid_t id_;
  const taskid_t dispatcher_;
  const FileHandle listener_;
  const FileHandle poller_;
  const FileHandle waker_;  // wakes `Round` when there are wishes

  Registry registry_;
  MessageQueue queue_;
  Outbox outbox_;
  MessagePool pool_;  // taken from in `Round` only

  std::mutex wishing_;
  std::vector<Wish> wishes_;  // guarded by `wishing_`

  // Of the thread in `Round`.
  PacketReader reader_;
  std::vector<std::shared_ptr<Peer>> peers_;  // oldest first
  std::vector<std::shared_ptr<Peer>> ended_;  // kept until no event of this round can name them
  bool listening_ = true;
  bool several_ = false;  // a peer had sent several packets before this round
  bool left_ = false;     // and may have more
  void* self_ = nullptr;
  mbus_handler_t handler_ = nullptr;
};

// A line of the trace for one message, '>' towards the daemon or '<' from it; envelope included.
void TraceMessage(char direction, std::span<const std::uint8_t> message);

}  // namespace board::mbus
