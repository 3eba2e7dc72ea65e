// A wall in words, as the picture and the text of a wall share them.
#pragma once

#include <string>
#include <vector>

#include "wall/model.h"

namespace quivord::wall {

// "384 × 512", with `between` in place of " × ".
std::string SizeText(std::uint64_t width, std::uint64_t height, const char* between = " × ");

// "0", "1, 3, 5", "4 to 9": numbers in ascending order.
std::string ListText(const std::vector<std::uint8_t>& numbers);

// A connection mode for people: "from the top left, by rows"; a number that names none says so.
std::string ModeText(std::uint8_t mode);

// The ports that repeat `port`.
std::vector<std::uint8_t> RepeatedBy(const Wall& wall, const Port& port);

// Cabinets of the fullest cable.
std::size_t LongestCable(const Wall& wall);

}  // namespace quivord::wall
