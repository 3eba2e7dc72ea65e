// The board's character devices: the clock chip.
#include <platform/system.h>

#include <cstring>
#include <memory>
#include <set>

#include "board/board.h"

namespace board {
namespace {

constexpr std::string_view kClockChip = "/dev/i2cdev9";
constexpr unsigned long kI2cRequest = 0xC10065A0;

// The fields of the chip's request, by their offsets in 32-bit words, and what they hold.
namespace chip {
constexpr std::size_t kLength = 0, kType = 1, kCommand = 2;
constexpr std::size_t kSubtype = 54, kDevice = 55;
constexpr std::size_t kOutClock = 59, kFrequency = 60, kOutSelect = 61, kModeSelect = 62;

struct Field {
  std::size_t index;
  std::uint32_t value;
};
constexpr Field kFixed[] = {{kLength, 256}, {kType, 1}, {kCommand, 2}, {kSubtype, 6}, {kDevice, 9}};
}  // namespace chip

std::uint32_t WordAt(const void* record, std::size_t index) {
  std::uint32_t word = 0;
  std::memcpy(&word, static_cast<const char*>(record) + index * sizeof word, sizeof word);
  return word;
}

bool IsClockSetting(const void* record) {
  for (const chip::Field& field : chip::kFixed) {
    if (WordAt(record, field.index) != field.value) return false;
  }
  return true;
}

struct OpenDevices {
  std::mutex lock;
  std::set<int> numbers;
};

OpenDevices& Devices() {
  static OpenDevices& devices = *std::make_unique<OpenDevices>().release();
  return devices;
}

bool IsOpen(int device) {
  const std::lock_guard hold(Devices().lock);
  return Devices().numbers.count(device) != 0;
}

int SetClockChip(const void* record) {
  const auto order = TraceOrder(TraceKind::kClockChip);
  const bool done = !TakeFault(Fault::kClockChip);
  if (order) {
    std::string words;
    for (const auto index :
         {chip::kOutClock, chip::kFrequency, chip::kOutSelect, chip::kModeSelect}) {
      words += (words.empty() ? "" : " ") + std::to_string(WordAt(record, index));
    }
    Trace(TraceKind::kClockChip, words);
  }
  return done ? 0 : -1;
}

}  // namespace
}  // namespace board

namespace platform {

int OpenDevice(const char* path, int) {
  if (path == nullptr || path != board::kClockChip) {
    std::fprintf(stderr, "board: no such device: %s\n", path == nullptr ? "null" : path);
    return -1;
  }
  const std::lock_guard hold(board::Devices().lock);
  auto& numbers = board::Devices().numbers;
  const int device = numbers.empty() ? 0 : *numbers.rbegin() + 1;
  numbers.insert(device);
  return device;
}

int ControlDevice(int device, unsigned long request, void* argument) {
  if (!board::IsOpen(device) || request != board::kI2cRequest || argument == nullptr ||
      !board::IsClockSetting(argument)) {
    std::fprintf(stderr, "board: device %d has no such request: 0x%lx\n", device, request);
    return -1;
  }
  return board::SetClockChip(argument);
}

void CloseDevice(int device) {
  const std::lock_guard hold(board::Devices().lock);
  board::Devices().numbers.erase(device);
}

}  // namespace platform
