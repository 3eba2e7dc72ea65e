#include "wall/words.h"

#include <algorithm>

namespace quivord::wall {

std::string SizeText(std::uint64_t width, std::uint64_t height, const char* between) {
  return std::to_string(width) + between + std::to_string(height);
}

std::string ListText(const std::vector<std::uint8_t>& numbers) {
  std::string text;
  for (std::size_t begin = 0; begin < numbers.size();) {
    std::size_t end = begin + 1;
    while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) ++end;
    if (end - begin < 3) end = begin + 1;  // two neighbours are no range
    if (!text.empty()) text += ", ";
    text += std::to_string(numbers[begin]);
    if (end - begin > 1) text += " to " + std::to_string(numbers[end - 1]);
    begin = end;
  }
  return text;
}

std::string ModeText(std::uint8_t mode) {
  if (!ZEPH_MCUC::IsConnectionMode(mode)) return "mode " + std::to_string(mode) + ", which is none";
  std::string words = ZEPH_MCUC::kConnectionModes[mode].name;  // "top-left-rows"
  const std::size_t corner = words.rfind('-');
  std::string side = words.substr(0, corner);
  std::ranges::replace(side, '-', ' ');
  return "from the " + side + ", by " + words.substr(corner + 1);
}

std::vector<std::uint8_t> RepeatedBy(const Wall& wall, const Port& port) {
  std::vector<std::uint8_t> numbers;
  for (const Port& other : wall.ports) {
    if (other.repeats == port.number) numbers.push_back(other.number);
  }
  return numbers;
}

std::size_t LongestCable(const Wall& wall) {
  std::size_t longest = 0;
  for (const Port& port : wall.ports) longest = std::max<std::size_t>(longest, port.cards);
  return longest;
}

}  // namespace quivord::wall
