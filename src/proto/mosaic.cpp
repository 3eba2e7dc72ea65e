#include "proto/mosaic.h"

#include <cstring>

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kMostCables = 16;
constexpr uint32_t kMostCabinets = 0xFFFF;

constexpr uint16_t Word(uint32_t value) { return static_cast<uint16_t>(value); }
constexpr uint32_t Ceil(uint32_t a, uint32_t b) { return (a + b - 1) / b; }

uint32_t Cabinets(const MosaicInput& input) { return uint32_t{input.rows} * input.columns; }

void SetScreen(const MosaicInput& input, MosaicPlan& plan) {
  plan.setWidth = Word(uint32_t{input.columns} * input.cardWidth);
  plan.realWidth = Word((uint32_t{plan.setWidth} + 1) & ~1U);
  plan.realHeight = Word(uint32_t{input.rows} * input.cardHeight);
}

// Cuts the wall into stripes: whole lines, and what is left for the last one.
void Split(const MosaicInput& input, MosaicPlan& plan) {
  const bool columns = HasColumns(input.mode);
  const uint16_t length = columns ? input.rows : input.columns;
  const uint16_t lines = columns ? input.columns : input.rows;
  plan.cable = {.mode = input.mode,
                .lines = Word(Ceil(input.boxNumber, length)),
                .length = length,
                .cardWidth = input.cardWidth,
                .cardHeight = input.cardHeight};
  plan.usedPorts = static_cast<uint8_t>(Ceil(Cabinets(input), plan.cable.cards()));
  plan.lastCable = plan.cable;
  plan.lastCable.lines = Word(lines - uint32_t{plan.cable.lines} * (plan.usedPorts - 1));
}

// The stripes repeat over the ten ports only where each has one of them.
bool Cycles(const MosaicPlan& plan) { return plan.usedPorts >= 1 && plan.usedPorts <= kTablePorts; }

bool IsLast(const MosaicPlan& plan, std::size_t stripe) { return stripe + 1 == plan.usedPorts; }

const Cable& CableOfStripe(const MosaicPlan& plan, std::size_t stripe) {
  return IsLast(plan, stripe) ? plan.lastCable : plan.cable;
}

// Where stripe `stripe` begins, in the direction in which stripes are stacked. `size` is what a
// full stripe takes, `lastSize` what the last one takes.
uint16_t StripeBegins(const MosaicPlan& plan, std::size_t stripe, uint16_t size,
                      uint16_t lastSize) {
  const auto at = static_cast<uint32_t>(stripe);
  if (!IsBackward(kConnectionModes[plan.cable.mode].next)) return Word(at * size);
  return IsLast(plan, stripe) ? uint16_t{0} : Word(lastSize + (plan.usedPorts - 2U - at) * size);
}

void PlaceWindow(const MosaicPlan& plan, std::size_t port, PortWindow& window) {
  if (!IsConnectionMode(plan.cable.mode)) return;
  const bool columns = HasColumns(plan.cable.mode);
  const uint16_t size = columns ? window.width : window.height;
  const uint16_t wall = columns ? plan.setWidth : plan.realHeight;
  const uint16_t lastSize = Word(wall - uint32_t{size} * (plan.usedPorts - 1U));
  (columns ? window.x : window.y) = StripeBegins(plan, StripeOfPort(plan, port), size, lastSize);
}

PortWindow FullWindow(const MosaicPlan& plan) {
  const uint32_t lines = plan.cable.lines;
  if (HasColumns(plan.cable.mode)) return {Word(lines * plan.cable.cardWidth), plan.realHeight};
  return {plan.setWidth, Word(lines * plan.cable.cardHeight)};
}

void SetPorts(MosaicPlan& plan) {
  plan.windows.fill(FullWindow(plan));
  plan.cards.fill(Word(plan.cable.cards()));
  if (!Cycles(plan)) return;
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    PlaceWindow(plan, port, plan.windows[port]);
    if (IsLast(plan, StripeOfPort(plan, port))) plan.cards[port] = Word(plan.lastCable.cards());
  }
}

// The first card that would be stored behind the tables ends the calculation. A cable too long for
// a table stores none; the last cable is the shortest.
bool RunsOut(const MosaicPlan& plan) {
  return plan.usedPorts > kTablePorts && IsConnectionMode(plan.cable.mode) &&
         FilledBytes(plan.lastCable.cards()) > 0;
}

}  // namespace

bool IsValid(const MosaicInput& input) {
  const uint32_t cabinets = Cabinets(input);
  return cabinets != 0 && input.boxNumber != 0 && input.cardWidth != 0 && input.cardHeight != 0 &&
         cabinets >= input.boxNumber && cabinets <= kMostCables * input.boxNumber &&
         cabinets <= kMostCabinets;
}

MosaicPlan PlanMosaic(const MosaicInput& input) {
  MosaicPlan plan;
  plan.valid = IsValid(input);
  if (!plan.valid) return plan;
  SetScreen(input, plan);
  Split(input, plan);
  SetPorts(plan);
  plan.outOfTables = RunsOut(plan);
  return plan;
}

std::size_t StripeOfPort(const MosaicPlan& plan, std::size_t port) {
  return Cycles(plan) ? port % plan.usedPorts : 0;
}

void FillPositionTables(const MosaicPlan& plan, std::span<uint8_t, kPositionSize> tables) {
  if (!plan.valid) return;
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    uint8_t* const table = tables.data() + port * kPositionBlock;
    if (port < plan.usedPorts) {
      if (!IsConnectionMode(plan.cable.mode)) continue;
      FillPositionTable(CableOfStripe(plan, port), PositionBlock(table, kPositionBlock));
    } else {
      std::memcpy(table, tables.data() + StripeOfPort(plan, port) * kPositionBlock, kPositionBlock);
    }
  }
}

std::array<uint8_t, kScreenParaHead> ScreenParaHead(const MosaicInput& input) {
  std::array<uint8_t, kScreenParaHead> head = {1, 0x55};
  const auto put = [&head](std::size_t at, uint16_t value) {
    head[at] = static_cast<uint8_t>(value);
    head[at + 1] = static_cast<uint8_t>(value >> 8);
  };
  put(6, input.cardWidth);
  put(8, input.cardHeight);
  head[10] = static_cast<uint8_t>(input.rows);
  head[11] = static_cast<uint8_t>(input.columns);
  head[12] = input.mode;
  put(13, input.boxNumber);
  return head;
}

}  // namespace ZEPH_MCUC
