#include "process/basicpublicfunc.h"

#include <platform/envcfg.h>
#include <platform/system.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "driverutil.h"
#include "mcuctrace.h"
#include "process/calc_time.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kTextSize = 50;

// The first three numbers of `text`, cut at `separator`, as BCD of their last two digits.
void TakeNumbers(char* text, const char* separator, std::span<uint8_t, 3> into) {
  char* rest = nullptr;
  char* token = strtok_r(text, separator, &rest);
  for (uint8_t& byte : into) {
    if (token == nullptr) return;
    byte = ToBcd(static_cast<uint8_t>(std::abs(std::atoi(token) % 100)));
    token = strtok_r(nullptr, separator, &rest);
  }
}

}  // namespace

void BasicPublicFunc::GetHwTime(std::span<uint8_t, kTimeBytes> timedata) {
  char text[kTextSize] = {};
  if (const int result = envcfg_get_date_ymd(text); result != 0) {
    MCUC_LOG(kLogError, "=== ReadFromFeatureInfo ===get date ymd error = " << result);
  } else {
    TakeNumbers(text, "-", timedata.first<3>());
  }
  std::memset(text, 0, sizeof(text));
  if (const int result = envcfg_get_date_hms(text); result != 0) {
    MCUC_LOG(kLogError, "=== ReadFromFeatureInfo ===get date hms error = " << result);
  } else {
    TakeNumbers(text, ":", timedata.last<3>());
  }
}

void BasicPublicFunc::SetHwTime(std::span<const uint8_t, kTimeBytes> timedata) {
  if (!IsTime(timedata)) {
    char text[3 * kTimeBytes + 1];
    Bytes2String(timedata.data(), kTimeBytes, text, sizeof(text));
    MCUC_LOG(kLogError, "=== SetHwTime ===no such time, not set: " << text);
    return;
  }
  std::array<uint8_t, kTimeBytes> time;
  for (std::size_t i = 0; i < kTimeBytes; ++i) time[i] = FromBcd(timedata[i]);
  DriverUtil* driver = DriverUtil::getInstance();
  driver->WriteDate(time[0], time[1], time[2]);
  driver->WriteTime(time[3], time[4], time[5]);
  driver->WriteWeekday(CalcWeekday(timedata[0], timedata[1], timedata[2]));
  Data_Global::getInstance()->sync_hwtime_flag = 1;
  platform::RunShell("hwclock -w --localtime");
}

uint8_t BasicPublicFunc::CalcWeekday(uint8_t year, uint8_t month, uint8_t date) {
  return WeekdayOf(FromBcd(year), FromBcd(month), FromBcd(date));
}

}  // namespace ZEPH_MCUC
