// The cards and the clock of the brightness fuzzer, in the place of the board's: the cards abort
// where they get what the plan in force can't give, the clock moves by the daemon's waits alone.
#pragma once

#include <cstdint>

#include "want.h"

namespace watch {

// The board's time. It stands still but for the daemon's waits and `Wait`.
void SetTime(std::int64_t seconds);
void Wait(std::int64_t microseconds);

// What every light sensor sees; `kNoLight` is a sensor that doesn't answer.
inline constexpr std::uint16_t kNoLight = 0xFFFF;
void SetLight(std::uint16_t lux);

// Forgets what the cards have got, at the beginning of an input.
void Begin();

// To be called after everything that may change a table: what a plan can give is found anew.
void TablesMayHaveChanged();

// The last brightness that a port got by its own number; -1 for none since `Begin`.
int LastOnPort(std::uint8_t port);

}  // namespace watch
