// From memory to flash: the full save, the basic area, the paged copy.
#include <platform/system.h>

#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint16_t kMostPixels = 3840;  // of a width, height or offset that passes verification
constexpr uint8_t kMostPowerOnTime = 254;
constexpr uint32_t kPage = 256;
constexpr uint8_t kBasicValidMark = 0x55;
constexpr uint8_t kFlashSoftware = 2;  // flash numbers are told apart by nobody

// Writes `length` bytes that threads share; logs a failure in the words of the step.
template <std::size_t N>
void Store(uint32_t address, const SharedBytes<N>& bytes, const char* what) {
  std::array<uint8_t, N> copy;
  bytes.read(0, copy);
  MCUC_LOG(kLogInfo, "Save " << what << " para to flash :");
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(address, N, copy.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== Save " << what << " para to flash failed! ret = " << result);
  }
}

void StoreWordTable() {
  constexpr std::size_t kBytes = 512;
  SharedBytes<kBytes> bytes;
  for (std::size_t i = 0; i < kBytes / 2; ++i) bytes.setU16(2 * i, ParaTable[i]);
  Store(flash::kParaTable, bytes, "Global");
}

bool WordsPass(const SharedBytes<512>& reg, std::span<const uint16_t> offsets) {
  return std::all_of(offsets.begin(), offsets.end(),
                     [&](uint16_t at) { return reg.u16(at) <= kMostPixels; });
}

bool PortsPass(const SharedBytes<512>& reg) {
  return std::all_of(kPortPlaces.begin(), kPortPlaces.end(), [&](const PortPlace& port) {
    const uint16_t words[] = {port.width, port.height, port.offsetX, port.offsetY};
    return WordsPass(reg, words);
  });
}

// Says whether the image looks right. It is saved whatever the verdict.
void Verify(const SharedBytes<512>& reg) {
  constexpr char kInvalid[] = "Finish parameter verify, the parameter is invalid!";
  constexpr uint16_t kScreenWords[] = {feature::kRealWidth, feature::kRealHeight, feature::kOffsetX,
                                       feature::kOffsetY, feature::kSetWidth};
  const bool passes = reg[feature::kPowerOnTime] <= kMostPowerOnTime &&
                      WordsPass(reg, kScreenWords) && PortsPass(reg);
  if (passes) {
    MCUC_LOG(kLogInfo, "Finish parameter verify. the parameter is OK.");
    return;
  }
  MCUC_LOG(kLogError, kInvalid);
  MCUC_LOG(kLogInfo, kInvalid);
}

bool StoreIsNew() {
  std::array<uint8_t, 4> tag{};
  DriverUtil::getInstance()->ReadBytesFromFlash(flash::kNewFlashTag, tag.size(), tag.data());
  return tag != Data_Global::IsNewFlashTag;
}

void SaveAll(Data_Global* data) {
  const bool newFlashMarked = StoreIsNew();
  data->KeepOwnImage();
  Verify(data->SendParameterReg);
  Store(flash::kFeature, data->SendParameterReg, "feature");
  StoreWordTable();
  if (newFlashMarked) {
    const auto& tag = Data_Global::IsNewFlashTag;
    DriverUtil::getInstance()->WriteDataToFlash(flash::kNewFlashTag, tag.size(), tag.data());
  }
  Store(flash::kPosition, PortsTopoPara, "position");
  Store(flash::kNumber, NumberPartPara, "number");
  platform::RunShell("sync");
}

void SaveBasicInfo() {
  MCUC_LOG(kLogInfo, "Save basic hardware para to flash :");
  const auto bytes = Data_Preset::getInstance()->BasicHardWareReg.snapshot<256>(0);
  const int32_t result =
      DriverUtil::getInstance()->PageProgram(1, flash::kBasicInfoCopy, bytes.size(), bytes.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== Save  basic hardware para to flash failed! ret = " << result);
  }
}

}  // namespace

void Data_Global::SaveParaToFlash(uint8_t sel) {
  MCUC_LOG(kLogInfo, "======================Save para to flash, the type = "
                         << sel << " =========================");
  if (sel == kSaveAll) SaveAll(this);
  if (sel == kSaveBasicInfo) SaveBasicInfo();
  MCUC_LOG(kLogInfo,
           "=========================== Finish save para to flash ===========================");
}

void Data_Global::SaveBasicParaToFlash() {
  MCUC_LOG(kLogInfo,
           "======================== Begin save basic para to flash =========================");
  DriverUtil* driver = DriverUtil::getInstance();
  driver->WriteDataToFlash(flash::kBasicValid, 1, &kBasicValidMark);
  const auto bytes = Data_Preset::getInstance()->BasicHardWareReg.snapshot<16>(0);
  driver->WriteDataToFlash(flash::kBasicInfo, bytes.size(), bytes.data());
  MCUC_LOG(kLogInfo,
           "======================== Finish save basic para to flash ========================");
}

int32_t Data_Global::CopyConstDataToFlash(uint32_t SpiAddress, const uint8_t* wrindata,
                                          uint32_t Length) {
  const uint32_t temp = Length / kPage;
  const auto mod = static_cast<uint16_t>(Length % kPage);
  DriverUtil* driver = DriverUtil::getInstance();
  MCUC_LOG(kLogInfo,
           "======================== Begin copy const data to flash =========================");
  for (uint32_t i = 0; i < temp; ++i) {
    const uint32_t address = SpiAddress + i * kPage;
    const int32_t result =
        driver->PageProgram(kFlashSoftware, address, kPage, wrindata + i * kPage);
    MCUC_LOG(kLogInfo, "Copy const data to flash : the real addr = "
                           << CTrace::hex << address << " result = " << result << " temp = " << temp
                           << " i = " << i);
  }
  const uint32_t address = SpiAddress + temp * kPage;
  const int32_t result = driver->PageProgram(kFlashSoftware, address, mod, wrindata + temp * kPage);
  MCUC_LOG(kLogInfo, "Copy const data to flash : the real addr = "
                         << CTrace::hex << address << " result = " << result
                         << " spi address = " << CTrace::hex << SpiAddress << " mod = " << mod);
  return result;
}

}  // namespace ZEPH_MCUC
