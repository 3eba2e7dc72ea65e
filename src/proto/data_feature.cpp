// What a write to the feature space sets off, step by step. The order of the steps is the contract.
#include <platform/info.h>
#include <platform/system.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "driverutil.h"
#include "mcuctrace.h"
#include "process/basicpublicfunc.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "proto/data_feature_bypass.h"
#include "proto/data_feature_write.h"

namespace ZEPH_MCUC {
namespace {

using feature::kBase;

constexpr uint8_t kPowerOnTimeBase = 35;

// Says whether the steps behind go on.
enum class Then : uint8_t { kGoOn, kStop };

using Step = Then (*)(FeatureWrite& write);

Then StoreInImage(FeatureWrite& write) {
  write.global.BeginFeatureWrite(write.offset, write.data);
  write.global.DebugForScreenZero(0, write.address, "Read software para!!");
  return Then::kGoOn;
}

// Low delay and bypass exclude each other unless genlock and 3D are off.
Then RefuseLowDelayInBypass(FeatureWrite& write) {
  if (write.offset != feature::kLowDelay || !write.BypassIsOn()) return Then::kGoOn;
  uint8_t genlock = 0;
  uint8_t state3D = 0;
  DriverUtil::getInstance()->ReadBytesFromFlash(flash::kGenlockState, 1, &genlock);
  DriverUtil::getInstance()->ReadBytesFromFlash(flash::k3DState, 1, &state3D);
  if (genlock == 0 && state3D == feature::k3DOff) return Then::kGoOn;
  MCUC_LOG(kLogError,
           "======= bypass Mode and want open  LowdelayDisable, fail! close!! ====== Gen:"
               << genlock << " 3D:" << state3D);
  write.reg[feature::kLowDelay] = 0;
  return Then::kStop;
}

Then MirrorToService(FeatureWrite& write) {
  if (write.offset == feature::kMirrored || write.offset == feature::kLowDelay) {
    write.global.SendDatetoOWD(write.address, write.data.data(), 1);
  }
  return Then::kGoOn;
}

Then WriteToBus(FeatureWrite& write) {
  if (write.offset != feature::kUartOvertime && write.address < kBase + feature::kBusEnd) {
    write.global.WriteFeatureBus(write.offset, write.data);
  }
  return Then::kGoOn;
}

Then SetPowerOnTime(FeatureWrite& write) {
  if (!write.IsByteAt(feature::kPowerOnTime)) return Then::kGoOn;
  const int value = write.data[0];
  const int screen = value > kPowerOnTimeBase ? value - kPowerOnTimeBase : 0;
  MCUC_LOG(kLogInfo, "======= Set RvCard PowerOn Time : envcfg set boot_screen " << screen);
  char command[48];
  std::snprintf(command, sizeof(command), "envcfg set boot_screen %d", screen);
  platform::RunShell(command);
  return Then::kGoOn;
}

Then MirrorCorrection(FeatureWrite& write) {
  if (write.address != kBase + feature::kCorrection) return Then::kGoOn;
  MCUC_LOG(kLogInfo, "============ correction =" << write.data[0]);
  write.global.SendDatetoOWD(write.address, write.data.data(), write.length());
  return Then::kGoOn;
}

Then ChangeBypass(FeatureWrite& write) {
  ApplyBypass(write);
  return Then::kGoOn;
}

Then ReportAfresh(FeatureWrite& write) {
  if (write.address == kBase + feature::kReportAfresh) {
    write.global.OptToNetEnableOnce = true;
  }
  return Then::kGoOn;
}

// The brightness plans watch the serial link: its limit, and that it was heard.
Then InformBrightness(FeatureWrite& write) {
  using Brightness = Addr_HardWareBrightnessAdjust;
  const uint8_t limit_s = write.reg[feature::kUartOvertime];
  if (limit_s != 0 && limit_s != Brightness::UartDiscOvertime) {
    Brightness::UartDiscOvertime = limit_s;
    Brightness::SaveBrightnessPara();
  }
  if (write.IsByteAt(feature::kUartOvertime)) Brightness::DevComLinkState = 1;
  return Then::kGoOn;
}

void SetClock(const FeatureWrite& write) {
  auto time = write.reg.snapshot<BasicPublicFunc::kTimeBytes>(feature::kClock);
  // A read may have refreshed the clock bytes meanwhile: the client's own count.
  for (std::size_t i = 0, at = write.offset - feature::kClock;
       i < write.data.size() && at + i < time.size(); ++i) {
    time[at + i] = write.data[i];
  }
  BasicPublicFunc::getInstance()->SetHwTime(time);
}

void SetRole(const FeatureWrite& write) {
  constexpr uint8_t kZeros[4] = {};
  Data_Global& global = write.global;
  DriverUtil* driver = DriverUtil::getInstance();
  const uint8_t role = write.data[0];
  const uint8_t slave = role == feature::kRoleSlave ? 1 : 0;
  global.PbufMorSMode = slave;
  MCUC_LOG(kLogInfo, (slave != 0 ? "=== PbufMorSMode Set Sender Mode salve!    -----  01"
                                 : "=== PbufMorSMode Set Sender Mode maste!   ------- 00"));
  if (driver->WriteDataToFlash(flash::kMorSMode, 1, &slave) != 0) {
    MCUC_LOG(kLogError, "=== DoWriteFeatureInfo ===Set 0x0200_009d to "
                            << role << ", save PbufMorSMode to flash failed !");
  }
  global.SendMasterOrBackup(slave);
  driver->WriteDataToFlash(flash::kFeature + feature::kRole, 1, &role);
  global.NormalBackupStatus = 0;
  if (global.CopyConstDataToFlash(flash::kSlaveMark, kZeros, sizeof(kZeros)) != 0) {
    MCUC_LOG(kLogError,
             "=== DoWriteFeatureInfo =========Set  Device <Slave> 0x0200_009d to 0xA5, clear "
             "0x05065000 flash failed !");
  }
}

Then ActOnOne(FeatureWrite& write) {
  if (write.offset >= feature::kClock &&
      write.offset < feature::kClock + BasicPublicFunc::kTimeBytes) {
    SetClock(write);
  } else if (write.IsByteAt(feature::kTestFlag)) {
    write.global.RWFPGATestflag = write.data[0];
  } else if (write.IsByteAt(feature::kRole)) {
    SetRole(write);
  }
  return Then::kGoOn;
}

Then ClearScreenSize(FeatureWrite& write) {
  constexpr uint8_t kZeros[4] = {};
  if ((write.address & 0xFF) != feature::kRealWidth) return Then::kGoOn;
  MCUC_LOG(kLogInfo, "CCCCCCCCCCCCCCCCCCCCCCCC Clear SendParameterReg[0x1EC]  CCCCCCCCCCCCCCCCCCC");
  write.global.WriteFeatureBus(feature::kScreenWidth, kZeros);
  return Then::kGoOn;
}

bool TouchesScreenSize(const FeatureWrite& write) {
  struct Stretch {
    uint32_t first;
    uint32_t behind;
  };
  constexpr Stretch kStretches[] = {{491, 496}, {35, 40}, {43, 46}};
  for (const Stretch& stretch : kStretches) {
    if (write.offset < stretch.behind && write.offset + write.length() > stretch.first) return true;
  }
  return false;
}

Then SetScreenSize(FeatureWrite& write) {
  auto& reg = write.reg;
  if (!TouchesScreenSize(write)) {
    MCUC_LOG(kLogInfo,
             "========addr > 0x1EF || (addr + len ) <0x1EC ....OR.... addr > 0x24 || (addr + len ) "
             "<0x27  not set ScreenSize !!!!");
    return Then::kGoOn;
  }
  uint32_t width = reg.u16(feature::kScreenWidth);
  uint32_t height = reg.u16(feature::kScreenHeight);
  if (width != 0 && height != 0) {
    const uint16_t x = reg.u16(feature::kOffsetX);
    const uint16_t y = reg.u16(feature::kOffsetY);
    if (write.BypassIsOn() && width > x && height > y) {
      width -= x;
      height -= y;
    }
    MCUC_LOG(kLogInfo, "========Set ScreenSize(0x1EC~0x1EF) if OK ,use OutCut DVI wide&high is "
                           << width << " " << height);
  } else {
    width = reg.u16(feature::kSetWidth);
    height = reg.u16(feature::kRealHeight);
    MCUC_LOG(kLogInfo, "========Set ScreenSize(0x1EC~0x1EF) if fail ,use Real DVI wide&high is "
                           << width << " " << height);
    if (write.offset == feature::kSetWidth) {
      reg.setU16(feature::kScreenWidth, static_cast<uint16_t>(width));
    }
    if (write.offset == feature::kRealHeight) {
      reg.setU16(feature::kScreenHeight, static_cast<uint16_t>(height));
    }
  }
  write.global.ChangeOutScreenPara(width, height);
  return Then::kGoOn;
}

Then SetHighSpeed(FeatureWrite& write) {
  if (write.IsByteAt(feature::kHighSpeed)) {
    write.global._gCorroentHighSpeed = write.data[0] == 1 ? 1 : 0;
  }
  return Then::kGoOn;
}

// Writes the byte at `offset` to its place in the stored image.
int32_t StoreByte(const FeatureWrite& write, uint32_t offset) {
  const uint8_t value = write.reg[offset];
  return DriverUtil::getInstance()->WriteDataToFlash(flash::kFeature + offset, 1, &value);
}

Then StoreOptPortMode(FeatureWrite& write) {
  if (write.offset != feature::kOptPortMode) return Then::kGoOn;
  if (StoreByte(write, feature::kOptPortMode) != 0) {
    MCUC_LOG(kLogError, "=== DoWriteFeatureInfo =========OptPort mode WriteDataToFlash failed !");
  } else {
    MCUC_LOG(kLogInfo, "======OptPort mode WriteDataToFlash ok !!! !");
  }
  return Then::kGoOn;
}

Then Store4K(FeatureWrite& write) {
  if (write.offset != feature::k4K) return Then::kGoOn;
  uint8_t value = write.reg[feature::k4K];
  st_info_op(1, write.address, 1, &value);  // its result says nothing to anybody
  if (StoreByte(write, feature::k4K) != 0) {
    MCUC_LOG(kLogError, "=== DoWriteFeatureInfo =========vio4K WriteDataToFlash failed !");
  }
  return Then::kGoOn;
}

Then StoreImage(FeatureWrite& write) {
  auto image = write.reg.snapshot<feature::kSize>(0);
  if (write.switched.has_value()) {
    // The FPGA gets these after the store: a read may have refreshed the image from it meanwhile.
    std::ranges::copy(write.switched->offsets, image.begin() + feature::kOffsetX);
    std::ranges::copy(write.switched->size, image.begin() + feature::kScreenWidth);
  }
  if (DriverUtil::getInstance()->WriteDataToFlash(flash::kFeature, image.size(), image.data()) !=
      0) {
    MCUC_LOG(kLogError, "=== DoWriteFeatureInfo ========= WriteDataToFlash failed !");
  }
  return Then::kGoOn;
}

Then FinishBypassSwitch(FeatureWrite& write) {
  SendBypassGeometry(write);
  return Then::kGoOn;
}

Then Sync(FeatureWrite& write) {
  if (write.offset == feature::kSync) platform::RunShell("sync");
  return Then::kGoOn;
}

constexpr Step kSteps[] = {
    StoreInImage, RefuseLowDelayInBypass, MirrorToService,
    WriteToBus,   SetPowerOnTime,         MirrorCorrection,
    ChangeBypass, ReportAfresh,           InformBrightness,
    ActOnOne,     ClearScreenSize,        SetScreenSize,
    SetHighSpeed, StoreOptPortMode,       Store4K,
    StoreImage,   FinishBypassSwitch,     Sync,
};

}  // namespace

void Data_Global::DoWriteFeatureInfo(uint32_t addr, uint16_t len, const uint8_t* data) {
  const uint32_t offset = addr & 0xFFFF;
  if (data == nullptr || len == 0 || offset + len > feature::kSize) return;
  FeatureWrite write{*this, SendParameterReg, addr, offset, {data, len}};
  for (const Step step : kSteps) {
    if (step(write) == Then::kStop) break;
  }
  EndFeatureWrite();
}

}  // namespace ZEPH_MCUC
