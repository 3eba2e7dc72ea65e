// What outlasts a power cut, the flash stores and the environment store: not here.
#include <platform/envcfg.h>
#include <platform/flash.h>
#include <platform/info.h>

#include "missing.h"

namespace {

constexpr char kFlash[] = "the flash stores (platform/flash.h)";
constexpr char kEnvironment[] = "the environment store (platform/envcfg.h)";
constexpr char kClock[] = "the hardware clock (platform/envcfg.h)";
constexpr int32_t kFailed = -1;

}  // namespace

int32_t Flash_Init() { return missing::Say(kFlash, kFailed); }

int32_t ReadDataFromFlashx(uint32_t, uint32_t, uint8_t*) { return missing::Say(kFlash, kFailed); }

int32_t WriteDataToFlashx(uint32_t, uint32_t, const uint8_t*) {
  return missing::Say(kFlash, kFailed);
}

int32_t WriteDataToFactoryFlashx(uint32_t, uint32_t, const uint8_t*) {
  return missing::Say(kFlash, kFailed);
}

int32_t WriteDataToFactoryTmpFlashx(uint32_t, uint32_t, const uint8_t*) {
  return missing::Say(kFlash, kFailed);
}

int envcfg_openenv() { return missing::Say(kEnvironment, kFailed); }

const char* envcfg_getenv(const char*) {
  return missing::Say(kEnvironment, static_cast<const char*>(nullptr));
}

int envcfg_setenv(const char*, const char*) { return missing::Say(kEnvironment, kFailed); }

int envcfg_closeenv() { return missing::Say(kEnvironment, kFailed); }

int envcfg_get_date_ymd(char*) { return missing::Say(kClock, kFailed); }

int envcfg_get_date_hms(char*) { return missing::Say(kClock, kFailed); }

int32_t st_info_op(int32_t, uint32_t, uint32_t, const uint8_t*) {
  return missing::Say("the device info store (platform/info.h)", kFailed);
}
