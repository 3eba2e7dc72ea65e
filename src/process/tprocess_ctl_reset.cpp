// The loop's share of a factory reset.
#include <platform/system.h>

#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint64_t kBeforeSilence_us = 1'000'000;
constexpr uint64_t kBeforeReset_us = 500'000;
constexpr uint64_t kBeforeReboot_us = 5'000'000;

}  // namespace

void Tprocess_ctl::RebootAfterRF() {
  Data_Global* global = Data_Global::getInstance();
  if (global->RebootRF == EN_REBOOT_ING) {
    MCUC_LOG(kLogInfo, "Return to factory successfully! reboot in 5 seconds...");
    platform::RunShell("fpga w s 0x1eb 0x0");
    platform::SleepMicroseconds(kBeforeReboot_us);
    platform::RunShell("reboot -f");
  }
  if (global->RebootRF == EN_REBOOT_WAIT_SFT_DO) {
    platform::SleepMicroseconds(kBeforeSilence_us);
    global->RebootRF = EN_REBOOT_WAIT_RET_PACK;
    MCUC_LOG(kLogError, ">>>>>>>>>>>>>>>>>>>>>>>>>reboot begin>>>>>>>>>>>>>>>");
    platform::SleepMicroseconds(kBeforeReset_us);
    global->ReturnFactory(global->ResetMode);
  }
}

}  // namespace ZEPH_MCUC
