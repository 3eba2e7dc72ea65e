// platform/system.h: the clock chip, as the daemon sets it.
#include <driverutil_comif.h>
#include <fcntl.h>
#include <platform/system.h>

#include "check/report.h"

namespace check {
namespace {

constexpr unsigned long kRequest = 0xC10065A0;

// The second output at 1920 x 1080 and 60 Hz.
ZEPH_MCUC::i2cdev_ioctl_access_t Setting() {
  ZEPH_MCUC::i2cdev_ioctl_access_t record{};
  record.header.length = sizeof record;
  record.header.type = ZEPH_MCUC::T_I2CDEV;
  record.header.cmd = ZEPH_MCUC::COMIF_WRITE;
  record.extra.header.subtype = ZEPH_MCUC::T_I2CDEV_CLK_CFG;
  record.extra.header.devtype = ZEPH_MCUC::T_I2CDEV_DEVTYPE_IDT6965;
  record.extra.clk_config.out_clk = 33;
  record.extra.clk_config.fre_hz = 148'500'000;
  record.extra.clk_config.out_select = 1;
  record.extra.clk_config.mode_select = 3;
  return record;
}

}  // namespace

void Devices(Report& report, const Options& options) {
  report.Holds(platform::OpenDevice("/dev/quivord-no-such-device", O_RDWR) == -1,
               "a device that is not there does not open");
  Buffer untouched(sizeof(ZEPH_MCUC::i2cdev_ioctl_access_t));
  report.Holds(
      platform::ControlDevice(-1, kRequest, untouched.data()) == -1 && untouched.Untouched(),
      "a request without a device fails and leaves its record");
  constexpr const char* kClaim = "the clock chip takes a setting";
  const int device = platform::OpenDevice("/dev/i2cdev9", O_RDWR);
  report.Holds(device >= 0, "the clock chip opens");
  if (options.lasting) {
    ZEPH_MCUC::i2cdev_ioctl_access_t record = Setting();
    report.Holds(platform::ControlDevice(device, kRequest, &record) == 0, kClaim);
  } else {
    report.Skip(kClaim, "needs --lasting");
  }
  if (device >= 0) platform::CloseDevice(device);
}

}  // namespace check
