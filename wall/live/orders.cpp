#include "live/orders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <span>

#include "board/faults.h"
#include "board/files.h"
#include "board/settings.h"
#include "json/object.h"

namespace quivord::live {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kMostJump_s = 10LL * 366 * 24 * 3600;
constexpr std::int64_t kMostCount = 1000000;
constexpr std::size_t kMostOrder = 1024;  // bytes

// Where a port's link stands: four ports a byte, in both places.
constexpr std::array<std::uint32_t, 4> kLinkCells = {0x1F, 0x9F, 0x126, 0x127};
constexpr std::uint32_t kLinkWord = 0xF05100;
constexpr int kPortsPerCell = 4;

Order ReadLux(const json::Object& object) {
  if (object.At("lux").is_string()) {
    if (object.Text("lux") != "fail") json::Wants(object.Place("lux"), "a number or \"fail\"");
    return LuxOrder{"fail"};
  }
  return LuxOrder{std::to_string(object.Whole<std::uint32_t>("lux", 0, UINT32_MAX))};
}

Order ReadFault(const json::Object& object) {
  const auto fault = board::FaultByName(object.Text("name"));
  if (!fault.has_value()) json::Wants(object.Place("name"), "the name of a fault");
  return FaultOrder{*fault, object.Whole<std::int32_t>("count", -1, kMostCount)};
}

Order ReadOrder(const json::Object& object) {
  const std::string order = object.Text("order");
  if (order == "link") {
    object.Only({"order", "port", "up"});
    object.At("up");
    return LinkOrder{object.Whole<int>("port", 0, board::kPorts - 1), object.FlagOr("up", false)};
  }
  if (order == "lux") {
    object.Only({"order", "lux"});
    return ReadLux(object);
  }
  if (order == "jump") {
    object.Only({"order", "seconds"});
    return JumpOrder{object.Whole<std::int64_t>("seconds", -kMostJump_s, kMostJump_s)};
  }
  if (order == "fault") {
    object.Only({"order", "name", "count"});
    return ReadFault(object);
  }
  json::Wants(object.Place("order"), "link, lux, jump or fault");
}

// Changes `N` bytes of a plain file in place: they must be there already.
template <std::size_t N, class Change>
std::string ChangeBytes(const fs::path& path, std::uint64_t at, Change change) {
  const board::FileHandle file(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return path.filename().string() + " can't be opened";
  }
  std::array<std::uint8_t, N> bytes{};
  const auto place = static_cast<off_t>(at);
  if (pread(file.get(), bytes.data(), N, place) != static_cast<ssize_t>(N)) {
    return path.filename().string() + " is cut short";
  }
  change(bytes);
  const bool done = pwrite(file.get(), bytes.data(), N, place) == static_cast<ssize_t>(N);
  return done ? "" : path.filename().string() + " can't be written";
}

std::string Do(const LinkOrder& order, const fs::path& folder) {
  const auto group = static_cast<std::size_t>(order.port / kPortsPerCell);
  const auto bit = static_cast<std::uint8_t>(1U << (order.port % kPortsPerCell));
  const auto set = [&](std::array<std::uint8_t, 1>& cell) {
    cell[0] = static_cast<std::uint8_t>(order.up ? cell[0] | bit : cell[0] & ~bit);
  };
  for (const std::uint64_t at :
       {std::uint64_t{kLinkCells[group]}, kLinkWord + std::uint64_t{group}}) {
    if (std::string fault = ChangeBytes<1>(folder / "fpga/1.mem", at, set); !fault.empty()) {
      return fault;
    }
  }
  return "";
}

std::string Do(const LuxOrder& order, const fs::path& folder) {
  const bool done = board::ReplaceWhole(folder / "sensors/lux", order.lux + "\n");
  return done ? "" : "sensors/lux can't be written";
}

std::string Do(const JumpOrder& order, const fs::path& folder) {
  bool fits = true;
  const std::string fault =
      ChangeBytes<8>(folder / "clock", 0, [&](std::array<std::uint8_t, 8>& bytes) {
        std::int64_t offset = 0;
        std::int64_t jumped = 0;
        std::memcpy(&offset, bytes.data(), bytes.size());
        fits = !__builtin_add_overflow(offset, order.seconds * 1000000, &jumped);
        if (fits) std::memcpy(bytes.data(), &jumped, bytes.size());
      });
  return fault.empty() && !fits ? "the clock is too far away already" : fault;
}

std::string Do(const FaultOrder& order, const fs::path& folder) {
  const auto at = static_cast<std::uint64_t>(order.fault) * sizeof order.count;
  return ChangeBytes<4>(folder / "faults", at, [&](std::array<std::uint8_t, 4>& bytes) {
    std::memcpy(bytes.data(), &order.count, bytes.size());
  });
}

}  // namespace

Result<Order> ParseOrder(std::string_view text) {
  if (text.size() > kMostOrder) return Error{Trouble::kWrongUse, "far too long for an order"};
  const auto value = json::Value::parse(text, nullptr, false);
  if (value.is_discarded()) return Error{Trouble::kWrongUse, "this is no JSON"};
  try {
    return ReadOrder(json::Object(value, "the order"));
  } catch (const json::Fault& fault) {
    return Error{Trouble::kWrongUse, fault.text};
  }
}

std::string CarryOut(const Order& order, const fs::path& folder) {
  std::error_code ignored;
  if (!fs::is_directory(folder, ignored)) return "there is no board in " + folder.string();
  return std::visit([&folder](const auto& one) { return Do(one, folder); }, order);
}

}  // namespace quivord::live
