// What a write of the brightness table sets off, and how the table comes to flash and back.
#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_brightness_watchdog.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

using brightness::kAreaSize;
using brightness::kImageSize;

constexpr uint32_t kStoredWithMode = 0x1000;  // bytes that a write of the mode byte stores again
constexpr uint32_t kPage = 0x100;
constexpr uint8_t kLeastOvertime_s = 2;  // limits outside are not taken over at start
constexpr uint8_t kMostOvertime_s = 0x77;

enum_Active Active(bool active) { return active ? ENABLE : DISABLE; }

// A write of the table: bytes and where in it they belong.
struct TableWrite {
  uint32_t offset;
  std::span<const uint8_t> data;

  uint32_t end() const { return offset + static_cast<uint32_t>(data.size()); }
  bool IsByteAt(uint32_t at) const { return offset == at && data.size() == 1; }
};

// Writes to the area; a failure is logged.
void Store(uint32_t offset, std::span<const uint8_t> bytes) {
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(
      flash::kBrightness + offset, static_cast<uint32_t>(bytes.size()), bytes.data());
  if (result != 0) {
    MCUC_LOG(kLogError,
             "=== SetBrightnessAdjustTable ===Write brightness info to flash failed. "
             "ret = "
                 << result);
  }
}

// Makes `plan` the one plan in force; null for none.
void ChoosePlan(const Brightness::Flag* plan) {
  for (Brightness::Flag* flag :
       {&Brightness::ProgrammableAdjustEnable, &Brightness::AutoBrightnessAdjustEnable,
        &Brightness::MixBrightnessAdjustEnable, &Brightness::SerialCtrlScreenBlackEnable,
        &Brightness::HardwareCtrlAdjustEnable}) {
    *flag = Active(flag == plan);
  }
}

const Brightness::Flag* PlanOfMixFamily(uint8_t mode) {
  if (mode == brightness::kHardwareMode) return &Brightness::HardwareCtrlAdjustEnable;
  if (mode == brightness::kSerialMode) return &Brightness::SerialCtrlScreenBlackEnable;
  return &Brightness::MixBrightnessAdjustEnable;
}

void StopRepeats() {
  Brightness::BriBroadcastEnable = DISABLE;
  Brightness::BriBroadcastArrived = DISABLE;
}

void StartAlone(const Brightness::Flag* plan) {
  ChoosePlan(plan);
  Brightness::MixAutoBriAdjustEnable = DISABLE;
  StopRepeats();
  Brightness::BrightnessAdjustInit();
}

void StopAll() {
  Brightness::PlanChanges = Brightness::PlanChanges + 1;
  ChoosePlan(nullptr);
  StopRepeats();
  for (Brightness::Flag* flag :
       {&Brightness::MixAutoBriAdjustEnable, &Brightness::ProgrammableAdjustArrived,
        &Brightness::AutoBrightnessAdjustArrived, &Brightness::RtcIntOccurArrived,
        &Brightness::MixBriAdjustGlobalControl, &Brightness::MixBriAdjustControl,
        &Brightness::LastMixBriAdjustControl}) {
    *flag = DISABLE;
  }
}

void SwitchMix(bool on) {
  Brightness::MixBriAdjustControl = Active(on);
  if (!on) StopRepeats();
  if (Brightness::LastMixBriAdjustControl == Active(on)) return;
  Brightness::LastMixBriAdjustControl = Active(on);
  Brightness::BrightnessAdjustInit();
}

void StorePiece(const TableWrite& write) {
  if (write.offset == 0 && write.data.size() > brightness::mix::kFileLength + 1) {
    Brightness::ConfigFileLength = write.data[brightness::mix::kFileLength] |
                                   write.data[brightness::mix::kFileLength + 1] << 8;
  }
  Store(write.offset, write.data);
}

// Whether the write is part of a file. The tables of list and sensor live in memory; the mix is
// switched, and the mode changed, by a byte alone.
bool IsPiece(uint8_t mode, const TableWrite& write) {
  if (mode == brightness::kListMode || mode == brightness::kSensorMode) return false;
  const bool alone = write.IsByteAt(0) || write.IsByteAt(brightness::mix::kOn);
  return !(brightness::IsMixFamily(mode) && alone);
}

void TakeMixWrite(const TableWrite& write) {
  if (write.IsByteAt(brightness::mix::kOn)) {
    SwitchMix(write.data[0] != 0);
    return;
  }
  const bool complete = write.IsByteAt(0) || write.end() == Brightness::ConfigFileLength;
  if (!complete) return;  // more of the file is to come
  Brightness::BriAdjustModeProcess();
  Brightness::BrightnessAdjustInit();
}

// The mode byte alone goes to flash at once; the rest of what is stored stays.
void StoreMode(uint8_t mode) {
  std::array<uint8_t, kStoredWithMode> stored{};
  if (!Brightness::ReadArea(0, stored)) {
    MCUC_LOG(kLogError, "=== SetBrightnessAdjustTable ===Read flash failed, the mode isn't stored");
    return;
  }
  stored[0] = mode;
  for (uint32_t at = 0; at < stored.size(); at += kPage) {
    Store(at, std::span<const uint8_t>(stored).subspan(at, kPage));
  }
}

}  // namespace

constinit CMutexThread Brightness::m_area;
bool Brightness::m_imageLoaded = false;

void Brightness::LoadImage() {
  brightness::Image image{};
  m_imageLoaded = ReadArea(0, image);
  if (m_imageLoaded) {
    ProgrammableTimeTableArray.write(0, image);
  } else {
    MCUC_LOG(kLogError, "=== UpdataBrightnessPara ===Read brightness info from flash failed");
  }
}

// What comes before the loop's first pass finds the stored table, not an empty one.
void Brightness::LoadImageOnce() {
  if (!m_imageLoaded) LoadImage();
}

void Brightness::SetBrightnessAdjustTable(uint32_t addr, uint16_t length, const uint8_t* data) {
  const TableWrite write{addr & brightness::kOffsetMask, {data, length}};
  if (data == nullptr || length == 0 || write.end() > kAreaSize) {
    MCUC_LOG(kLogError, "=== SetBrightnessAdjustTable ===Invalid addr+len, return! address = "
                            << CTrace::hex << addr << " length = " << length);
    return;
  }
  uint8_t mode = 0;
  {
    const CMutexGuardT guard(m_area);
    LoadImageOnce();
    if (write.end() <= kImageSize) ProgrammableTimeTableArray.write(write.offset, write.data);
    if (write.IsByteAt(0)) StoreMode(write.data[0]);
    mode = ProgrammableTimeTableArray[0];
    if (IsPiece(mode, write)) {
      StorePiece(write);
      // A piece that begins in the image and ends behind it: what it has of the image is there too,
      // or the next store of the image would bring the old bytes back.
      ProgrammableTimeTableArray.write(write.offset, write.data);
    }
  }
  const CMutexGuardT guard(m_plan);
  if (mode == brightness::kListMode) {
    StartAlone(&ProgrammableAdjustEnable);
  } else if (mode == brightness::kSensorMode) {
    StartAlone(&AutoBrightnessAdjustEnable);
  } else if (brightness::IsMixFamily(mode)) {
    TakeMixWrite(write);
  } else {
    StopAll();
  }
}

void Brightness::BriAdjustModeProcess() {
  const brightness::MixHeader header = brightness::HeaderOf(TheImage());
  MixBriAdjustGlobalControl = Active(header.runs);
  MixBriAdjustControl = Active(header.on && header.runs);
  GradualAdjustControl = Active(header.gradual);
  LastMixBriAdjustControl = Active(header.on && header.runs);
  MixAutoBriAdjustEnable = DISABLE;
  ChoosePlan(header.runs ? PlanOfMixFamily(ProgrammableTimeTableArray[0]) : nullptr);
}

void Brightness::UpdataBrightnessPara() {
  const uint8_t overtime = Data_Global::getInstance()->SendParameterReg[feature::kUartOvertime];
  if (overtime >= kLeastOvertime_s && overtime <= kMostOvertime_s) {
    UartDiscOvertime = overtime;
  } else {
    const uint8_t limit_s = std::min<uint8_t>(UartDiscOvertime, brightness::kMostSilence_s);
    TIM2_PeriodCnt = static_cast<uint8_t>(limit_s + 1);
  }
  {
    const CMutexGuardT guard(m_area);
    LoadImage();
  }
  const CMutexGuardT guard(m_plan);
  const brightness::MixHeader header = brightness::HeaderOf(TheImage());
  MixBriAdjustGlobalControl = Active(header.runs);
  GradualAdjustControl = Active(header.gradual);
  const uint8_t mode = ProgrammableTimeTableArray[0];
  const Flag* plan = nullptr;
  if (mode == brightness::kListMode) plan = &ProgrammableAdjustEnable;
  if (mode == brightness::kSensorMode) plan = &AutoBrightnessAdjustEnable;
  if (brightness::IsMixFamily(mode) && header.runs) plan = PlanOfMixFamily(mode);
  ChoosePlan(plan);
  if (plan == &ProgrammableAdjustEnable || plan == &MixBrightnessAdjustEnable) {
    BrightnessAdjustInit();
  }
}

void Brightness::SaveBrightnessPara() {
  const CMutexGuardT guard(m_area);
  LoadImageOnce();
  if (!m_imageLoaded) return;  // nothing to store that isn't there
  std::array<uint8_t, kAreaSize> area{};
  const bool whole = ReadArea(0, area);
  ProgrammableTimeTableArray.read(0, std::span(area).first(kImageSize));
  const std::span<const uint8_t> bytes(area);
  Store(0, bytes.first(kPage));
  Store(kPage, bytes.subspan(kPage, kPage));
  if (whole) {
    Store(kImageSize, bytes.subspan(kImageSize));
  } else {
    MCUC_LOG(kLogError,
             "=== SaveBrightnessPara ===Read flash failed, what follows the image stays");
  }
}

}  // namespace ZEPH_MCUC
