#include "wall/apply.h"

#include "counted.h"
#include "proto/mosaic_advanced.h"
#include "wall/text.h"
#include "wall/words.h"

namespace quivord::wall {
namespace {

namespace feature = ZEPH_MCUC::feature;
namespace shortcut = ZEPH_MCUC::shortcut;

std::uint16_t Word(std::span<const std::uint8_t> bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

void PutWord(std::span<std::uint8_t> bytes, std::size_t at, std::uint32_t value) {
  bytes[at] = static_cast<std::uint8_t>(value);
  bytes[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

ZEPH_MCUC::CardSize CardOf(const DeviceBytes& bytes) {
  return {Word(bytes.cardSize, 0), Word(bytes.cardSize, 2)};
}

// Sizes, windows and counts, which both kinds of plan have.
template <class Plan>
void PutPlan(const Plan& plan, DeviceBytes& bytes) {
  PutWord(bytes.features, feature::kRealWidth, plan.realWidth);
  PutWord(bytes.features, feature::kRealHeight, plan.realHeight);
  PutWord(bytes.features, feature::kSetWidth, plan.setWidth);
  for (std::size_t port = 0; port < kPorts; ++port) {
    const ZEPH_MCUC::PortPlace& place = ZEPH_MCUC::kPortPlaces[port];
    PutWord(bytes.features, place.width, plan.windows[port].width);
    PutWord(bytes.features, place.height, plan.windows[port].height);
    PutWord(bytes.features, place.offsetX, plan.windows[port].x);
    PutWord(bytes.features, place.offsetY, plan.windows[port].y);
    PutWord(bytes.numbers, ZEPH_MCUC::NumberRecordOffset(port), plan.cards[port]);
  }
}

void PutScreen(std::uint32_t width, std::uint32_t height, DeviceBytes& bytes) {
  PutWord(bytes.features, feature::kScreenWidth, width);
  PutWord(bytes.features, feature::kScreenHeight, height);
}

ZEPH_MCUC::AdvancedPorts PortsOf(const DeviceBytes& bytes) {
  ZEPH_MCUC::AdvancedPorts ports;
  const std::span<const std::uint8_t> record(bytes.record);
  for (std::size_t port = 0; port < kPorts; ++port) {
    ports[port] = ZEPH_MCUC::ReadAdvancedPort(ZEPH_MCUC::PortRecordBytes(
        record.subspan(shortcut::PortRecord(port), shortcut::kPortRecordSize)));
  }
  return ports;
}

std::string NumbersText(const Smart& smart) {
  return SizeText(smart.rows, smart.columns, " x ") + " cabinets, mode " +
         std::to_string(smart.mode) + ", " + std::to_string(smart.perCable) + " a cable";
}

std::string PortText(const Port& port) {
  return "port " + std::to_string(port.number) + " has " + Counted(port.cards, "card") + " in " +
         SizeText(port.window.width, port.window.height, " x ") + " at " +
         std::to_string(port.window.x) + ", " + std::to_string(port.window.y);
}

// The first port that both have and that differs.
std::optional<std::string> PortDifference(const Wall& found, const Wall& wanted) {
  for (std::size_t i = 0; i < found.ports.size() && i < wanted.ports.size(); ++i) {
    const Port& is = found.ports[i];
    const Port& should = wanted.ports[i];
    if (is.window != should.window || is.cards != should.cards) {
      return PortText(is) + ", not " + PortText(should);
    }
    if (is.cabinets != should.cabinets) {
      return "the cabinets of port " + std::to_string(is.number) + " lie elsewhere";
    }
  }
  return std::nullopt;
}

}  // namespace

void ApplySmart(const Smart& smart, DeviceBytes& bytes) {
  PutSmart(smart, bytes.record);
  bytes.record[shortcut::kStatus] = ZEPH_MCUC::kConfiguredSmart;
  const ZEPH_MCUC::CardSize card = CardOf(bytes);
  const ZEPH_MCUC::MosaicPlan plan = ZEPH_MCUC::PlanMosaic({.rows = smart.rows,
                                                            .columns = smart.columns,
                                                            .boxNumber = smart.perCable,
                                                            .mode = smart.mode,
                                                            .cardWidth = card.width,
                                                            .cardHeight = card.height});
  PutPlan(plan, bytes);
  PutScreen(plan.setWidth, plan.realHeight, bytes);
  ZEPH_MCUC::FillPositionTables(plan, bytes.positions);
}

void ApplyAdvanced(const PortRecords& records, DeviceBytes& bytes) {
  PutRecords(records, bytes.record);
  bytes.record[shortcut::kStatus] = ZEPH_MCUC::kConfiguredAdvanced;
  const ZEPH_MCUC::CardSize card = CardOf(bytes);
  const ZEPH_MCUC::AdvancedPorts ports = PortsOf(bytes);
  PutPlan(ZEPH_MCUC::PlanAdvanced(ports, card), bytes);
  const ZEPH_MCUC::Extent screen = ZEPH_MCUC::ScreenOfPorts(ports, card);
  PutScreen(screen.width, screen.height, bytes);
  for (std::size_t port = 0; port < kPorts; ++port) {
    std::uint8_t* const table = bytes.positions.data() + port * ZEPH_MCUC::kPositionBlock;
    ZEPH_MCUC::FillPositionTable(ZEPH_MCUC::CableOfPort(ports[port], card),
                                 ZEPH_MCUC::PositionBlock(table, ZEPH_MCUC::kPositionBlock));
  }
}

std::optional<std::string> Difference(const DeviceBytes& found, const DeviceBytes& wanted) {
  if (found == wanted) return std::nullopt;
  const Wall is = Understand(found);
  const Wall should = Understand(wanted);
  if (is.card.empty()) return "it knows no card size";
  if (is.kind != should.kind) {
    return std::string("its wall is ") + KindWord(is.kind) + ", not " + KindWord(should.kind);
  }
  if (is.smart != should.smart) return "its record says " + NumbersText(is.smart);
  if (is.records != should.records) return "its records of the ports are others";
  if (is.screen != should.screen) {
    return "its screen is " + SizeText(is.screen.width, is.screen.height, " x ") + ", not " +
           SizeText(should.screen.width, should.screen.height, " x ");
  }
  if (auto port = PortDifference(is, should)) return port;
  return "its sizes or tables are others";
}

}  // namespace quivord::wall
