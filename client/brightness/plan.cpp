#include "brightness/plan.h"

#include <algorithm>
#include <array>

namespace quivord::brightness {
namespace {

constexpr std::array<KindRow, 6> kKinds = {{
    {Kind::kNone, "none", 0, "no plan"},
    {Kind::kList, "list", table::kListMode, "a list of times"},
    {Kind::kSensor, "sensor", table::kSensorMode, "the light sensor"},
    {Kind::kMix, "mix", table::kMixMode, "times and light sensor"},
    {Kind::kSerial, "serial", table::kSerialMode,
     "an outside device; cards are told when it falls silent"},
    {Kind::kHardware, "hardware", table::kHardwareMode,
     "an outside device; times and light sensor while it is silent"},
}};

// A file holds its header at least, and no more than the area.
std::size_t SizeOfFile(std::size_t length) {
  return std::clamp<std::size_t>(length, table::mix::kHeaderSize, table::kAreaSize);
}

// Writes into a table; what lies past its end is left out.
class Writer {
 public:
  explicit Writer(Bytes& bytes) : bytes_(bytes) {}

  void Byte(std::size_t at, std::uint8_t value) {
    if (at < bytes_.size()) bytes_[at] = value;
  }
  void Word(std::size_t at, std::uint16_t value) {
    Byte(at, static_cast<std::uint8_t>(value));
    Byte(at + 1, static_cast<std::uint8_t>(value >> 8));
  }
  void Sensor(std::size_t at, const table::Sensor& sensor) {
    Byte(at, sensor.position);
    Byte(at + 1, sensor.port);
    Word(at + 2, sensor.board);
    Byte(at + 4, sensor.address);
  }

  // A count byte at `base` and the records behind it, each `size` bytes.
  template <class Record, class Write>
  void Table(std::size_t base, const std::vector<Record>& records, std::size_t size, Write write) {
    Byte(base, static_cast<std::uint8_t>(records.size()));
    for (std::size_t i = 0; i < records.size(); ++i) write(base + 1 + i * size, records[i]);
  }

 private:
  Bytes& bytes_;
};

void PutList(const Plan& plan, Writer& to) {
  namespace at = table::list;
  to.Byte(at::kCount, static_cast<std::uint8_t>(plan.list.size()));
  to.Byte(at::kColours, plan.colours ? at::kColoursSent : 0);
  for (std::size_t i = 0; i < plan.list.size() && i < at::kMostNodes; ++i) {
    const table::ListNode& node = plan.list[i];
    to.Byte(at::kHour + i, node.hour);
    to.Byte(at::kMinute + i, node.minute);
    to.Byte(at::kPorts + i, node.ports);
    to.Byte(at::kBrightness + i, node.brightness);
    to.Byte(at::kRed + i, node.red);
    to.Byte(at::kGreen + i, node.green);
    to.Byte(at::kBlue + i, node.blue);
    to.Byte(at::kVirtualRed + i, node.virtualRed);
  }
}

void PutSensor(const Plan& plan, Writer& to) {
  namespace at = table::sensor;
  to.Byte(at::kCount, static_cast<std::uint8_t>(plan.sensors.size()));
  to.Word(at::kMostLux, plan.range.mostLux);
  to.Word(at::kLeastLux, plan.range.leastLux);
  to.Byte(at::kAtMostLux, plan.range.atMost);
  to.Byte(at::kAtLeastLux, plan.range.atLeast);
  to.Byte(at::kSteps, plan.range.steps);
  for (std::size_t i = 0; i < plan.sensors.size(); ++i) {
    to.Sensor(at::kRecords + i * at::kRecordSize, plan.sensors[i]);
  }
}

void PutMix(const Plan& plan, Writer& to) {
  namespace at = table::mix;
  const table::MixHeader& header = plan.header;
  to.Table(header.nodes, plan.nodes, at::kNodeSize,
           [&](std::size_t place, const table::MixNode& node) {
             to.Byte(place, node.hour);
             to.Byte(place + 1, node.minute);
             to.Byte(place + 3, node.sensor ? 1 : 0);
             to.Byte(place + 4, node.weekdays);
             to.Byte(place + 5, node.percent);
             to.Byte(place + 6, node.valid);
           });
  to.Table(header.sensors, plan.sensors, at::kSensorSize,
           [&](std::size_t place, const table::Sensor& sensor) { to.Sensor(place, sensor); });
  to.Table(header.luxMap, plan.map, at::kLuxItemSize,
           [&](std::size_t place, const table::LuxItem& item) {
             to.Word(place, item.lux);
             to.Byte(place + 2, item.percent);
           });
  to.Byte(header.fallback + 1U, plan.fallback.enabled ? 1 : 0);
  to.Byte(header.fallback + 2U, plan.fallback.percent);
  // The header last: positions that point into it don't harm it.
  to.Word(at::kFileLength, header.fileLength);
  to.Word(at::kSensors, header.sensors);
  to.Word(at::kNodes, header.nodes);
  to.Word(at::kLuxMap, header.luxMap);
  to.Word(at::kFallback, header.fallback);
  to.Byte(at::kOn, header.on ? 1 : 0);
  to.Word(at::kInterval, header.interval_s);
  to.Byte(at::kReadings, header.readings);
  to.Byte(at::kRuns, header.runs ? 1 : 0);
  to.Byte(at::kGradual, header.gradual ? 1 : 0);
}

void TakeMix(std::span<const std::uint8_t> bytes, const table::Image& image, Plan& plan) {
  const table::AreaReader read = [bytes](std::uint32_t offset, std::span<std::uint8_t> into) {
    for (std::size_t i = 0; i < into.size(); ++i) {
      into[i] = offset + i < bytes.size() ? bytes[offset + i] : 0;
    }
    return true;
  };
  plan.header = table::HeaderOf(image);
  const bool nodes = plan.header.nodes < bytes.size() && bytes[plan.header.nodes] > 0;
  // A daemon takes a count of 0 for 1; nobody has written that node.
  if (nodes) plan.nodes = table::ReadNodes(read, plan.header.nodes).table;
  plan.sensors = table::ReadSensors(read, plan.header.sensors).table;
  plan.map = table::ReadLuxMap(read, plan.header.luxMap).table;
  plan.fallback = table::ReadFallback(read, plan.header.fallback).table;
}

}  // namespace

const KindRow& RowOf(Kind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

const KindRow& RowOfMode(std::uint8_t mode) {
  const auto* const row = std::ranges::find(kKinds, mode, &KindRow::mode);
  return row == kKinds.end() ? RowOf(Kind::kNone) : *row;
}

const KindRow* RowOfWord(const std::string& word) {
  const auto* const row = std::ranges::find_if(
      kKinds, [&](const KindRow& candidate) { return candidate.word == word; });
  return row == kKinds.end() ? nullptr : row;
}

void Settle(Plan& plan) {
  namespace at = table::mix;
  std::size_t end = at::kHeaderSize;
  const auto place = [&end](std::size_t size) {
    const std::size_t begin = end;
    end += size;
    return static_cast<std::uint16_t>(begin);
  };
  plan.header.nodes = place(1 + plan.nodes.size() * at::kNodeSize);
  plan.header.sensors = place(1 + plan.sensors.size() * at::kSensorSize);
  plan.header.luxMap = place(1 + plan.map.size() * at::kLuxItemSize);
  plan.header.fallback = place(at::kFallbackSize);
  plan.header.fileLength = static_cast<std::uint16_t>(end);
}

Bytes TableOf(const Plan& plan) {
  const bool mix = IsMixFamily(plan.kind);
  Bytes bytes(mix ? SizeOfFile(plan.header.fileLength) : table::kImageSize);
  Writer writer(bytes);
  if (plan.kind == Kind::kList) PutList(plan, writer);
  if (plan.kind == Kind::kSensor) PutSensor(plan, writer);
  if (mix) PutMix(plan, writer);
  writer.Byte(0, RowOf(plan.kind).mode);
  for (const Extra& extra : plan.extra) {
    for (std::size_t i = 0; i < extra.bytes.size(); ++i) {
      writer.Byte(extra.at + i, extra.bytes[i]);
    }
  }
  return bytes;
}

std::vector<Extra> ExtraOf(const Plan& plan, std::span<const std::uint8_t> bytes) {
  const Bytes said = TableOf(plan);
  std::vector<Extra> extra;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i < said.size() && said[i] == bytes[i]) continue;
    const bool follows = !extra.empty() && extra.back().at + extra.back().bytes.size() == i;
    if (!follows) extra.push_back({static_cast<std::uint16_t>(i), {}});
    extra.back().bytes.push_back(bytes[i]);
  }
  return extra;
}

Plan PlanOf(std::span<const std::uint8_t> bytes) {
  table::Image image{};
  std::copy_n(bytes.begin(), std::min(bytes.size(), image.size()), image.begin());
  Plan plan;
  plan.kind = RowOfMode(image[0]).kind;
  if (plan.kind == Kind::kList) {
    plan.colours = table::ListHasColours(image);
    for (std::size_t i = 0; i < table::ListCount(image); ++i) {
      plan.list.push_back(table::ListNodeAt(image, i));
    }
  } else if (plan.kind == Kind::kSensor) {
    plan.range = table::LuxRangeOf(image);
    plan.sensors = table::SensorsOf(image).value_or(std::vector<table::Sensor>());
  } else if (IsMixFamily(plan.kind)) {
    TakeMix(bytes, image, plan);
  }
  plan.extra = ExtraOf(plan, bytes);
  return plan;
}

std::size_t TableSize(std::span<const std::uint8_t> head) {
  namespace at = table::mix;
  if (head.size() < at::kHeaderSize || !table::IsMixFamily(head[0])) return table::kImageSize;
  const std::size_t length = head[at::kFileLength] | head[at::kFileLength + 1] << 8;
  return SizeOfFile(length);
}

}  // namespace quivord::brightness
