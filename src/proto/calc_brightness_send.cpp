#include "proto/calc_brightness_send.h"

#include <algorithm>
#include <numeric>

#include "proto/calc_brightness.h"

namespace ZEPH_MCUC::brightness {
namespace {

constexpr std::size_t kHeader = 12;
constexpr std::size_t kSum = 2;
constexpr uint8_t kReceivingCard = 1;
constexpr uint8_t kWrite = 1;

// Header, data and sum of a write of N bytes to all cards of a port.
template <std::size_t N>
std::array<uint8_t, kHeader + N + kSum> Frame(uint8_t port, uint32_t reg,
                                              const std::array<uint8_t, N>& data) {
  std::array<uint8_t, kHeader + N + kSum> frame = {kReceivingCard,
                                                   port,
                                                   kAllBoards & 0xFF,
                                                   kAllBoards >> 8,
                                                   kWrite,
                                                   0,
                                                   static_cast<uint8_t>(reg),
                                                   static_cast<uint8_t>(reg >> 8),
                                                   static_cast<uint8_t>(reg >> 16),
                                                   static_cast<uint8_t>(reg >> 24),
                                                   static_cast<uint8_t>(N),
                                                   static_cast<uint8_t>(N >> 8)};
  std::copy(data.begin(), data.end(), frame.begin() + kHeader);
  const uint32_t sum = std::accumulate(frame.begin(), frame.end() - kSum, 0U);
  frame[kHeader + N] = static_cast<uint8_t>(sum);
  frame[kHeader + N + 1] = static_cast<uint8_t>(sum >> 8);
  return frame;
}

// The screen's write: brightness, count of senders, then four bytes a sender.
constexpr std::size_t kCount = 1;
constexpr std::size_t kSenders = 3;
constexpr std::size_t kSenderSize = 4;
constexpr std::size_t kSenderPorts = 2;

}  // namespace

std::vector<uint8_t> RampValues(uint8_t from, uint8_t to, bool gradual) {
  if (!gradual || from == to) return {to};
  std::vector<uint8_t> values;
  for (int value = from; value != to;) {
    value += value < to ? 1 : -1;
    values.push_back(static_cast<uint8_t>(value));
  }
  return values;
}

std::array<uint8_t, 18> ColourFrame(uint8_t port, const Colours& colours) {
  return Frame<4>(port, kCardColours,
                  {colours.red, colours.green, colours.blue, colours.virtualRed});
}

std::array<uint8_t, 15> BrightnessFrame(uint8_t port, uint8_t brightness) {
  return Frame<1>(port, kCardBrightness, {brightness});
}

ScreenSent ScreenSentOf(std::span<const uint8_t> data) {
  ScreenSent sent;
  if (data.size() <= kSenders) return sent;
  sent.brightness = data[0];
  const std::size_t count = data[kCount] | data[kCount + 1] << 8;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = kSenders + i * kSenderSize;
    if (at + kSenderPorts >= data.size()) break;
    sent.senders.push_back({data[at], data[at + kSenderPorts]});
  }
  return sent;
}

}  // namespace ZEPH_MCUC::brightness
