// The clock: register form, number form, setting it, and what is not a time.
#include <gtest/gtest.h>
#include <platform/system.h>

#include <ctime>

#include "driverutil.h"
#include "process/basicpublicfunc.h"
#include "process/calc_time.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;

using device::kSunday;

TEST(Clock, WeekdayIsThatOfTheCalendar) {
  for (std::time_t day = 946'684'800; day < 4'102'444'800; day += 86'400) {  // 2000 to 2099
    std::tm date{};
    gmtime_r(&day, &date);
    const int expected = date.tm_wday == 0 ? 7 : date.tm_wday;
    ASSERT_EQ(BasicPublicFunc::CalcWeekday(ToBcd(static_cast<std::uint8_t>(date.tm_year - 100)),
                                           ToBcd(static_cast<std::uint8_t>(date.tm_mon + 1)),
                                           ToBcd(static_cast<std::uint8_t>(date.tm_mday))),
              expected)
        << day;
  }
}

TEST(Clock, WriteSetsSystemAndHardwareClock) {
  device::Begin("fpga flash shell clock");
  device::PutImage(0x1EC, "80008000");
  device::SetClock(kSunday);
  support::Trace trace;
  device::WriteFeature(0x11, "311231235958");
  EXPECT_EQ(trace.Take(), R"(fpga W 0x11 311231235958
clock set 1956459599
clock set 1956527998
clock set 1956527998
shell hwclock -w --localtime
flash W 0xa3b100 x512
)");
  EXPECT_EQ(Data_Global::getInstance()->sync_hwtime_flag, 1);
  EXPECT_EQ(platform::Time(), 1'956'527'998);
  EXPECT_EQ(device::Hex(inprocess::Read(0x02000011, 6).m_data), "311231235958");
}

TEST(Clock, OneByteOfTheTimeSetsItWithTheOthersAsTheyWereRead) {
  device::Begin("none");
  device::SetClock(kSunday);
  inprocess::Read(0x02000011, 6);
  device::WriteFeature(0x14, "23");
  EXPECT_EQ(platform::Time(), kSunday + 19 * 3600);
}

TEST(Clock, WhatIsNoTimeIsLoggedAndNotSet) {
  constexpr const char* kCases[] = {
      "2a0101000000", "24a101000000", "240101000a00", "2401010000f0",  // no BCD
      "240001000000", "241301000000", "240100000000", "240132000000",  // no date
      "230229000000", "240230000000", "240431000000",                  // not in this year or month
      "240101240000", "240101006000", "240101000060",                  // no time of day
  };
  device::Begin("clock shell");
  device::SetClock(kSunday);
  device::Log log(0);
  device::PutImage(0x1EC, "80008000");
  support::Trace trace;
  for (const char* bytes : kCases) {
    device::WriteFeature(0x11, bytes);
    EXPECT_EQ(trace.Take(), "") << bytes;
    EXPECT_TRUE(log.Take().starts_with("Error === SetHwTime ===no such time, not set: ")) << bytes;
  }
  EXPECT_EQ(Data_Global::getInstance()->sync_hwtime_flag, 0);
  device::WriteFeature(0x11, "240229235959");
  EXPECT_EQ(support::Count(trace.Take(), "clock set"), 3) << "a leap day is a day";
}

}  // namespace
