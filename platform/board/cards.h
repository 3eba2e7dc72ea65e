// The devices behind the output ports: what each remembers, and the file `cards` that shows part of
// it to other processes and lets them change it. Any thread may call any function.
#pragma once

#include <cstdint>
#include <span>

#include "board/settings.h"

namespace board {

// Creates the file `cards` where it is missing. One whose list isn't what is wired to the board is
// made anew, and the link bits with it.
void CreateCards();

// The same, and takes hold of the file: what becomes of it later does not end this process.
void OpenCards();

// Whom a packet is for. A port of kAllPorts is every port, a board of kAllBoards every device of
// the type on the port.
struct CardAddress {
  std::uint8_t device_type;  // 1 to kDeviceTypes; nobody has another
  std::uint16_t port;
  std::uint16_t board;
};

inline constexpr std::uint16_t kAllPorts = 0xFF;
inline constexpr std::uint16_t kAllBoards = 0xFFFF;

// Each card that the address means takes the bytes from register `first` up.
void WriteCards(const CardAddress& to, std::uint32_t first, std::span<const std::uint8_t> data);

// Each card that the address means has seen a packet that changes nothing.
void TouchCards(const CardAddress& to);

// What one card answers for its registers from `first` up. False where the address means no single
// card that is there; `data` is then as before.
bool ReadCard(const CardAddress& from, std::uint32_t first, std::span<std::uint8_t> data);

}  // namespace board
