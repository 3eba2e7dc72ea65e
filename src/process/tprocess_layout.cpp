// The wall's layout and its tables: the slow half of what clients write.
#include <optional>
#include <vector>

#include "driverutil.h"
#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_shortcut.h"
#include "proto/data_common.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kAdvRecordArea = 0x1000;
constexpr uint16_t kOneBlock = 2;       // numbers up to this length concern one block alone
constexpr uint32_t kNumberBack = 0x80;  // bytes of that block that go to the FPGA

void SetConfigStatus(uint8_t status) {
  Data_Global::getInstance()->LEDConfigStatus = status;
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(flash::kShortcut, 1, &status);
  if (result != 0) {
    MCUC_LOG(kLogError,
             "=== WriteToBackupInfo ===Write backup info to flash failed. ret = " << result);
  }
}

// A layout ends a role that a client gave: the device is normal again.
void EndRole() {
  Data_Global* global = Data_Global::getInstance();
  global->EndRole();
  DriverUtil::getInstance()->WriteDataToFlash(flash::kFeature + feature::kRole, 1,
                                              &feature::kNoRole);
  global->NormalBackupStatus = 1;
}

// The wall to lay out: that of the stored record, which wins over the queued one.
SmartConfig WallToLayOut() {
  SmartConfig wall = MyTempPara.Get();
  std::array<uint8_t, kSmartRecord> record{};
  Data_Global* global = Data_Global::getInstance();
  const int32_t result =
      DriverUtil::getInstance()->ReadBytesFromFlash(flash::kShortcut, record.size(), record.data());
  global->GetRecvCardSize_EnvNew();  // without an answer the size is known all the same
  global->SendRVCardWHtoOWD();
  global->ShortCfgReadRvStatus = 0;
  if (result != 0) return wall;
  SmartConfig stored = SmartConfigOf(record);
  stored.backup = wall.backup;
  if (stored.SameWall(wall)) return wall;
  MCUC_LOG(kLogInfo,
           "============================ Read Flash Para is diff CalculateParaOfSenderHandler "
           "===========================");
  MyTempPara.Set(stored);
  return stored;
}

// Nothing where they can't be read: a wall of empty records would take the real one's place.
std::optional<AdvancedPorts> ReadAdvancedPorts() {
  std::vector<uint8_t> area(kAdvRecordArea);
  const int32_t result =
      DriverUtil::getInstance()->ReadBytesFromFlash(flash::kShortcut, kAdvRecordArea, area.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== Sprocess_AdvCalcParaOfSender ===read flash failed! ret = " << result);
    return std::nullopt;
  }
  AdvancedPorts ports;
  for (std::size_t port = 0; port < ports.size(); ++port) {
    ports[port] = ReadAdvancedPort(
        PortRecordBytes(&area[shortcut::PortRecord(port)], shortcut::kPortRecordSize));
  }
  return ports;
}

void WritePositionTable(const PenetrateInfo& info) {
  const uint32_t offset = info.Register & 0xFFFF;
  if (offset + info.length > kPositionSize) {
    if (offset < kPositionSize) {
      MCUC_LOG(kLogError, "$$$$ MoreThan Little Sprocess_PositionNetPort $$$$ Reg more than max:"
                              << CTrace::hex << info.Register);
      PortsTopoPara.write(offset, info.data);  // what fits
    }
    MCUC_LOG(kLogError, "$$$$ All para Pooling Sprocess_PositionNetPort $$$$ Reg more than max:"
                            << CTrace::hex << info.Register);
    return;
  }
  const int32_t result = WritePositions(offset, info.data);
  if (result < 0) {
    MCUC_LOG(kLogError,
             "=== WriteToPosNetPort ===Write FPGA Position Info failed! ret = " << result);
  }
}

void WriteNumberTable(const PenetrateInfo& info) {
  const uint32_t offset = info.Register & 0xFFFF;
  if (offset + info.length > kNumberSize) return;
  for (const NumberBlock& block : kNumberBlocks) {
    const bool holds = offset >= block.offset && offset < block.offset + block.length;
    if (info.length <= kOneBlock && !holds) continue;
    WriteNumbers(offset, info.data, block, info.length <= kOneBlock ? kNumberBack : block.length);
  }
}

}  // namespace

int Tprocess::Sprocess_CalculateParaOfSender(int lenth, char* data) {
  return RunHandler("Sprocess_CalculateParaOfSender", data, [=] {
    if (lenth < static_cast<int>(kSmartRecord)) return;
    Data_Global* global = Data_Global::getInstance();
    SmartConfig wall = SmartConfigOf({reinterpret_cast<const uint8_t*>(data), kSmartRecord});
    wall.backup = global->PbufMorSMode;
    MyTempPara.Set(wall);
    EndRole();
    global->CalculateParaGetSreenSize(wall);
    SetConfigStatus(kConfiguredSmart);
    global->CalculateParaHandlerCnt = global->CalculateParaHandlerCnt + 1;
  });
}

void Tprocess::CalculateParaOfSenderHandler() {
  Data_Global::getInstance()->CalculateParaOfSenderInMosaicMode(WallToLayOut());
  SetConfigStatus(kConfiguredSmart);
}

int Tprocess::Sprocess_AdvCalcParaOfSender(int /*lenth*/, char* data) {
  return RunHandler("Sprocess_AdvCalcParaOfSender", data, [] {
    Data_Global* global = Data_Global::getInstance();
    const std::optional<AdvancedPorts> ports = ReadAdvancedPorts();
    if (!ports.has_value()) return;
    global->AdvCalcParaGetSreenSize(*ports);
    // A refusal is logged; the record stays for the client to correct.
    static_cast<void>(global->AdvCalcParaOfSenderInMosaicMode(*ports));
    SetConfigStatus(kConfiguredAdvanced);
  });
}

int Tprocess::Sprocess_PositionNetPort(int lenth, char* data) {
  return RunPenetrateHandler("Sprocess_PositionNetPort", lenth, data, WritePositionTable);
}

int Tprocess::Sprocess_DoNumberFunCardPort(int lenth, char* data) {
  return RunPenetrateHandler("Sprocess_DoNumberFunCardPort", lenth, data, WriteNumberTable);
}

}  // namespace ZEPH_MCUC
