#include "access/brightness.h"

#include <algorithm>
#include <thread>

#include "access/work.h"
#include "process/calc_time.h"
#include "proto/calc_feature.h"

namespace quivord::access {
namespace {

namespace table = ZEPH_MCUC::brightness;
using brightness::Bytes;
using std::chrono::steady_clock;

constexpr std::size_t kPiece = 512;
constexpr auto kPatience = std::chrono::seconds(5);
constexpr auto kLook = std::chrono::milliseconds(50);
constexpr std::uint16_t kClockBytes = 6;
constexpr std::uint8_t kNoMode = 0;

std::uint32_t AddressOf(std::size_t offset) {
  return table::kBase + static_cast<std::uint32_t>(offset);
}

}  // namespace

Outcome BrightnessDevice::Write(std::size_t offset, Bytes data) {
  const auto written = registers_.Write(AddressOf(offset), std::move(data));
  return written ? Outcome(Done{}) : written.error();
}

Result<Bytes> BrightnessDevice::ReadTable() {
  auto whole = registers_.ReadWhole(AddressOf(0), kPiece);
  if (!whole) return whole;
  Bytes& bytes = whole.value();
  const std::size_t size = brightness::TableSize(bytes);
  while (bytes.size() < size) {
    const auto piece =
        registers_.ReadWhole(AddressOf(bytes.size()), std::min(kPiece, size - bytes.size()));
    if (!piece) return piece;
    bytes.insert(bytes.end(), piece.value().begin(), piece.value().end());
  }
  bytes.resize(size);
  return whole;
}

std::optional<table::Moment> BrightnessDevice::ReadClock() {
  using namespace ZEPH_MCUC;
  const auto read = registers_.ReadWhole(feature::kBase + feature::kClock, kClockBytes);
  if (!read) return std::nullopt;
  const std::span<const std::uint8_t> bcd(read.value());
  if (!IsTime(bcd.first<kClockBytes>())) return std::nullopt;
  table::Moment now{FromBcd(bcd[0]), FromBcd(bcd[1]), FromBcd(bcd[2]),
                    FromBcd(bcd[3]), FromBcd(bcd[4]), FromBcd(bcd[5])};
  now.weekday = static_cast<std::uint8_t>(WeekdayOf(now.year, now.month, now.day) % 7 + 1);
  return now;
}

Outcome BrightnessDevice::WritePieces(const Bytes& bytes, const Progress& progress) {
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(at + kPiece, bytes.size());
    Outcome written = Write(at, {bytes.begin() + static_cast<std::ptrdiff_t>(at),
                                 bytes.begin() + static_cast<std::ptrdiff_t>(end)});
    if (!written) return written;
    progress(at = end);
  }
  return Done{};
}

Outcome BrightnessDevice::WriteTable(const Bytes& bytes, const Progress& progress) {
  const bool file = table::IsMixFamily(bytes[0]);
  Outcome written = Done{};
  if (file) {
    written = WritePieces(bytes, progress);
  } else {
    // Under its own mode a table lives in memory only. Under none it is stored; the mode byte alone
    // then puts it in force.
    Bytes stored = bytes;
    stored[0] = kNoMode;
    written = WritePieces(stored, progress);
    if (written) written = Write(0, {bytes[0]});
  }
  if (written) written = Await(bytes);
  // The first bytes are read from memory, where they show before they are stored.
  if (written) written = AwaitWork(registers_, kPatience);
  return written ? CheckStored(bytes) : written;
}

Outcome BrightnessDevice::Await(const Bytes& bytes) {
  const auto deadline = steady_clock::now() + kPatience;
  while (true) {
    const auto read = ReadTable();
    if (!read) return read.error();
    if (read.value() == bytes) return Done{};
    if (steady_clock::now() >= deadline) {
      return Error{Trouble::kRefused, "the device took it, but after 5 seconds holds another plan"};
    }
    std::this_thread::sleep_for(kLook);
  }
}

// A read that ends behind the bytes in memory is answered from flash, all of it. The mode byte
// can't be read so; it is stored together with what follows it.
Outcome BrightnessDevice::CheckStored(const Bytes& bytes) {
  const auto stored = registers_.ReadWhole(AddressOf(1), kPiece);
  if (!stored) return stored.error();
  const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(bytes.size(), kPiece + 1));
  if (std::equal(bytes.begin() + 1, end, stored.value().begin())) return Done{};
  return Error{Trouble::kRefused,
               "the device took it, but didn't store it: a restart brings back what was stored"};
}

Target AllCards() { return {ZEPH_MCUC::JSHL_TypeReceiver, table::kAllPorts, table::kAllBoards}; }

}  // namespace quivord::access
