// The flag thread: waits for the FPGA, restores the parameters into it, says that the daemon is
// ready, and then stays on as the loop that polls the hardware every 200 ms.
#include <platform/mbus.h>
#include <platform/system.h>
#include <unistd.h>

#include "mcuctrace.h"
#include "process/proc_poll.h"
#include "process/tprocess.h"
#include "process/tprocess_ctl.h"
#include "proto/data_common.h"
#include "stub/mcuqmbthread.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kFlagFile[] = "/etc/init.d/flag_fpgaload";
constexpr uint64_t kFlagPause_us = 1000;
constexpr uint64_t kPass_us = 200'000;

Data_Global& Global() { return *Data_Global::getInstance(); }

template <void (Tprocess_ctl::*Operation)()>
void Control() {
  (Tprocess_ctl::getInstance()->*Operation)();
}

template <void (Data_Global::*Operation)()>
void OfGlobal() {
  (Global().*Operation)();
}

// A reset that was asked for while the FPGA loaded comes before the restore, which would forget it
// and take this start for the one behind it. It ends in the reboot.
void FinishReset() {
  while (Global().RebootRF != EN_NOT_REBOOT) {
    Tprocess_ctl::getInstance()->RebootAfterRF();
    platform::SleepMicroseconds(kPass_us);
  }
}

}  // namespace

int McuQMBThread::CheckFPGAOnline() {
  MCUC_LOG(kLogDebug, "CheckFPGAOnline begin.");
  static const std::string path = platform::DevicePath(kFlagFile);
  return access(path.c_str(), F_OK);
}

void McuQMBThread::FlagMsg() {
  platform::KeepTime();
  MCUC_LOG(kLogDebug, "FlagMsg process thread begin.");
  while (CheckFPGAOnline() != 0) {
    if (m_bExitFlagThread) return;
    platform::SleepMicroseconds(kFlagPause_us);
  }
  MCUC_LOG(kLogError, "----------------- receive file /etc/init.d/flag_fpgaload.");
  Global().FpgaOnlineFlag = 1;
  FinishReset();
  Global().RestoreFPGA();
  Global().SendFlag_quivordload();
  while (!m_bExitFlagThread) {
    PollingPass();
    platform::SleepMicroseconds(kPass_us);
  }
  MCUC_LOG(kLogDebug, "FlagMsg process thread exit.");
}

// One pass: a factory reset's step, and while none is under way all else, in this order.
void McuQMBThread::PollingPass() {
  using Step = void (*)();
  static constexpr Step kSteps[] = {
      OwdMbusConnHandler,
      OfGlobal<&Data_Global::SendRedundStatustoOWD>,
      Control<&Tprocess_ctl::SendRedundtoOWD>,
      Control<&Tprocess_ctl::SendNetLinktoOWD>,
      CalculateSenderParaHandler,
      Control<&Tprocess_ctl::SendFiberLinktoOWD>,
      Control<&Tprocess_ctl::SendFiberBelowLinkStatustoOWD>,
      Control<&Tprocess_ctl::SendFiberRedundtoOWD>,
      Control<&Tprocess_ctl::SendFiberToNetStatustoOWD>,
      Control<&Tprocess_ctl::SendFiberCopyStatustoOWD>,
      Control<&Tprocess_ctl::SendGenLockLinktoOWD>,
      Proc_Poll::AutoBrightnessadjust,
      Control<&Tprocess_ctl::SendRecvCardParaToOwdByLinkChange>,
  };
  Tprocess_ctl::getInstance()->RebootAfterRF();
  if (Global().RebootRF != EN_NOT_REBOOT) return;
  for (const Step step : kSteps) step();
}

// Once the service daemon is seen on the bus, or a client asks, all is reported afresh: the caches
// take values that no status is likely to have.
void McuQMBThread::OwdMbusConnHandler() {
  Data_Global& global = Global();
  if (global.mbus_connect_status && !global.OptToNetEnableOnce) return;
  if (mbus_connect_chk_task_by_taskid(TaskId(cardsel_bit_self(), task::kOwd)) == -1) return;
  global.mbus_connect_status = true;
  global.OptToNetEnableOnce = false;
  MCUC_LOG(kLogInfo, "OWD is connected: all status is reported afresh");
  global.SendNetLinktoOWD_buff.setU32(0, 0);
  global.SendRedundtoOWD_buff.setU32(0, 0);
  global.fiberlink_buff[0] = 0xFF;
  global.fiberRedund_buff[0] = 0;
  global.FiberToNetStatus_buff.setU16(0, 0);
  global.Fiber1BelowLinkStatus_buff.setU16(0, 0);
  global.Fiber2BelowLinkStatus_buff.setU16(0, 0);
  global.fiberCopyStatus_buff[0] = 0;
  global.SendOptRedundtoOWD_buff.write(0, std::array<uint8_t, 6>{});
}

// A burst of smart configurations ends in one calculation, at the first pass at which their count
// has stopped changing.
void McuQMBThread::CalculateSenderParaHandler() {
  static uint32_t CmpPara = 0;  // the count at the pass before; keeps its value
  Data_Global& global = Global();
  const uint32_t count = global.CalculateParaHandlerCnt;
  if (count == 0) return;
  if (count != CmpPara) {
    CmpPara = count;
    return;
  }
  global.CalculateParaHandlerCnt = 0;
  Tprocess::CalculateParaOfSenderHandler();
}

}  // namespace ZEPH_MCUC
