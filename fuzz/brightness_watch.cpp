#include "brightness_watch.h"

#include <platform/recvcard.h>
#include <platform/system.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdlib>
#include <optional>
#include <span>

#include "proto/addr_hardwarebrightnessadjust.h"

namespace {

using namespace ZEPH_MCUC;
using Brightness = Addr_HardWareBrightnessAdjust;
using Values = std::bitset<256>;

constexpr std::int64_t kMicroseconds = 1'000'000;
constexpr std::size_t kArea = 0x1400;
constexpr std::uint8_t kAllPorts = 0xFF;

std::int64_t g_now_us = 0;
std::uint16_t g_light = 0;
std::array<int, 4> g_lastOnPort;
Values g_sentToAll;
std::optional<Values> g_given;  // what the mix can give

// --- What a plan can give, straight from its bytes

void AddPercent(Values& values, int percent) { values.set(255 * std::min(percent, 100) / 100); }

void AddNodes(Values& values, std::span<const std::uint8_t, kArea> area) {
  for (std::size_t i = 0; i < Brightness::ProgrammableAdjustPartNum; ++i) {
    const std::size_t at = Brightness::TimeNodeBaseAddr + 1U + 16 * i;
    if (at + 16 > kArea) return;
    if (area[at + 3] != 1 && area[at + 6] == 1) AddPercent(values, area[at + 5]);
  }
}

void AddMap(Values& values, std::span<const std::uint8_t, kArea> area) {
  const std::size_t base = Brightness::LuxMapBaseAddr;
  const std::size_t count = base < kArea ? area[base] : 0;
  if (count > 32 || base + 1 + 3 * count > kArea) return;
  for (std::size_t i = 0; i < count; ++i) {
    const int percent = area[base + 3 + 3 * i];
    AddPercent(values, percent);
    if (i == 0) continue;
    for (int rising = area[base + 3 * i]; rising < percent; ++rising) AddPercent(values, rising);
  }
}

void AddFallback(Values& values, std::span<const std::uint8_t, kArea> area) {
  const std::size_t at = Brightness::SensorValidBaseAddr;
  if (at + 3 <= kArea && area[at + 1] != 0) AddPercent(values, area[at + 2]);
}

const Values& GivenByMix() {
  if (!g_given.has_value()) {
    std::array<std::uint8_t, kArea> area{};
    Want(Brightness::ReadArea(0, area));
    g_given.emplace();
    AddNodes(*g_given, area);
    AddMap(*g_given, area);
    AddFallback(*g_given, area);
  }
  return *g_given;
}

// One of the mix's values, one on the way there, or the one before once more.
bool MixGives(std::uint8_t value) {
  const Values& given = GivenByMix();
  const std::uint8_t from = Brightness::LastGlobalBri;
  if (given[value] || (value == from && g_sentToAll[value])) return true;
  if (!Brightness::GradualAdjustControl || Brightness::MixBriAdjOccured == 0) return false;
  for (std::size_t to = 0; to < given.size(); ++to) {
    if (given[to] && std::min<std::size_t>(from, to) < value &&
        value < std::max<std::size_t>(from, to)) {
      return true;
    }
  }
  return false;
}

bool ListGives(std::uint16_t port, std::uint8_t value) {
  const auto& image = Brightness::ProgrammableTimeTableArray;
  for (std::size_t i = 0; i < Brightness::ProgrammableAdjustPartNum && i < 32; ++i) {
    if (port < 4 && (image[0x80 + i] >> port & 1) != 0 && image[0xA0 + i] == value) return true;
  }
  return false;
}

bool SensorGives(std::uint8_t value) {
  const auto& image = Brightness::ProgrammableTimeTableArray;
  const int bright = image[9];
  const int dark = image[10];
  const int steps = image[11];
  if (steps < 1 || steps > 32) return false;
  bool gives = value == bright || value == dark;
  for (int i = 0; i < steps; ++i) gives |= value == dark + i * (bright - dark) / steps;
  return gives;
}

bool MayGet(std::uint16_t port, std::uint8_t value) {
  if (Brightness::ProgrammableAdjustEnable) return ListGives(port, value);
  if (port != kAllPorts) return false;
  if (Brightness::AutoBrightnessAdjustEnable) return SensorGives(value);
  return Brightness::MixBrightnessAdjustEnable && Brightness::MixBriAdjustControl &&
         MixGives(value);
}

// --- What the cards get

void TakeBrightness(std::uint16_t port, std::uint8_t value) {
  Want(MayGet(port, value));
  if (port == kAllPorts) g_sentToAll.set(value);
  if (port < g_lastOnPort.size()) g_lastOnPort[port] = value;
}

void TakeScreen(std::uint8_t value) {
  Want(Brightness::SerialCtrlScreenBlackEnable && (value == 0 || value == 0xFF));
}

}  // namespace

namespace watch {

void SetTime(std::int64_t seconds) { g_now_us = seconds * kMicroseconds; }
void Wait(std::int64_t microseconds) { g_now_us += microseconds; }
void SetLight(std::uint16_t lux) { g_light = lux; }

void Begin() {
  g_lastOnPort.fill(-1);
  g_sentToAll.reset();
  TablesMayHaveChanged();
}

void TablesMayHaveChanged() { g_given.reset(); }
int LastOnPort(std::uint8_t port) { return g_lastOnPort.at(port); }

}  // namespace watch

// --- In the place of the board's link to the cards

std::int32_t WriteFPGAToRecvCard(std::uint8_t, RECVCARD_MESG_T* head, std::uint16_t port,
                                 const std::uint8_t* data) {
  if (head->RegisterAddr == 0x06000000) {
    Want(head->DeviceType == 2 && port <= 9 && head->length == 11 && data[0] <= 5);
    return 0;
  }
  Want(head->DeviceType == 1 && head->BoardAddr == 0xFFFF && head->length == 1);
  Want(head->RegisterAddr == 0x02000001 || head->RegisterAddr == 0x02000100);
  head->RegisterAddr == 0x02000001 ? TakeBrightness(port, data[0]) : TakeScreen(data[0]);
  return 0;
}

std::int32_t ReadFPGAformRecvCard(std::uint8_t, RECVCARD_MESG_T* head, std::uint16_t,
                                  std::uint8_t* data) {
  Want(head->RegisterAddr == 0x06000000 && head->length == 5);
  if (g_light == watch::kNoLight) return -1;
  const int half = g_light / 2;
  const std::uint8_t answer[] = {1, 2, static_cast<std::uint8_t>(0x80 | half >> 8),
                                 static_cast<std::uint8_t>(half), 0};
  std::ranges::copy(answer, data);
  return 0;
}

// --- In the place of the board's clock

namespace platform {

void SleepMicroseconds(std::uint64_t microseconds) {
  g_now_us += static_cast<std::int64_t>(microseconds);
}

void KeepTime() {}

std::time_t Time() { return g_now_us / kMicroseconds; }

int GetTimeOfDay(struct timeval* time, struct timezone*) {
  if (time != nullptr) *time = {g_now_us / kMicroseconds, g_now_us % kMicroseconds};
  return 0;
}

int SetTimeOfDay(const struct timeval* time, const struct timezone*) {
  g_now_us = time->tv_sec * kMicroseconds + time->tv_usec;
  return 0;
}

}  // namespace platform
