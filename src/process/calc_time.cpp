#include "process/calc_time.h"

#include <algorithm>

namespace ZEPH_MCUC {

uint8_t DaysOfMonth(uint8_t year, uint8_t month) {
  constexpr uint8_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  const bool leap = year % 4 == 0;  // from 2000 to 2099 no century breaks the rule
  return static_cast<uint8_t>(kDays[month - 1] + (month == 2 && leap ? 1 : 0));
}

uint8_t WeekdayOf(uint8_t year, uint8_t month, uint8_t day) {
  int y = 2000 + year;
  int m = month;
  if (m <= 2) {  // January and February count as months 13 and 14 of the year before
    m += 12;
    --y;
  }
  const int w = day + 1 + 2 * m + 3 * (m + 1) / 5 + y + y / 4 - y / 100 + y / 400;
  return static_cast<uint8_t>(w % 7 == 0 ? 7 : w % 7);
}

bool IsTime(std::span<const uint8_t, 6> bcd) {
  if (!std::all_of(bcd.begin(), bcd.end(), IsBcd)) return false;
  const uint8_t month = FromBcd(bcd[1]);
  const uint8_t day = FromBcd(bcd[2]);
  return month >= 1 && month <= 12 && day >= 1 && day <= DaysOfMonth(FromBcd(bcd[0]), month) &&
         FromBcd(bcd[3]) <= 23 && FromBcd(bcd[4]) <= 59 && FromBcd(bcd[5]) <= 59;
}

}  // namespace ZEPH_MCUC
