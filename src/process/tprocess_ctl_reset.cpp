// The loop's share of a factory reset.
#include <platform/system.h>

#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint64_t kBeforeReboot_us = 5'000'000;

}  // namespace

void Tprocess_ctl::RebootAfterRF() {
  if (Data_Global::getInstance()->RebootRF != EN_REBOOT_ING) return;
  MCUC_LOG(kLogInfo, "Return to factory successfully! reboot in 5 seconds...");
  platform::RunShell("fpga w s 0x1eb 0x0");
  platform::SleepMicroseconds(kBeforeReboot_us);
  platform::RunShell("reboot -f");
}

}  // namespace ZEPH_MCUC
