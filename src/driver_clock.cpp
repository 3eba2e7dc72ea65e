// Time, the status probe and the clock chip.
#include <fcntl.h>
#include <platform/system.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "driverutil.h"
#include "driverutil_comif.h"
#include "mcucstdout.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kLineSize = 64;
constexpr std::size_t kStatusSize = 16;
constexpr char kClockDevice[] = "/dev/i2cdev9";
constexpr unsigned long kClockRequest = 0xC10065A0;
constexpr uint32_t kMode = 3;
constexpr uint32_t Out_clk[] = {33, 49, 65, 81};
constexpr int8_t kFailed = -1;  // 0xFF

i2cdev_ioctl_access_t ClockRecord(uint32_t output, uint32_t frequency_hz) {
  i2cdev_ioctl_access_t record{};
  record.header.length = sizeof(record);
  record.header.type = T_I2CDEV;
  record.header.cmd = COMIF_WRITE;
  record.extra.header.subtype = T_I2CDEV_CLK_CFG;
  record.extra.header.devtype = T_I2CDEV_DEVTYPE_IDT6965;
  record.extra.clk_config.out_clk = Out_clk[output];
  record.extra.clk_config.fre_hz = frequency_hz;
  record.extra.clk_config.out_select = output + 1;
  record.extra.clk_config.mode_select = kMode;
  return record;
}

tm LocalTime(time_t seconds) {
  tm local{};
  localtime_r(&seconds, &local);
  return local;
}

// Changes fields of the clock by `change` and keeps its microseconds and zone.
template <class Change>
void ChangeClock(const char* operation, Change change) {
  MCUC_LOG(kLogInfo, operation << " Start...");
  timeval now{};
  struct timezone zone {};
  platform::GetTimeOfDay(&now, &zone);
  tm local = LocalTime(platform::Time());
  char text[32] = {};  // 26 characters, more only for a year of five digits
  asctime_r(&local, text);
  DriverUtil::chomp(text);
  MCUC_LOG(kLogInfo, operation << ": time = " << text);
  change(&local);
  local.tm_isdst = -1;  // the new date may lie on the other side of a change to summer time
  now.tv_sec = mktime(&local);
  // Without the right to set the clock it stays; a client that cares reads it back.
  static_cast<void>(platform::SetTimeOfDay(&now, &zone));
  MCUC_LOG(kLogInfo, operation << " End.");
}

}  // namespace

std::array<uint8_t, 7> DriverUtil::ReadTimes() {
  const tm now = LocalTime(platform::Time());
  const int fields[] = {now.tm_year - 100, now.tm_mon + 1, now.tm_mday,    now.tm_hour,
                        now.tm_min,        now.tm_sec,     now.tm_wday + 1};
  std::array<uint8_t, 7> times;
  for (std::size_t i = 0; i < times.size(); ++i) times[i] = static_cast<uint8_t>(fields[i]);
  return times;
}

uint8_t DriverUtil::ReadTime(uint8_t index) {
  const auto times = ReadTimes();
  return index < times.size() ? times[index] : 0;
}

void DriverUtil::WriteTime(uint8_t hours, uint8_t minutes, uint8_t seconds) {
  ChangeClock("WriteTime", [=](tm* time) {
    time->tm_hour = hours;
    time->tm_min = minutes;
    time->tm_sec = seconds;
  });
}

void DriverUtil::WriteDate(uint8_t year, uint8_t month, uint8_t date) {
  ChangeClock("WriteDate", [=](tm* time) {
    time->tm_mday = date;
    time->tm_mon = month - 1;
    time->tm_year = year + 100;
  });
}

void DriverUtil::WriteWeekday(uint8_t day) {
  ChangeClock("WriteWeekday", [=](tm* time) { time->tm_wday = day; });
}

int DriverUtil::run_command_return_string(const char* cmd, char* result, std::size_t size) {
  if (cmd == nullptr) {
    MCUC_LOG(kLogError, "cmd is null, exit.");
    return -1;
  }
  if (result == nullptr || size == 0) {
    MCUC_LOG(kLogError, "result is null, exit.");
    return -1;
  }
  std::FILE* stream = platform::OpenShell(cmd);
  if (stream == nullptr) {
    MCUC_LOG(kLogError, "popen error. cmd:" << cmd);
    return -1;
  }
  int status = 0;
  char line[kLineSize] = {};
  if (std::fgets(line, sizeof(line), stream) != nullptr) {
    chomp(line);
    if (line[0] == '\0') {
      status = -1;
    } else {
      std::snprintf(result, size, "%s", line);
    }
  }
  platform::CloseShell(stream);  // what counts is what the command printed
  return status;
}

void DriverUtil::chomp(char* s) {
  for (const char end : {'\n', '\r'}) {
    if (char* at = std::strrchr(s, end); at != nullptr) *at = '\0';
  }
}

int DriverUtil::ReadFpgaStatus(const char* cmd) {
  char text[kStatusSize] = {};
  if (const int result = run_command_return_string(cmd, text, sizeof(text)); result != 0) {
    return result;
  }
  MCUC_LOG(kLogError, "=== ====== Read Fpga Status para = " << text << "  =========");
  return std::atoi(text);
}

int8_t DriverUtil::SetClock(uint8_t output, uint32_t fre) {
  const int device = platform::OpenDevice(kClockDevice, O_RDWR);
  if (device < 0) {
    SayOnStandardOutput("fail to open!!!\n");
    return kFailed;
  }
  i2cdev_ioctl_access_t record = ClockRecord(output == 0 ? 1 : 0, fre);
  const int result = platform::ControlDevice(device, kClockRequest, &record);
  if (result != 0) SayOnStandardOutput("fail to ioctl config!!!\n");
  platform::CloseDevice(device);
  return result == 0 ? 0 : kFailed;
}

}  // namespace ZEPH_MCUC
