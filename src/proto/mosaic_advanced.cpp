#include "proto/mosaic_advanced.h"

#include <algorithm>

namespace ZEPH_MCUC {
namespace {

constexpr uint16_t Word(uint32_t value) { return static_cast<uint16_t>(value); }

uint16_t ReadWord(PortRecordBytes record, uint32_t at) {
  return Word(record[at] | record[at + 1] << 8);
}

uint8_t AtLeastOne(uint8_t count) { return std::max<uint8_t>(count, 1); }

}  // namespace

AdvancedPort ReadAdvancedPort(PortRecordBytes record) {
  return {.mode = record[shortcut::kPortMode],
          .rows = AtLeastOne(record[shortcut::kPortRows]),
          .columns = AtLeastOne(record[shortcut::kPortColumns]),
          .x = ReadWord(record, shortcut::kPortX),
          .y = ReadWord(record, shortcut::kPortY)};
}

uint32_t Cabinets(const AdvancedPorts& ports) {
  uint32_t all = 0;
  for (const AdvancedPort& port : ports) all += port.cabinets();
  return all;
}

uint32_t MostCabinets(const AdvancedPorts& ports) {
  return std::ranges::max(ports, {}, &AdvancedPort::cabinets).cabinets();
}

bool WithinLimits(const AdvancedPorts& ports) {
  return Cabinets(ports) <= kMostCabinetsOfPorts && MostCabinets(ports) <= kMostCabinetsOfPort;
}

Extent ScreenOfPorts(const AdvancedPorts& ports, CardSize card) {
  Extent screen;
  for (const AdvancedPort& port : ports) {
    screen.width = std::max(screen.width, port.x + uint32_t{port.columns} * card.width);
    screen.height = std::max(screen.height, port.y + uint32_t{port.rows} * card.height);
  }
  return screen;
}

AdvancedPlan PlanAdvanced(const AdvancedPorts& ports, CardSize card) {
  AdvancedPlan plan;
  for (std::size_t i = 0; i < kTablePorts; ++i) {
    const AdvancedPort& port = ports[i];
    plan.cards[i] = Word(port.cabinets());
    plan.windows[i] = {.width = Word(uint32_t{port.columns} * card.width),
                       .height = Word(uint32_t{port.rows} * card.height),
                       .x = port.x,
                       .y = port.y};
    plan.setWidth = std::max(plan.setWidth, plan.windows[i].width);
    plan.realHeight = std::max(plan.realHeight, plan.windows[i].height);
  }
  plan.realWidth = Word((uint32_t{plan.setWidth} + 1) & ~1U);
  return plan;
}

Cable CableOfPort(const AdvancedPort& port, CardSize card) {
  const bool columns = HasColumns(port.mode);
  return {.mode = port.mode,
          .lines = columns ? port.columns : port.rows,
          .length = columns ? port.rows : port.columns,
          .cardWidth = card.width,
          .cardHeight = card.height};
}

}  // namespace ZEPH_MCUC
