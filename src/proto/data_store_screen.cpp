// Screen and card size in flash, the values of the ports in the image, the roles.
#include <platform/system.h>

#include <cstdio>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

// Two 32-bit values, width and height, as they are stored.
std::array<uint8_t, 8> SizeBytes(uint32_t width, uint32_t height) {
  SharedBytes<8> bytes;
  bytes.setU32(0, width);
  bytes.setU32(4, height);
  return bytes.snapshot<8>(0);
}

struct SizeTexts {
  const char* failed;
  const char* zeroWidth;
  const char* zeroHeight;
  const char* good;
};
constexpr SizeTexts kScreenTexts = {
    "=== Read_ScreenSize_FromFlash ===Can not read flash screensize , faild !!! ",
    "=======Read FromFlash ScreenSizeW = ", "=======Read FromFlash ScreenSizeH = ",
    "=======Read FromFlash ScreenSize = "};
constexpr SizeTexts kCardTexts = {
    "=== Read_CardSize_FromFlash ===Can not read flash CardSize , faild !!! ",
    "=======Read FromFlash CardSize_W = ", "=======Read FromFlash CardSize_H = ",
    "=======Read FromFlash CardSize = "};

int ReadSize(uint32_t address, const SizeTexts& texts, uint32_t* size) {
  std::array<uint8_t, 8> bytes{};
  if (DriverUtil::getInstance()->ReadBytesFromFlash(address, bytes.size(), bytes.data()) != 0) {
    MCUC_LOG(kLogError, texts.failed);
    return -1;
  }
  SharedBytes<8> values;
  values.write(0, bytes);
  size[0] = values.u32(0);
  size[1] = values.u32(4);
  if (size[0] == 0) MCUC_LOG(kLogError, texts.zeroWidth << size[0]);
  if (size[1] == 0) MCUC_LOG(kLogError, texts.zeroHeight << size[1]);
  if (size[0] == 0 || size[1] == 0) return -1;
  MCUC_LOG(kLogInfo, texts.good << size[0] << " " << size[1]);
  return 0;
}

}  // namespace

int Data_Global::Read_ScreenSize_FromFlash(uint32_t* ScreenSize) {
  return ReadSize(flash::kScreenSize, kScreenTexts, ScreenSize);
}

int Data_Global::Read_CardSize_FromFlash(uint32_t* CardSize) {
  CardSize[0] = CardSize[1] = 0;
  const int result = ReadSize(flash::kCardSize, kCardTexts, CardSize);
  for (int i = 0; i < 2; ++i) {
    if (CardSize[i] == 0) CardSize[i] = kDefaultCardSize;
  }
  return result;
}

int Data_Global::Write_CardSize_toFlash() {
  const auto bytes = SizeBytes(ReceiveCardWidth, ReceiveCardHeight);
  DriverUtil* driver = DriverUtil::getInstance();
  if (driver->WriteDataToFlash(flash::kCardSize, bytes.size(), bytes.data()) != 0) {
    MCUC_LOG(kLogError, "=== Write_CardSize_toFlash ======= Write CardSize to flash failed !");
    return -1;
  }
  MCUC_LOG(kLogInfo, "=== Write_CardSize_toFlash ===(getscreensize+8) ok, RecvCard_W_H = "
                         << ReceiveCardWidth << " " << ReceiveCardHeight);
  uint32_t stored[2];
  Read_CardSize_FromFlash(stored);  // for the log alone
  return 0;
}

void Data_Global::ChangeOutScreenPara(uint32_t width, uint32_t heigh) {
  DriverUtil* driver = DriverUtil::getInstance();
  const auto bytes = SizeBytes(width, heigh);
  driver->WriteDataToFlash(flash::kScreenSize, bytes.size(), bytes.data());
  uint8_t changes = 0;
  driver->ReadBytesFromFlash(flash::kScreenChanges, 1, &changes);
  ++changes;
  driver->WriteDataToFlash(flash::kScreenChanges, 1, &changes);
}

void Data_Global::DebugForScreenZero(uint16_t use_point, uint32_t addrs, const char* despString) {
  const uint16_t width = SendParameterReg.u16(feature::kScreenWidth);
  const uint16_t height = SendParameterReg.u16(feature::kScreenHeight);
  if (width != 0 && height != 0) return;
  char command[256];
  std::snprintf(command, sizeof(command),
                "echo \"Point:%d ,use adddr:0x%x, wide:%d high:%d, description:%s\" >> "
                "/root/screen_zero.txt",
                use_point, addrs, width, height, despString);
  platform::RunShell(command);
  MCUC_LOG(kLogError,
           "=============================Screen Para is Zero!!!  =============================");
}

void Data_Global::PortWidthUpdate(uint8_t port, uint16_t value) {
  if (port < kPortPlaces.size()) SendParameterReg.setU16(kPortPlaces[port].width, value);
}

void Data_Global::PortHeightUpdate(uint8_t port, uint16_t value) {
  if (port < kPortPlaces.size()) SendParameterReg.setU16(kPortPlaces[port].height, value);
}

void Data_Global::PortOffsetXUpdate(uint8_t port, uint16_t value) {
  if (port < kPortPlaces.size()) SendParameterReg.setU16(kPortPlaces[port].offsetX, value);
}

void Data_Global::PortOffsetYUpdate(uint8_t port, uint16_t value) {
  if (port < kTablePorts) SendParameterReg.setU16(kPortPlaces[port].offsetY, value);
}

void Data_Global::PortMorSUpdate(uint8_t port, uint8_t value) {
  if (port < kPortPlaces.size()) SendParameterReg[kPortPlaces[port].role] = value;
}

void Data_Global::SendMasterOrBackup(uint8_t MasterSlaveState) {
  struct Group {
    uint32_t offset;
    const char* text;
  };
  constexpr Group kGroups[] = {{0x18, "Write to FPGA 0x18+"},
                               {0x98, "Write to FPGA 0x98+"},
                               {0x100, "Write to FPGA 0x100+"},
                               {0x104, "Write to FPGA 0x104+"}};
  struct Stored {
    uint32_t offset;
    uint32_t length;
  };
  constexpr Stored kStored[] = {{0x18, 4}, {0x98, 4}, {0x100, 8}};

  const uint8_t value = MasterSlaveState != 0 ? feature::kPortBackup : 0;
  DriverUtil* driver = DriverUtil::getInstance();
  MCUC_LOG(kLogInfo,
           "============================ Begin set master/slave =============================");
  MCUC_LOG(kLogInfo, "Master or Slave = " << value);
  for (uint8_t port = 0; port < kPortPlaces.size(); ++port) PortMorSUpdate(port, value);
  for (uint32_t i = 0; i < 4; ++i) {
    for (const Group& group : kGroups) {
      const int32_t result = WriteFeatureBus(group.offset + i, {&value, 1});
      MCUC_LOG(kLogInfo, group.text << i << " " << result << " " << value);
    }
  }
  for (const Stored& stored : kStored) {
    const auto bytes = SendParameterReg.snapshot<8>(stored.offset);
    const int32_t result =
        driver->WriteDataToFlash(flash::kFeature + stored.offset, stored.length, bytes.data());
    if (result != 0) MCUC_LOG(kLogError, "=== SendMasterOrBackup ===flash, ret = " << result);
  }
  MCUC_LOG(kLogInfo,
           "============================ Finish set master/slave ============================");
}

}  // namespace ZEPH_MCUC
