// The flash writes that no `sync` has followed yet, kept in a file of the board, so that a power
// cut can lose some of them. Called under the lock on the stores.
#pragma once

#include <cstdint>
#include <span>

#include "board/stores.h"

namespace board {

// Notes one write: what the bytes were and what they are now. Where the file can't be written, on a
// full disk for instance, nothing is noted any more until it can.
void NoteWrite(Store store, std::uint32_t address, std::span<const std::uint8_t> before,
               std::span<const std::uint8_t> after);

// Drops each noted write or keeps it, as a random sequence from `seed` says: the stores then hold
// what they held at the last `sync` with the kept writes applied in their order. A seed of 0 keeps
// all.
void LoseWrites(std::uint32_t seed);

// Nothing is noted any more: the stores have been replaced.
void ForgetWrites();

}  // namespace board
