// Writes to the hardware basic information.
#include <platform/envcfg.h>
#include <platform/system.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "driverutil.h"
#include "mcuctrace.h"
#include "process/basicpublicfunc.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_identity.h"

namespace ZEPH_MCUC {
namespace {

using Area = std::array<uint8_t, basicinfo::kSize>;
constexpr int kAfterTool_ms = 10;

void SetSerial(std::span<const uint8_t> data, Area* area) {
  const auto serial = data.subspan<basicinfo::kSerial, kSerialBytes>();
  std::copy(serial.begin(), serial.end(), area->begin() + basicinfo::kSerial);
  if (envcfg_openenv() != 0) {
    envcfg_closeenv();
    MCUC_LOG(kLogError, "=== WriteHwBasicInfomation ===open env failed");
    return;
  }
  if (envcfg_setenv("device_sn", SerialText(serial).c_str()) != 0) {
    MCUC_LOG(kLogError, "=== WriteHwBasicInfomation ===set env device_sn failed");
  }
  envcfg_closeenv();
}

void MarkAddressSet() {
  if (envcfg_openenv() != 0) {
    envcfg_closeenv();
    MCUC_LOG(kLogError,
             "=== WriteHwBasicInfomation ===When set ethaddr_set flag, open env failed !");
    return;
  }
  if (envcfg_setenv("ethaddr_set", "1") != 0) {
    MCUC_LOG(kLogError, "=== WriteHwBasicInfomation ===Set ethaddr_set flag failed !");
  } else {
    MCUC_LOG(kLogInfo, "Set ethaddr_set flag success. ");
  }
  envcfg_closeenv();
}

void SetMac(std::span<const uint8_t> data, Area* area) {
  std::copy_n(data.begin(), basicinfo::kMacBytes, area->begin() + basicinfo::kMac);
  char command[96];
  std::snprintf(command, sizeof(command),
                "/usr/brm100/bin/fw_setenv ethaddr %02x:%02x:%02x:%02x:%02x:%02x", data[1], data[2],
                data[3], data[4], data[5], data[6]);
  platform::RunShell(command);
  Delay(kAfterTool_ms);
  MarkAddressSet();
}

// Puts what a write at `addr` may change into `area`; anything else changes nothing.
void Apply(uint32_t addr, std::span<const uint8_t> data, Area* area) {
  const auto take = [&](uint32_t at) {
    std::copy_n(data.begin(), std::min<std::size_t>(data.size(), 2), area->begin() + at);
  };
  if (addr == basicinfo::kModel && data.size() == 2) {
    take(basicinfo::kModel);
  } else if (addr == basicinfo::kClient7 && data.size() == 2) {
    take(basicinfo::kClient7);
  } else if (addr == basicinfo::kClient10) {
    take(basicinfo::kClient10);
  } else if (addr == 0 && data.size() == basicinfo::kSize) {
    SetSerial(data, area);
  } else if (addr == basicinfo::kMac && data.size() == basicinfo::kMacBytes) {
    SetMac(data, area);
  }
}

}  // namespace

void BasicPublicFunc::SetHwBasicinfo(uint32_t addr, std::span<const uint8_t> data) {
  MCUC_LOG(kLogInfo,
           "============================ Begin Write HWBasic Info ===========================");
  DriverUtil* driver = DriverUtil::getInstance();
  Area area{};
  driver->ReadBytesFromFlash(flash::kBasicInfo, area.size(), area.data());
  Apply(addr, data, &area);
  driver->WriteDataToFlash(flash::kBasicInfo, area.size(), area.data());
  MCUC_LOG(kLogInfo,
           "============================ Finish Write HWBasic Info ==========================");
}

int32_t BasicPublicFunc::GetHwBasicinfo(uint32_t addr, std::span<uint8_t> data) {
  return DriverUtil::getInstance()->ReadBytesFromFlash(
      (addr & 0xFFFFFF) + flash::kBasicInfo, static_cast<uint32_t>(data.size()), data.data());
}

}  // namespace ZEPH_MCUC
