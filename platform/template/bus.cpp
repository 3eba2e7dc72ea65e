// The message bus: not here. Without it nobody can ask the daemon anything; begin a port with it.
#include <platform/mbus.h>
#include <platform/system.h>

#include "missing.h"

namespace {

constexpr char kBus[] = "the message bus (platform/mbus.h)";
constexpr int32_t kFailed = -1;
constexpr uint64_t kPause_us = 100'000;  // a loop without a bus shall not spin

}  // namespace

int32_t mbus_init(taskid_t, int32_t) { return missing::Say(kBus, kFailed); }

int32_t mbus_loop_wait(void*, mbus_handler_t) {
  platform::SleepMicroseconds(kPause_us);
  return missing::Say(kBus, kFailed);
}

int32_t mbus_enq(mbus_msg_t**) { return missing::Say(kBus, kFailed); }

int32_t mbus_deq(mbus_msg_t**) { return missing::Say(kBus, kFailed); }

void* mbus_que_attach(mbus_msg_t*) { return missing::Say(kBus, static_cast<void*>(nullptr)); }

int32_t mbus_que_detach(mbus_msg_t*, void*) { return missing::Say(kBus, kFailed); }

int32_t mbus_send(taskid_t, const void*, uint32_t) { return missing::Say(kBus, kFailed); }

int32_t mbus_connect_chk_task_by_taskid(taskid_t) { return missing::Say(kBus, kFailed); }

uint8_t cardsel_bit_self() { return missing::Say("the slot code (platform/mbus.h)", uint8_t{0}); }
