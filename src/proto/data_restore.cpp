// The boot restore: flash into the arrays and, once the FPGA is online, the arrays into the FPGA.
#include <platform/envcfg.h>
#include <platform/system.h>

#include <algorithm>
#include <cstdlib>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kStoredScreenPara = 15;
constexpr uint8_t kInputModes[] = {0x20, 0x21, 0x10};
constexpr uint16_t kForward = 0xFFFF;  // a port distance for a positive offset

constexpr std::size_t kMostRestored = 5120;  // bytes

enum class BypassMode : uint8_t { kOff = 0, kFromService = 2 };

void LogWrite(const char* what, int32_t result) {
  MCUC_LOG(kLogInfo, what << " the ret = " << result);
}

// Writes a 16-bit value to the bus, low byte first.
void WriteBusWord(uint32_t address, uint16_t value) {
  const uint8_t bytes[] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
  DriverUtil::getInstance()->WriteFPGABusBlock(address, bytes, sizeof(bytes));
}

void ReadScreenPara(Data_Global* data, const char* failure) {
  std::array<uint8_t, kStoredScreenPara> bytes{};
  if (DriverUtil::getInstance()->ReadBytesFromFlash(flash::kScreenPara, bytes.size(),
                                                    bytes.data()) != 0) {
    MCUC_LOG(kLogError, failure);
    return;
  }
  data->ScreenParaReg.write(0, bytes);
}

void ReadConfigStatus(Data_Global* data) {
  uint8_t status = data->LEDConfigStatus;  // stays where it can't be read
  DriverUtil::getInstance()->ReadBytesFromFlash(flash::kShortcut, 1, &status);
  data->LEDConfigStatus = status;
}

void WriteByteToFlash(uint32_t address, uint8_t value) {
  DriverUtil::getInstance()->WriteDataToFlash(address, 1, &value);
}

// Whether this is the first boot after a factory reset. Any other boot marks the environment so.
bool IsFirstBoot() {
  bool first = false;
  if (envcfg_openenv() == 0) {
    const char* value = envcfg_getenv("firstboot");
    if (value == nullptr) {
      MCUC_LOG(kLogInfo, "Read firstboot env is Null. ");
    } else if (std::atoi(value) == 1) {
      first = true;
    } else {
      MCUC_LOG(kLogInfo, "=======Reboot quivord============");
      platform::RunShell("envcfg set firstboot 0");
    }
  }
  envcfg_closeenv();
  return first;
}

// A factory reset left the card size in both places of the store: the screen is one card.
void TakeCardSizeAsScreen(Data_Global* data) {
  uint32_t screen[2] = {};
  uint32_t card[2] = {};
  const int known = data->Read_ScreenSize_FromFlash(screen);
  data->Read_CardSize_FromFlash(card);
  if (known != 0) std::copy_n(card, 2, screen);  // a size of 0 would make no screen at all
  RecvCardSize_befor[0] = screen[0];
  RecvCardSize_befor[1] = screen[1];
  data->ReceiveCardWidth = static_cast<uint16_t>(screen[0]);
  data->ReceiveCardHeight = static_cast<uint16_t>(screen[1]);
  factory_flag = 1;
  SharedBytes<8> size;
  size.setU32(0, screen[0]);
  size.setU32(4, screen[1]);
  const auto bytes = size.snapshot<8>(0);
  DriverUtil::getInstance()->WriteDataToFlash(flash::kScreenSize, bytes.size(), bytes.data());
  WriteByteToFlash(flash::kScreenChanges, 0);
  data->SendParameterReg.setU16(feature::kScreenWidth, static_cast<uint16_t>(screen[0]));
  data->SendParameterReg.setU16(feature::kScreenHeight, static_cast<uint16_t>(screen[1]));
  data->DebugForScreenZero(6, 0, "RestoreFPGA, use ReceiveCardWidth change screen!!");
  data->Read_ScreenSize_FromFlash(screen);  // for the log alone
}

// The screen's stored data must not be trusted after a factory reset: the device starts as a screen
// of one card, and the rest of the restore is skipped.
void RestoreFirstBoot(Data_Global* data) {
  MCUC_LOG(kLogInfo, "=======Reboot after ReturnFactory === RestoreFPGA    ");
  TakeCardSizeAsScreen(data);
  if (data->FpgaOnlineFlag == 1) {
    platform::RunShell("envcfg set firstboot 0");
    MCUC_LOG(kLogInfo, "=======Recover smart LED configure when Reboot after ReturnFactory.");
    data->CalculateParaOfSenderInMosaicMode({1, 1, 1, 0, 0});
    ReadConfigStatus(data);
    data->SendMStoOWD1_4();
    data->SendMStoOWD5_8();
    data->SendMStoOWD9_16();
  }
  MCUC_LOG(kLogInfo, "=======Finish Restore FPGA When FirstBoot after ReturnFactory ============");
  data->FpgaParaLoadFinish = true;
}

// Two bytes of the image that are not taken as they are stored.
void CorrectImage(Data_Global* data) {
  auto& reg = data->SendParameterReg;
  const uint8_t mode = reg[feature::kInputMode];
  if (std::find(std::begin(kInputModes), std::end(kInputModes), mode) == std::end(kInputModes)) {
    reg[feature::kInputMode] = kInputModes[0];
  }
  if (reg[feature::kOutput] == feature::kOutputOpen) reg[feature::kOutput] = 0;
}

void RestoreBypassAxis(int32_t offset, uint32_t offsetBus, uint32_t distanceBus) {
  const uint32_t size =
      offset < 0 ? 0U - static_cast<uint32_t>(offset) : static_cast<uint32_t>(offset);
  WriteBusWord(offsetBus, static_cast<uint16_t>(size));
  WriteBusWord(distanceBus, offset > 0 ? kForward : 0);
}

void RestoreBypass(const Data_Global& data) {
  const auto& reg = data.SendParameterReg;
  const uint8_t mode = reg[feature::kBypass];
  if (mode == static_cast<uint8_t>(BypassMode::kOff)) return;
  if (mode == static_cast<uint8_t>(BypassMode::kFromService)) {
    RestoreBypassAxis(static_cast<int32_t>(reg.u32(feature::kBypassX)), feature::kOffsetX,
                      feature::kDistanceX);
    RestoreBypassAxis(static_cast<int32_t>(reg.u32(feature::kBypassY)), feature::kOffsetY,
                      feature::kDistanceY);
    return;
  }
  WriteBusWord(feature::kDistanceX, 0);
  WriteBusWord(feature::kDistanceY, 0);
  const auto offsets = reg.snapshot<4>(feature::kOffsetX);
  DriverUtil::getInstance()->WriteFPGABusBlock(feature::kOffsetX, offsets.data(), offsets.size());
}

// A client may read the tables meanwhile, which refreshes them from an FPGA that doesn't hold them
// yet. So each block goes into table and FPGA in one step, and from what was read.
void RestorePositions(bool online) {
  MCUC_LOG(kLogInfo, "Restore position para to FPGA :");
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    const auto offset = static_cast<uint32_t>(port * kPositionBlock);
    std::array<uint8_t, kPositionBlock> block;
    PortsTopoPara.read(offset, block);  // stays where it can't be read
    LogWrite("Read from flash,", DriverUtil::getInstance()->ReadBytesFromFlash(
                                     flash::kPosition + offset, block.size(), block.data()));
    PortsTopoPara.write(offset, block);
    for (uint32_t at = 0; online && at < kPositionBlock; at += kBusBlock) {
      LogWrite("Write position to FPGA,",
               WritePositions(offset + at, std::span(block).subspan(at, kBusBlock)));
    }
  }
}

// The order in which the blocks of the number table go to the FPGA; the last one stays out.
void SendNumbersToFpga(std::span<const uint8_t> numbers) {
  constexpr std::size_t kOrder[] = {0, 1, 3, 2};
  for (const std::size_t index : kOrder) {
    const NumberBlock& block = kNumberBlocks[index];
    LogWrite("Write number to FPGA,",
             WriteNumbers(block.offset, numbers.subspan(block.offset, block.length), block,
                          block.length));
  }
}

void RestoreNumbers(Data_Global* data) {
  MCUC_LOG(kLogInfo, "Restore number para to FPGA");
  DriverUtil* driver = DriverUtil::getInstance();
  std::array<uint8_t, kNumberSize> numbers;
  NumberPartPara.read(0, numbers);  // stays where it can't be read
  LogWrite("Read from flash,",
           driver->ReadBytesFromFlash(flash::kNumber, numbers.size(), numbers.data()));
  NumberPartPara.write(0, numbers);
  if (data->FpgaOnlineFlag != 1) return;
  SendNumbersToFpga(numbers);
  driver->FPGAC5_WriteOneWord(0, 0, feature::kOutput, 0);
  data->SendParameterReg[feature::kOutput] = feature::kOutputOpen;
  WriteByteToFlash(flash::kScreenChanges, 0);
  data->FpgaParaLoadFinish = true;
}

void RestoreNormal(Data_Global* data) {
  CorrectImage(data);
  const bool online = data->FpgaOnlineFlag == 1;
  if (online) {
    LogWrite("Restore Feature FPGA Space ok !", data->SendFeatureImage());
    RestoreBypass(*data);
  }
  factory_flag = 0;
  ReadConfigStatus(data);
  MCUC_LOG(kLogInfo, "=======Recover software LED configure when boot ! LEDConfigStatus = "
                         << data->LEDConfigStatus);
  RestorePositions(online);
  RestoreNumbers(data);
  data->DebugForScreenZero(20, 0, "RestoreFPGA, Device Power on !!");
  ReadScreenPara(data, "=== RestoreFPGA ===Can not read flash when get the ScreenParaReg ! ");
}

}  // namespace

void Data_Global::RestoreDataFromFlash(uint8_t sel, std::span<uint8_t> into) {
  MCUC_LOG(kLogInfo,
           "========================== Begin restore data from flash ========================");
  const auto length = static_cast<uint32_t>(std::min(into.size(), kMostRestored));
  const uint32_t address = sel == kRestoreFeature ? flash::kFeature : flash::kBasicInfo;
  if (sel == kRestoreFeature) {
    MCUC_LOG(kLogInfo, "=======Restore FPGA from flash RegesiterAddr = " << CTrace::hex << address);
  }
  DriverUtil::getInstance()->ReadBytesFromFlash(address, length, into.data());
  MCUC_LOG(kLogInfo,
           "========================== Finish restore data from flash =======================");
}

// Roles and screen registers.
void Data_Global::BootRecover() {
  uint8_t mode = 0;
  if (DriverUtil::getInstance()->ReadBytesFromFlash(flash::kMorSMode, 1, &mode) != 0) {
    MCUC_LOG(kLogError,
             "=== BootRecover ===Can not read flash when get the PbufMorSMode in poweron! ");
  } else {
    PbufMorSMode = mode;
  }
  if (FpgaOnlineFlag == 1) {
    uint8_t role = 0;
    DriverUtil::getInstance()->ReadFPGABusOneWord(feature::kRole, &role);
    NormalBackupStatus = role == feature::kRoleBackup || role == feature::kRoleSlave ? 0 : 1;
  }
  ReadScreenPara(
      this, "=== BootRecover ===Can not read flash when get the ScreenParaReg[0x01] in poweron! ");
}

void Data_Global::RestoreFPGA() {
  MCUC_LOG(kLogInfo,
           "============================== Begin Restore FPGA ===============================");
  // What can't be read stays: zeros at start, and later what a first boot is about to store.
  auto image = SendParameterReg.snapshot<feature::kSize>(0);
  RestoreDataFromFlash(kRestoreFeature, image);
  LoadFeatureImage(image);
  RebootRF = EN_NOT_REBOOT;
  BootRecover();
  if (IsFirstBoot()) {
    RestoreFirstBoot(this);
    return;
  }
  RestoreNormal(this);
  MCUC_LOG(kLogInfo,
           "============================== Finish Restore FPGA ==============================");
}

}  // namespace ZEPH_MCUC
