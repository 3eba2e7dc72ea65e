// The layout of the wall, committed: a plan goes into image, tables, FPGA and flash in this order.
#include <vector>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "proto/mosaic.h"
#include "proto/porttables.h"
#include "stub/mcucmessagestruct.h"

namespace ZEPH_MCUC {
namespace {

constexpr int32_t kTooManyCabinets = static_cast<int32_t>(0x80005011);
constexpr std::size_t kCountedBlocks[] = {0, 1, 3};  // of the number table: those with card counts
constexpr uint32_t kCountedBytes = 0x80;

MosaicInput InputOf(const Data_Global& data, const SmartConfig& config) {
  return {config.rows, config.columns,        config.boxNumber,
          config.mode, data.ReceiveCardWidth, data.ReceiveCardHeight};
}

void StoreScreenPara(Data_Global* data, const MosaicInput& input, const char* failure) {
  const auto head = ScreenParaHead(input);
  data->ScreenParaReg.write(0, head);
  const int32_t result =
      DriverUtil::getInstance()->WriteDataToFlash(flash::kScreenPara, head.size(), head.data());
  if (result != 0) MCUC_LOG(kLogError, failure << result);
}

// The screen's size and the windows of all ports, into the image.
template <class Plan>
void ApplyToImage(Data_Global* data, const Plan& plan) {
  auto& reg = data->SendParameterReg;
  reg.setU16(feature::kRealWidth, plan.realWidth);
  reg.setU16(feature::kRealHeight, plan.realHeight);
  reg.setU16(feature::kSetWidth, plan.setWidth);
  reg[feature::kMirrored] = 0;
  for (uint8_t port = 0; port < kTablePorts; ++port) {
    const PortWindow& window = plan.windows[port];
    data->PortWidthUpdate(port, window.width);
    data->PortHeightUpdate(port, window.height);
    data->PortOffsetXUpdate(port, window.x);
    data->PortOffsetYUpdate(port, window.y);
  }
}

// A linked port that carries no stripe of its own is a backup.
void ApplyRoles(Data_Global* data, const MosaicPlan& plan, uint8_t backup) {
  const uint8_t value = backup != 0 ? feature::kPortBackup : 0;
  for (std::size_t port = 0; port < kPortPlaces.size(); ++port) {
    data->PortMorSUpdate(static_cast<uint8_t>(port), value);
  }
  if (data->NormalBackupStatus == 0) return;
  for (uint8_t port = plan.usedPorts; port < kTablePorts; ++port) {
    if ((data->GigaPhyLinkSta >> port & 1) != 0) data->PortMorSUpdate(port, feature::kPortBackup);
  }
}

// The rest of each port's record is the FPGA's and survives.
void CommitCounts(const MosaicPlan& plan) {
  for (const std::size_t block : kCountedBlocks)
    RefreshNumbers(kNumberBlocks[block], kCountedBytes);
  WriteCardCounts(plan.cards);
}

void SendPositions(std::span<const uint8_t> tables, uint32_t offset) {
  for (uint32_t at = 0; at < tables.size(); at += kBusBlock) {
    WritePositions(offset + at, tables.subspan(at, kBusBlock));
  }
}

// False where the calculation ends here, with more ports than have a table.
bool CommitPositions(const MosaicPlan& plan) {
  std::vector<uint8_t> tables(kPositionSize);
  PortsTopoPara.read(0, tables);
  FillPositionTables(plan, std::span<uint8_t, kPositionSize>(tables));
  if (plan.outOfTables) {
    PortsTopoPara.write(0, tables);
    MCUC_LOG(kLogError, "ERROR:$$PortsTopoPara$$ out of memory!!!");
    return false;
  }
  if (plan.usedPorts <= kTablePorts) {
    MCUC_LOG(kLogInfo, "cacl 0x3000000 0x0"
                           << "0123456789A"[plan.usedPorts] << " end");
  }
  SendPositions(tables, 0);
  return true;
}

}  // namespace

int32_t Data_Global::CheckParaOfSender(const SmartConfig& config) {
  constexpr uint32_t kMostCabinets = 2048;
  constexpr uint16_t kMostOnCable = 512;
  const bool valid = config.rows != 0 && config.columns != 0 &&
                     uint32_t{config.rows} * config.columns <= kMostCabinets &&
                     config.boxNumber <= kMostOnCable;
  if (valid) return 0;
  MCUC_LOG(kLogError, "=== CheckParaOfSender ===Para invalid! row = "
                          << config.rows << " " << config.columns << " " << config.boxNumber);
  return kInvalidMessage;
}

void Data_Global::CalculateParaOfSenderInMosaicMode(const SmartConfig& config) {
  const MosaicInput input = InputOf(*this, config);
  const MosaicPlan plan = PlanMosaic(input);
  if (!plan.valid) {
    MCUC_LOG(kLogError, "=== CalculateParaOfSenderInMosaicMode ===Invalid Parameter! ");
    CommitFeatureImage([] {});
    SaveParaToFlash(kSaveAll);
    return;
  }
  ApplyToImage(this, plan);
  StoreScreenPara(this, input,
                  "=== CalculateParaOfSenderInMosaicMode ===write 02100001 to flash failed. "
                  "driverRet = ");
  CommitCounts(plan);
  if (!CommitPositions(plan)) return;
  // A refresh of the image may have come in between: what was planned goes in once more.
  CommitFeatureImage([&] {
    ApplyToImage(this, plan);
    ApplyRoles(this, plan, config.backup);
  });
  SaveParaToFlash(kSaveAll);
}

int32_t Data_Global::AdvCalcParaOfSenderInMosaicMode(const AdvancedPorts& ports) {
  if (!WithinLimits(ports)) {
    MCUC_LOG(kLogError, "=== AdvCalcParaOfSenderInMosaicMode ===PortParaInvalid: total card num = "
                            << Cabinets(ports) << " " << MostCabinets(ports));
    return kTooManyCabinets;
  }
  GetRecvCardSize_EnvNew();  // without an answer the size known before serves
  const CardSize card = {ReceiveCardWidth, ReceiveCardHeight};
  const AdvancedPlan plan = PlanAdvanced(ports, card);
  ApplyToImage(this, plan);
  StoreScreenPara(this, {0, 0, 0, 0, card.width, card.height},
                  "=== AdvCalcParaOfSenderInMosaicMode ===write 02100001 to flash failed. "
                  "driverRet = ");
  WriteCardCounts(plan.cards);
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    if (AdvCordinateCalc(port, ports[port]) != 0) return kTooManyCabinets;
  }
  SendMasterOrBackup(PbufMorSMode);
  CommitFeatureImage([&] { ApplyToImage(this, plan); });
  SaveParaToFlash(kSaveAll);
  return 0;
}

uint8_t Data_Global::AdvCordinateCalc(std::size_t port, const AdvancedPort& record) {
  std::array<uint8_t, kPositionBlock> table;
  const auto offset = static_cast<uint32_t>(port * kPositionBlock);
  PortsTopoPara.read(offset, table);
  FillPositionTable(CableOfPort(record, {ReceiveCardWidth, ReceiveCardHeight}), table);
  SendPositions(table, offset);
  return 0;
}

}  // namespace ZEPH_MCUC
