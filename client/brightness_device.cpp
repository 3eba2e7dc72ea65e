#include <algorithm>
#include <fstream>
#include <iterator>
#include <thread>

#include "brightness/file.h"
#include "brightness_commands.h"
#include "process/calc_time.h"
#include "proto/calc_feature.h"

namespace ctl {
namespace {

namespace brightness = quivord::brightness;
namespace table = ZEPH_MCUC::brightness;
using brightness::Bytes;
using std::chrono::steady_clock;

constexpr std::size_t kPiece = 512;
constexpr auto kPatience = std::chrono::seconds(5);
constexpr auto kLook = std::chrono::milliseconds(50);
constexpr std::uintmax_t kMostFile = 1 << 20;  // a plan's file is some kilobytes
constexpr std::uint16_t kClockBytes = 6;
constexpr std::uint8_t kNoMode = 0;

bool Done(const Answer& answer) { return answer.exit == Exit::kDone; }

}  // namespace

Answer BrightnessDevice::Connect() {
  if (context_.options.target.device != ZEPH_MCUC::JSHL_TypeSender) {
    return {Exit::kWrongUse, "a plan is the sending card's; leave out --device", {}};
  }
  auto client = context_.Connect();
  if (!client) {
    const bool wrong = client.error().trouble == quivord::Trouble::kWrongUse;
    return {wrong ? Exit::kWrongUse : Exit::kNoAnswer, client.error().text, {}};
  }
  client_ = std::move(client.value());
  return {};
}

Answer BrightnessDevice::Read(std::size_t offset, std::size_t length) {
  Answer answer =
      ReadRegister(context_.options, *client_, table::kBase + static_cast<std::uint32_t>(offset),
                   static_cast<std::uint16_t>(length));
  if (Done(answer) && answer.data.size() != length) {
    return {Exit::kRefused, "the device answers with too few bytes", {}};
  }
  return answer;
}

Answer BrightnessDevice::Write(std::size_t offset, std::vector<std::uint8_t> data) {
  const std::uint32_t address = table::kBase + static_cast<std::uint32_t>(offset);
  if (auto obstacle = WriteObstacle(context_.options, address, data.size())) {
    return {Exit::kRefused, "not sent: " + *obstacle, {}};
  }
  return WriteRegister(context_.options, *client_, address, std::move(data));
}

Answer BrightnessDevice::ReadTable() {
  Answer whole = Read(0, kPiece);
  if (!Done(whole)) return whole;
  const std::size_t size = brightness::TableSize(whole.data);
  while (whole.data.size() < size) {
    const Answer piece = Read(whole.data.size(), std::min(kPiece, size - whole.data.size()));
    if (!Done(piece)) return piece;
    whole.data.insert(whole.data.end(), piece.data.begin(), piece.data.end());
  }
  whole.data.resize(size);
  return whole;
}

std::optional<table::Moment> BrightnessDevice::ReadClock() {
  using namespace ZEPH_MCUC;
  const Answer answer =
      ReadRegister(context_.options, *client_, feature::kBase + feature::kClock, kClockBytes);
  if (!Done(answer) || answer.data.size() != kClockBytes) return std::nullopt;
  const std::span<const std::uint8_t> bcd(answer.data);
  if (!IsTime(bcd.first<kClockBytes>())) return std::nullopt;
  table::Moment now{FromBcd(bcd[0]), FromBcd(bcd[1]), FromBcd(bcd[2]),
                    FromBcd(bcd[3]), FromBcd(bcd[4]), FromBcd(bcd[5])};
  now.weekday = static_cast<std::uint8_t>(WeekdayOf(now.year, now.month, now.day) % 7 + 1);
  return now;
}

Answer BrightnessDevice::WritePieces(const Bytes& bytes, const Progress& progress) {
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(at + kPiece, bytes.size());
    Answer answer = Write(at, {bytes.begin() + static_cast<std::ptrdiff_t>(at),
                               bytes.begin() + static_cast<std::ptrdiff_t>(end)});
    if (!Done(answer)) return answer;
    progress(at = end);
  }
  return {};
}

Answer BrightnessDevice::WriteTable(const Bytes& bytes, const Progress& progress) {
  const bool file = table::IsMixFamily(bytes[0]);
  Answer answer;
  if (file) {
    answer = WritePieces(bytes, progress);
  } else {
    // Under its own mode a table lives in memory only. Under none it is stored; the mode byte alone
    // then puts it in force.
    Bytes stored = bytes;
    stored[0] = kNoMode;
    answer = WritePieces(stored, progress);
    if (Done(answer)) answer = Write(0, {bytes[0]});
  }
  return Done(answer) ? Await(bytes) : answer;
}

Answer BrightnessDevice::Await(const Bytes& bytes) {
  const auto deadline = steady_clock::now() + kPatience;
  while (true) {
    const Answer answer = ReadTable();
    if (!Done(answer)) return answer;
    if (answer.data == bytes) return {};
    if (steady_clock::now() >= deadline) {
      return {Exit::kRefused, "the device took it, but after 5 seconds holds another plan", {}};
    }
    std::this_thread::sleep_for(kLook);
  }
}

PlanRead ReadPlan(Context& context) {
  BrightnessDevice device(context);
  PlanRead read;
  read.answer = device.Connect();
  if (Done(read.answer)) read.answer = device.ReadTable();
  if (!Done(read.answer)) return read;
  read.plan = brightness::PlanOf(read.answer.data);
  read.now = device.ReadClock();
  return read;
}

quivord::Result<brightness::Plan> LoadPlan(const std::filesystem::path& file) {
  const auto wrong = [&file](const std::string& text) {
    return quivord::Error{quivord::Trouble::kWrongUse, file.string() + ": " + text};
  };
  std::error_code failed;
  const std::uintmax_t size = std::filesystem::file_size(file, failed);
  if (failed) return wrong(failed.message());
  if (size > kMostFile) return wrong("far too large for a plan");
  std::ifstream stream(file);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  auto read = brightness::ParsePlan(text);
  if (!read) return wrong(read.error().text);
  return read;
}

}  // namespace ctl
