// The time in register form (six bytes of two BCD digits each: year since 2000, month, day, hour,
// minute, second) and the hardware basic information.
#pragma once

#include <cstdint>
#include <span>

#include "mcucsingleton.h"

namespace ZEPH_MCUC {

class BasicPublicFunc : public Singleton<BasicPublicFunc> {
 public:
  static constexpr std::size_t kTimeBytes = 6;

  // Fills the six bytes from the hardware clock; a part that can't be read stays. Any thread.
  void GetHwTime(std::span<uint8_t, kTimeBytes> timedata);

  // Sets the system clock, and the hardware clock from it. Bytes that are not BCD, or a date or
  // time that does not exist, are logged and not set. Work thread.
  void SetHwTime(std::span<const uint8_t, kTimeBytes> timedata);

  // The weekday of a BCD date, 1 for Monday to 7 for Sunday.
  static uint8_t CalcWeekday(uint8_t year, uint8_t month, uint8_t date);

  // Takes a write of `data` at register `addr` of the basic information into flash, as far as
  // clients may change it; a serial number also goes to the environment store, a MAC address to the
  // boot loader. Failures are logged. Work thread. (basicpublicfunc_identity.cpp)
  void SetHwBasicinfo(uint32_t addr, std::span<const uint8_t> data);
  // Reads `data.size()` bytes of it from flash. 0, or the platform's failure.
  int32_t GetHwBasicinfo(uint32_t addr, std::span<uint8_t> data);
};

}  // namespace ZEPH_MCUC
