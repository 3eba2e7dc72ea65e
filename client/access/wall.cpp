#include "access/wall.h"

#include <algorithm>
#include <memory>
#include <thread>

#include "wall/apply.h"
#include "wall/check.h"
#include "wall/words.h"

namespace quivord::access {
namespace {

namespace shortcut = ZEPH_MCUC::shortcut;
using wall::DeviceBytes;

constexpr auto kPatience = std::chrono::seconds(5);
constexpr auto kLook = std::chrono::milliseconds(100);

// A layout starts up to two beats of 200 ms after the request. A wall that is there sooner may be
// the one from before, with another one still to come.
constexpr auto kSettled = std::chrono::milliseconds(500);

Error NotSent(const std::string& why) { return {Trouble::kRefused, "not sent: " + why}; }

// What keeps the record of a device from being the one that was sent.
std::optional<std::string> RecordMissing(const DeviceBytes& bytes, const wall::Smart& smart) {
  const wall::Smart found = wall::Understand(bytes).smart;
  if (found == smart) return std::nullopt;
  return "its record says " + wall::SizeText(found.rows, found.columns, " x ") + ", mode " +
         std::to_string(found.mode) + ", " + std::to_string(found.perCable) + " a cable";
}

// What keeps its wall from being the one that `apply` lays out.
template <class Apply>
std::optional<std::string> WallMissing(const DeviceBytes& bytes, Apply apply) {
  const auto wanted = std::make_unique<DeviceBytes>(bytes);
  apply(*wanted);
  return wall::Difference(bytes, *wanted);
}

}  // namespace

Outcome WallDevice::Read(Scope scope) {
  for (const DeviceBytes::Part& part : bytes.Parts()) {
    const auto data = registers_.ReadWhole(part.address, part.bytes.size());
    if (!data) return data.error();
    std::copy(data.value().begin(), data.value().end(), part.bytes.begin());
    if (scope == Scope::kRecord) break;  // the record comes first
  }
  return Done{};
}

Outcome WallDevice::WriteRecord(std::uint32_t begin, std::uint32_t end) {
  const auto written = registers_.Write(shortcut::kBase + begin,
                                        {bytes.record.begin() + begin, bytes.record.begin() + end});
  return written ? Outcome(Done{}) : written.error();
}

Outcome WallDevice::Await(Scope scope, const Missing& missing) {
  using Clock = std::chrono::steady_clock;
  const auto settling = scope == Scope::kAll ? kSettled : kSettled.zero();
  const auto begin = Clock::now();
  auto absent = begin;  // when it was last seen not to be there
  while (true) {
    if (Outcome read = Read(scope); !read) return read;
    const auto what = missing(bytes);
    const auto now = Clock::now();
    if (what.has_value()) absent = now;
    if (!what.has_value() && now - absent >= settling) return Done{};
    if (what.has_value() && now - begin >= kPatience) {
      return Error{Trouble::kRefused, "the device took it, but after 5 seconds " + *what};
    }
    std::this_thread::sleep_for(kLook);
  }
}

Outcome WallDevice::Configure(const wall::Smart& smart, bool wait) {
  if (const auto obstacle = wall::SmartObstacle(smart)) return NotSent(*obstacle);
  if (Outcome read = Read(Scope::kRecord); !read) return read;
  wall::PutSmart(smart, bytes.record);
  if (Outcome sent = WriteRecord(shortcut::kMode, shortcut::kBoxNumber + 2); !sent) return sent;
  if (!wait) {
    return Await(Scope::kRecord,
                 [&smart](const DeviceBytes& found) { return RecordMissing(found, smart); });
  }
  return Await(Scope::kAll, [&smart](const DeviceBytes& found) {
    return WallMissing(found, [&smart](DeviceBytes& wanted) { ApplySmart(smart, wanted); });
  });
}

Outcome WallDevice::Place(const wall::PortRecords& records) {
  if (const auto obstacle = wall::AdvancedObstacle(records)) return NotSent(*obstacle);
  if (Outcome read = Read(Scope::kRecord); !read) return read;
  wall::PutRecords(records, bytes.record);
  // All records in one write. It begins with a mode: a first byte of another kind may be a command.
  Outcome sent = WriteRecord(shortcut::PortRecord(0) + shortcut::kPortMode,
                             shortcut::PortRecord(wall::kPorts - 1) + shortcut::kPortY + 2);
  if (!sent) return sent;
  const auto submitted = registers_.Write(shortcut::kBase + shortcut::kStatus, {shortcut::kSubmit});
  if (!submitted) return submitted.error();
  return Await(Scope::kAll, [&records](const DeviceBytes& found) {
    return WallMissing(found, [&records](DeviceBytes& wanted) { ApplyAdvanced(records, wanted); });
  });
}

}  // namespace quivord::access
