#include "peer.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>

#include "access/brightness.h"
#include "access/wall.h"
#include "brightness/file.h"
#include "brightness/text.h"
#include "brightness/words.h"
#include "wall/file.h"
#include "wall/text.h"

namespace quivord::python {
namespace {

namespace bus = ZEPH_MCUC;

constexpr std::size_t kMostReports = 10'000;
constexpr std::int64_t kMostRead = 65516;  // bytes that one frame carries
constexpr double kMostSeconds = 3600;

// Identifiers of this module's peers: 64 of them a process.
constexpr std::uint32_t kOwnTasks = 0x400000;

Fault WrongUse(const std::string& text) { return Fault({Trouble::kWrongUse, text}); }

template <class Value>
Value Want(Result<Value> result) {
  if (!result) throw Fault(result.error());
  return std::move(result.value());
}

std::uint32_t OwnTask() {
  static std::atomic<std::uint32_t> count{0};
  const auto process = static_cast<std::uint32_t>(getpid()) & 0x7FFF;
  return kOwnTasks + process * 64 + count++ % 64;
}

std::uint32_t TaskNumber(const std::string& word) {
  if (word.empty()) return OwnTask();
  const auto task = access::Look(access::kTasks, word);
  if (!task.has_value()) throw WrongUse("a task is owd, kye or moirad");
  return *task;
}

std::uint16_t PlaceNumber(std::optional<int> number, int most, std::uint16_t all,
                          const char* what) {
  if (!number.has_value()) return all;
  if (*number >= 0 && *number <= most) return static_cast<std::uint16_t>(*number);
  throw WrongUse(std::string(what) + " is 0 to " + std::to_string(most) + ", or None for all");
}

Target TargetOf(const Whose& whose) {
  const auto device = access::Look(access::kDevices, whose.device);
  if (!device.has_value()) {
    throw WrongUse("a device is sender, receiver, multi, distribute or launcher");
  }
  return {*device, static_cast<std::uint8_t>(PlaceNumber(whose.port, 15, 0xFF, "port")),
          PlaceNumber(whose.card, 0xFFFE, 0xFFFF, "card")};
}

std::chrono::milliseconds Timeout(double seconds) {
  if (!(seconds > 0 && seconds <= kMostSeconds)) {
    throw WrongUse("a timeout is a number of seconds above 0, at most 3600");
  }
  return std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(seconds * 1000)));
}

std::uint32_t AddressOf(std::int64_t address) {
  if (address < 0 || address > UINT32_MAX) throw WrongUse("an address is 0 to 0xFFFFFFFF");
  return static_cast<std::uint32_t>(address);
}

Whose Sender() { return {"sender", 0, 0}; }

}  // namespace

void Inbox::Put(const Report& report) {
  const std::lock_guard lock(mutex_);
  if (reports_.size() == kMostReports) reports_.pop_front();
  reports_.push_back(report);
  changed_.notify_one();
}

void Inbox::End(const Error& error) {
  const std::lock_guard lock(mutex_);
  ended_ = error;
  changed_.notify_all();
}

std::optional<Report> Inbox::Take(std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, wait, [this] { return !reports_.empty() || ended_.has_value(); });
  if (!reports_.empty()) {
    Report report = std::move(reports_.front());
    reports_.pop_front();
    return report;
  }
  if (ended_.has_value()) throw Fault(*ended_);
  return std::nullopt;
}

Peer::Peer(const std::string& folder, const std::string& task)
    : place_(access::FindPlace(folder)),
      client_(Want(Client::Connect(
          {.board = place_.board,
           .id = bus::TaskId(place_.slot, TaskNumber(task)),
           .on_report = [inbox = inbox_](const Report& report) { inbox->Put(report); },
           .on_end = [inbox = inbox_](const Error& error) { inbox->End(error); }}))) {}

access::Registers Peer::Registers(const Whose& whose, double seconds) const {
  return {*client_, TargetOf(whose), Timeout(seconds)};
}

Bytes Peer::Read(const Whose& whose, std::int64_t address, std::int64_t length,
                 double seconds) const {
  if (length < 0 || length > kMostRead) throw WrongUse("a read is of 0 to 65516 bytes");
  return Want(
             Registers(whose, seconds).Read(AddressOf(address), static_cast<std::uint16_t>(length)))
      .data;
}

void Peer::Write(const Whose& whose, std::int64_t address, Bytes data, double seconds) const {
  Want(Registers(whose, seconds).Write(AddressOf(address), std::move(data)));
}

std::string Peer::ShowWall(double seconds) const {
  const auto device = std::make_unique<access::WallDevice>(Registers(Sender(), seconds));
  Want(device->Read(access::WallDevice::Scope::kAll));
  return wall::ShowJson(wall::Understand(device->bytes)).dump();
}

std::string Peer::ConfigureWall(const std::string& file, bool wait, double seconds) const {
  const wall::WallFile wanted = Want(wall::ParseFile(file));
  const auto device = std::make_unique<access::WallDevice>(Registers(Sender(), seconds));
  if (wanted.kind == wall::Kind::kAdvanced) {
    Want(device->Place(wanted.records));
  } else {
    Want(device->Configure(wanted.smart, wait));
    if (!wait) Want(device->Read(access::WallDevice::Scope::kAll));
  }
  return wall::ShowJson(wall::Understand(device->bytes)).dump();
}

std::string Peer::ShowPlan(double seconds) const {
  access::BrightnessDevice device(Registers(Sender(), seconds));
  const auto table = Want(device.ReadTable());
  return brightness::ShowJson(brightness::PlanOf(table), device.ReadClock()).dump();
}

void Peer::SendPlan(const std::string& file, double seconds) const {
  const auto plan = Want(brightness::ParsePlan(file));
  access::BrightnessDevice device(Registers(Sender(), seconds));
  Want(device.WriteTable(brightness::TableOf(plan), [](std::size_t /*sent*/) {}));
}

std::uint8_t BrightnessOf(const std::string& word) {
  const auto value = brightness::ParseBrightness(word);
  if (!value.has_value()) throw WrongUse("a brightness is 0 to 255, or a text as \"60%\"");
  return *value;
}

}  // namespace quivord::python
