// The message bus between the processes of one device, and the card's place in its slot.
//
// Every message is a 28-byte envelope and a frame. The daemon sends everything to the dispatching
// task, number 0x070400, which delivers by the task identifier in the envelope's first four bytes;
// in a message that arrives these name the sender. The daemon's own number is 0x0A4200.
#pragma once

#include <cstdint>

extern "C" {

// (slot << 24) | number of the task.
typedef uint32_t taskid_t;

struct mbus_sess_t;
struct mbus_msg_t;

// Called by `mbus_loop_wait` on its own thread for each message: `self` as handed in, `data` the
// `mbus_msg_t*`, `length` the bytes of envelope and frame. Returns a code for the log; not read.
// The message is released by whoever took it: `mbus_que_detach`, also where it is dropped.
typedef int32_t (*mbus_handler_t)(mbus_sess_t* session, void* self, void* data, int32_t length);

// Registers this process as task `id`; afterwards its messages reach the callback. `flags` is 0.
// Failure: negative, and nothing arrives; it is not called again. Called once, before any other
// function of the bus but `cardsel_bit_self`, which gives `id` its slot.
int32_t mbus_init(taskid_t id, int32_t flags);

// Waits for messages and runs `handler` for each on the calling thread. Returns now and then, also
// with no message, so that the caller can look whether it shall end. Without a bus it waits a
// little and returns negative. One thread calls it.
int32_t mbus_loop_wait(void* self, mbus_handler_t handler);

// Puts `*message` at the end of the bus component's own queue; negative where it could not.
int32_t mbus_enq(mbus_msg_t** message);

// Takes the oldest queued message without waiting; negative where there is none, and `*message` is
// then as before.
int32_t mbus_deq(mbus_msg_t** message);

// The address of the message's first envelope byte, or null. The bytes stay until the detach. The
// label's size (offset 24) is the number of frame bytes that follow the envelope: the bus has
// checked it, and no more than 65536 follow.
void* mbus_que_attach(mbus_msg_t* message);

// Releases a message. `data` is what the attach gave; neither may be used afterwards.
int32_t mbus_que_detach(mbus_msg_t* message, void* data);

// Sends `length` bytes to task `id`. 0 when accepted; the buffer may be reused at once. Never waits
// for the receiver. Any thread, also several at a time; messages from one thread keep their order.
int32_t mbus_send(taskid_t id, const void* buffer, uint32_t length);

// -1 while task `id` is not connected, anything else when it is. Does not wait.
int32_t mbus_connect_chk_task_by_taskid(taskid_t id);

// This card's slot code, 0 to 255; stable while the process lives. Called before `mbus_init` too.
uint8_t cardsel_bit_self();

}  // extern "C"
