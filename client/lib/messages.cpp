#include "quivord/messages.h"

#include <array>

namespace quivord {

std::string_view AckText(std::uint8_t ack) {
  // In the order of the acks' numbers.
  constexpr std::array<std::string_view, 8> kTexts = {
      "done",
      "the card behind the port did not answer",
      "the request arrived with a wrong checksum",
      "the reply had a wrong checksum",
      "no such register, or not this operation or length there",
      "the address and length do not fit",
      "the length is below or above what the register takes",
      "the register does not take this operation",
  };
  return ack < kTexts.size() ? kTexts[ack] : "a refusal of unknown kind";
}

}  // namespace quivord
