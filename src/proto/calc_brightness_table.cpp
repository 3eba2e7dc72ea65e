#include "proto/calc_brightness_table.h"

#include <algorithm>

namespace ZEPH_MCUC::brightness {
namespace {

using Bytes = std::span<const uint8_t>;

uint16_t Word(Bytes bytes, std::size_t at) {
  return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

Sensor SensorFrom(Bytes record) { return {record[0], record[1], Word(record, 2), record[4]}; }

MixNode NodeFrom(Bytes record) {
  return {record[0], record[1], record[3] == 1, record[4], record[5], record[6]};
}

LuxItem LuxItemFrom(Bytes record) { return {Word(record, 0), record[2]}; }

TableState ReadBytes(const AreaReader& read, uint64_t at, std::span<uint8_t> into) {
  if (at + into.size() > kAreaSize) return TableState::kOutside;
  return read(static_cast<uint32_t>(at), into) ? TableState::kThere : TableState::kUnread;
}

struct Shape {
  uint32_t recordSize;
  uint8_t least;  // a smaller count is read as this
  uint8_t most;
};

// Reads the count byte at `base` and the records behind it.
template <class Record>
Found<std::vector<Record>> ReadTable(const AreaReader& read, uint16_t base, const Shape& shape,
                                     Record (*from)(Bytes)) {
  uint8_t count = 0;
  if (const TableState state = ReadBytes(read, base, {&count, 1}); state != TableState::kThere) {
    return {state};
  }
  count = std::max(count, shape.least);
  if (count > shape.most) return {TableState::kCount};
  std::vector<uint8_t> bytes(std::size_t{count} * shape.recordSize);
  const TableState state = ReadBytes(read, base + 1U, bytes);
  if (state != TableState::kThere) return {state};
  Found<std::vector<Record>> found;
  for (std::size_t at = 0; at < bytes.size(); at += shape.recordSize) {
    found.table.push_back(from(Bytes(bytes).subspan(at, shape.recordSize)));
  }
  return found;
}

}  // namespace

uint8_t ListCount(const Image& image) {
  return std::clamp(image[list::kCount], uint8_t{1}, list::kMostNodes);
}

bool ListHasColours(const Image& image) { return image[list::kColours] == list::kColoursSent; }

ListNode ListNodeAt(const Image& image, std::size_t index) {
  if (index >= list::kMostNodes) return {};
  constexpr uint8_t kDriven = (1 << list::kPortsDriven) - 1;
  const auto field = [&](uint32_t column) { return image[column + index]; };
  return {.hour = field(list::kHour),
          .minute = field(list::kMinute),
          .ports = static_cast<uint8_t>(field(list::kPorts) & kDriven),
          .brightness = field(list::kBrightness),
          .red = field(list::kRed),
          .green = field(list::kGreen),
          .blue = field(list::kBlue),
          .virtualRed = field(list::kVirtualRed)};
}

LuxRange LuxRangeOf(const Image& image) {
  return {.mostLux = Word(image, sensor::kMostLux),
          .leastLux = Word(image, sensor::kLeastLux),
          .atMost = image[sensor::kAtMostLux],
          .atLeast = image[sensor::kAtLeastLux],
          .steps = image[sensor::kSteps]};
}

std::optional<std::vector<Sensor>> SensorsOf(const Image& image) {
  const uint8_t count = image[sensor::kCount];
  if (count > sensor::kMostSensors) return std::nullopt;
  std::vector<Sensor> sensors;
  for (std::size_t i = 0; i < count; ++i) {
    sensors.push_back(SensorFrom(
        Bytes(image).subspan(sensor::kRecords + i * sensor::kRecordSize, sensor::kRecordSize)));
  }
  return sensors;
}

MixHeader HeaderOf(const Image& image) {
  return {.fileLength = Word(image, mix::kFileLength),
          .sensors = Word(image, mix::kSensors),
          .nodes = Word(image, mix::kNodes),
          .luxMap = Word(image, mix::kLuxMap),
          .fallback = Word(image, mix::kFallback),
          .on = image[mix::kOn] != 0,
          .interval_s = Word(image, mix::kInterval),
          .readings = image[mix::kReadings],
          .runs = image[mix::kRuns] != 0,
          .gradual = image[mix::kGradual] != 0};
}

const char* TextOf(TableState state) {
  switch (state) {
    case TableState::kUnread:
      return "can't be read";
    case TableState::kOutside:
      return "reaches past the area";
    case TableState::kCount:
      return "has a wrong count";
    default:
      return "is there";
  }
}

Found<std::vector<MixNode>> ReadNodes(const AreaReader& read, uint16_t base) {
  return ReadTable(read, base, {mix::kNodeSize, 1, UINT8_MAX}, NodeFrom);
}

Found<MixNode> ReadNode(const AreaReader& read, uint16_t base, uint32_t index) {
  std::array<uint8_t, mix::kNodeSize> record{};
  const TableState state = ReadBytes(read, base + 1U + uint64_t{index} * mix::kNodeSize, record);
  if (state != TableState::kThere) return {state};
  return {TableState::kThere, NodeFrom(record)};
}

Found<std::vector<Sensor>> ReadSensors(const AreaReader& read, uint16_t base) {
  return ReadTable(read, base, {mix::kSensorSize, 0, sensor::kMostSensors}, SensorFrom);
}

Found<std::vector<LuxItem>> ReadLuxMap(const AreaReader& read, uint16_t base) {
  auto found = ReadTable(read, base, {mix::kLuxItemSize, 0, mix::kMostLuxItems}, LuxItemFrom);
  if (found.state == TableState::kThere && found.table.empty()) return {TableState::kCount};
  return found;
}

Found<Fallback> ReadFallback(const AreaReader& read, uint16_t base) {
  std::array<uint8_t, mix::kFallbackSize> record{};
  const TableState state = ReadBytes(read, base, record);
  if (state != TableState::kThere) return {state};
  return {TableState::kThere, {record[1] != 0, record[2]}};
}

}  // namespace ZEPH_MCUC::brightness
