// The functions of the message bus, on the board's own bus.
#include <platform/mbus.h>
#include <poll.h>

#include <atomic>
#include <cstring>
#include <mutex>

#include "board/board.h"
#include "board/mbus_hub.h"
#include "board/mbus_warn.h"

namespace {

using board::mbus::Hub;
using board::mbus::Warn;

constexpr int kPauseWithoutBus = 100;  // milliseconds

std::atomic<Hub*> g_hub{nullptr};  // set once; lives until the process ends

Hub* TheHub() { return g_hub.load(std::memory_order_acquire); }

// Why the daemon's message can't go out, or null.
const char* Fault(const Hub& hub, taskid_t id, const void* buffer, uint32_t length) {
  if (id != hub.dispatcher()) return "its destination is not the dispatching task";
  if (buffer == nullptr || length < board::mbus::kEnvelopeSize) return "it has no envelope";
  if (length > board::mbus::kMostMessage) return "its frame has more than 65536 bytes";
  uint32_t frame = 0;
  std::memcpy(&frame, static_cast<const uint8_t*>(buffer) + board::mbus::kFrameSizeOffset,
              sizeof frame);
  if (frame != length - board::mbus::kEnvelopeSize) return "its label has another size than it";
  return nullptr;
}

}  // namespace

int32_t mbus_init(taskid_t id, int32_t flags) {
  static std::mutex once;
  const std::lock_guard lock(once);
  if (TheHub() != nullptr || flags != 0) {
    Warn("mbus_init wants flags 0 and is called once");
    return -1;
  }
  g_hub.store(Hub::Make(id).release(), std::memory_order_release);
  return TheHub() == nullptr ? -1 : 0;
}

int32_t mbus_loop_wait(void* self, mbus_handler_t handler) {
  Hub* hub = TheHub();
  if (hub != nullptr && handler != nullptr) return hub->Round(self, handler);
  poll(nullptr, 0, kPauseWithoutBus);
  return -1;
}

int32_t mbus_enq(mbus_msg_t** message) {
  Hub* hub = TheHub();
  if (hub == nullptr || message == nullptr || *message == nullptr) return -1;
  hub->Put(*message);
  return 0;
}

int32_t mbus_deq(mbus_msg_t** message) {
  Hub* hub = TheHub();
  if (hub == nullptr || message == nullptr) return -1;
  mbus_msg_t* oldest = hub->Take();
  if (oldest == nullptr) return -1;
  *message = oldest;
  return 0;
}

void* mbus_que_attach(mbus_msg_t* message) {
  return message == nullptr ? nullptr : message->bytes.get();
}

int32_t mbus_que_detach(mbus_msg_t* message, void* data) {
  Hub* hub = TheHub();
  if (hub == nullptr || message == nullptr) return -1;
  if (data != nullptr && data != message->bytes.get()) {
    Warn("mbus_que_detach wants the address that mbus_que_attach gave");
    return -1;
  }
  hub->Release(message);
  return 0;
}

int32_t mbus_send(taskid_t id, const void* buffer, uint32_t length) {
  Hub* hub = TheHub();
  if (hub == nullptr) return -1;
  const char* fault = Fault(*hub, id, buffer, length);
  if (fault != nullptr) {
    Warn("refused a message of the daemon: %s", fault);
    return -1;
  }
  const std::span message(static_cast<const uint8_t*>(buffer), length);
  board::mbus::TraceMessage('<', message);
  if (board::TakeFault(board::Fault::kBusSend)) return -1;
  hub->Send(message);
  return 0;
}

int32_t mbus_connect_chk_task_by_taskid(taskid_t id) {
  const Hub* hub = TheHub();
  return hub != nullptr && hub->Connected(id) ? 0 : -1;
}
