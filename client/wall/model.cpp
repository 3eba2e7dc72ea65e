#include "wall/model.h"

#include <algorithm>

namespace quivord::wall {
namespace {

namespace shortcut = ZEPH_MCUC::shortcut;
namespace feature = ZEPH_MCUC::feature;

// Register addresses of what `DeviceBytes` holds.
constexpr std::uint32_t kPositions = 0x03000000;
constexpr std::uint32_t kNumbers = 0x03100000;
constexpr std::uint32_t kCardSize = 0x02100006;

using Bytes = std::span<const std::uint8_t>;

std::uint16_t Word(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

void PutWord(std::span<std::uint8_t> bytes, std::size_t at, std::uint16_t value) {
  bytes[at] = static_cast<std::uint8_t>(value);
  bytes[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

Kind KindOf(std::uint8_t status) {
  switch (status) {
    case ZEPH_MCUC::kConfiguredSmart:
      return Kind::kSmart;
    case ZEPH_MCUC::kConfiguredAdvanced:
      return Kind::kAdvanced;
    case ZEPH_MCUC::kConfiguredBySoftware:
      return Kind::kSoftware;
    default:
      return Kind::kNone;
  }
}

Smart ReadSmart(Bytes record) {
  return {.rows = record[shortcut::kRows],
          .columns = record[shortcut::kColumns],
          .perCable = Word(record, shortcut::kBoxNumber),
          .mode = record[shortcut::kMode]};
}

PortRecord ReadRecord(Bytes record) {
  return {.mode = record[shortcut::kPortMode],
          .rows = record[shortcut::kPortRows],
          .columns = record[shortcut::kPortColumns],
          .x = Word(record, shortcut::kPortX),
          .y = Word(record, shortcut::kPortY)};
}

std::vector<Corner> ReadCabinets(const DeviceBytes& bytes, const Port& port) {
  std::vector<Corner> cabinets;
  if (port.cards > ZEPH_MCUC::kPositionEntries) return cabinets;
  for (std::size_t card = 0; card < port.cards; ++card) {
    const std::size_t at =
        port.number * ZEPH_MCUC::kPositionBlock + card * ZEPH_MCUC::kPositionEntry;
    cabinets.push_back({std::uint32_t{port.window.x} + Word(bytes.positions, at),
                        std::uint32_t{port.window.y} + Word(bytes.positions, at + 2)});
  }
  return cabinets;
}

Port ReadPort(const DeviceBytes& bytes, std::uint8_t number) {
  const ZEPH_MCUC::PortPlace& place = ZEPH_MCUC::kPortPlaces[number];
  Port port;
  port.number = number;
  port.cards = Word(bytes.numbers, ZEPH_MCUC::NumberRecordOffset(number));
  port.window = {Word(bytes.features, place.width), Word(bytes.features, place.height),
                 Word(bytes.features, place.offsetX), Word(bytes.features, place.offsetY)};
  port.backup = bytes.features[place.role] == feature::kPortBackup;
  port.cabinets = ReadCabinets(bytes, port);
  return port;
}

std::optional<std::uint8_t> ModeOf(const Wall& wall, std::uint8_t port) {
  if (wall.kind == Kind::kSoftware) return std::nullopt;
  return wall.kind == Kind::kAdvanced ? wall.records[port].mode : wall.smart.mode;
}

// The first of `ports` that shows what `port` shows.
std::optional<std::uint8_t> SameBefore(const std::vector<Port>& ports, const Port& port) {
  const auto same = std::ranges::find_if(ports, [&port](const Port& other) {
    return other.window == port.window && other.cards == port.cards &&
           other.cabinets == port.cabinets;
  });
  return same == ports.end() ? std::nullopt : std::optional(same->number);
}

}  // namespace

std::array<DeviceBytes::Part, 5> DeviceBytes::Parts() {
  return {{{shortcut::kBase, record},
           {feature::kBase, features},
           {kCardSize, cardSize},
           {kNumbers, numbers},
           {kPositions, positions}}};
}

std::size_t Wall::cabinets() const {
  std::size_t all = 0;
  for (const Port& port : ports) all += port.main() ? port.cards : 0;
  return all;
}

std::size_t Wall::mainPorts() const {
  return static_cast<std::size_t>(std::ranges::count_if(ports, &Port::main));
}

Wall Understand(const DeviceBytes& bytes) {
  Wall wall;
  wall.kind = KindOf(bytes.record[shortcut::kStatus]);
  wall.screen = {Word(bytes.features, feature::kScreenWidth),
                 Word(bytes.features, feature::kScreenHeight)};
  wall.card = {Word(bytes.cardSize, 0), Word(bytes.cardSize, 2)};
  wall.smart = ReadSmart(bytes.record);
  for (std::uint8_t number = 0; number < kPorts; ++number) {
    wall.records[number] = ReadRecord(
        Bytes(bytes.record).subspan(shortcut::PortRecord(number), shortcut::kPortRecordSize));
    if (wall.kind == Kind::kAdvanced && wall.records[number].empty()) continue;
    Port port = ReadPort(bytes, number);
    port.repeats = SameBefore(wall.ports, port);
    port.mode = ModeOf(wall, number);
    wall.ports.push_back(std::move(port));
  }
  return wall;
}

void PutSmart(const Smart& smart, std::span<std::uint8_t, kRecordSize> record) {
  record[shortcut::kMode] = smart.mode;
  record[shortcut::kRows] = smart.rows;
  record[shortcut::kColumns] = smart.columns;
  PutWord(record, shortcut::kBoxNumber, smart.perCable);
}

void PutRecords(const PortRecords& records, std::span<std::uint8_t, kRecordSize> record) {
  for (std::size_t port = 0; port < kPorts; ++port) {
    const auto bytes = record.subspan(shortcut::PortRecord(port), shortcut::kPortRecordSize);
    bytes[shortcut::kPortMode] = records[port].mode;
    bytes[shortcut::kPortRows] = records[port].rows;
    bytes[shortcut::kPortColumns] = records[port].columns;
    PutWord(bytes, shortcut::kPortX, records[port].x);
    PutWord(bytes, shortcut::kPortY, records[port].y);
  }
}

}  // namespace quivord::wall
