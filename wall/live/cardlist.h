// What the receiving cards show, from the board's list of cards. Pure; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace quivord::live {

// More records than this are not looked at; a wall has 2048 cabinets.
inline constexpr std::size_t kMostCards = 65536;

struct CardState {
  std::uint8_t brightness = 0;
  std::array<std::uint8_t, 4> colours = {};  // red, green, blue, virtual red
  std::uint8_t screen = 0;                   // the screen control byte
  std::uint8_t mapping = 0;
  bool takesPart = false;
  std::uint16_t width = 0;  // pixels
  std::uint16_t height = 0;

  bool operator==(const CardState&) const = default;
};

// Neighbours on a cable that show the very same.
struct CardRun {
  std::size_t count = 0;
  CardState state;

  bool operator==(const CardRun&) const = default;
};

struct CardList {
  std::map<std::uint8_t, std::vector<CardRun>> ports;  // receiving cards, from board 0 up
  std::array<std::size_t, 4> devices = {};             // of each device type, 1 to 4
};

// The records that a file of `size` bytes with this header holds, as many as are looked at; 0 where
// the header isn't one.
inline constexpr std::size_t kCardHeader = 16;
std::size_t CardCount(std::span<const std::uint8_t, kCardHeader> header, std::uint64_t size);

// Understands whole records. Those of a port that don't go on from the board before end its list.
CardList ReadCards(std::span<const std::uint8_t> records);

}  // namespace quivord::live
