// The daemon as a fuzz target sees it: on a board of its own in memory, without threads, without
// waiting and without a shell. What one input leaves behind the next one meets, as on a device;
// what must not be carried over the target resets itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "want.h"

namespace world {

using Bytes = std::span<const std::uint8_t>;

// Makes the board and joins the daemon, once; the calls below do it first.
void Start();

// A frame as the bus brings it: decoded, served, answered. The number of messages that the daemon
// sent meanwhile, each of which was a whole frame with the right sum.
int Deliver(Bytes frame);

// The live store as it stands, without the daemon.
void PutStore(std::uint32_t address, Bytes bytes);

// `length` bytes of the live store from `address` on become what a new store holds there.
void ResetStore(std::uint32_t address, std::size_t length);

// The environment store's text.
void PutEnvironment(Bytes text);

}  // namespace world
