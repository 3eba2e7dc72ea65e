// The start sequence, and what is wired to what.
#include "stub/startup.h"

#include <platform/envcfg.h>
#include <platform/fpga.h>
#include <platform/mbus.h>
#include <platform/system.h>

#include "driverutil.h"
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/data_common.h"
#include "proto/tshl_ctl.h"
#include "stub/stubutil.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint64_t kSettle_us = 2'000'000;
constexpr char kNoVersion[] = "V1.0.B1";

template <int32_t (Tshl_ctl::*Start)(QMB_proto3rd*)>
int32_t Serve(QMB_proto3rd* msg) {
  return (Tshl_ctl::getInstance()->*Start)(msg);
}

DriverUtil::LinkWords LinksOfPorts() {
  const Data_Global& global = *Data_Global::getInstance();
  return {global.GigaPhyLinkSta, global.Fiber1BelowLinkStatus_buff.u16(0),
          global.Fiber2BelowLinkStatus_buff.u16(0)};
}

}  // namespace

StubUtil::Wiring DaemonWiring() {
  DriverUtil::getInstance()->SetLinkSource(LinksOfPorts);
  StubUtil::Wiring wiring;
  wiring.request = {Serve<&Tshl_ctl::Ssh_StartSendCard>, Serve<&Tshl_ctl::Ssh_StartScanCard>,
                    Serve<&Tshl_ctl::Ssh_StartMultiCard>, Serve<&Tshl_ctl::Ssh_StartDistribute>,
                    Serve<&Tshl_ctl::Ssh_Start3DLauncher>};
  wiring.job = [](MCUProcessDataBlock* block) {
    return Tprocess_ctl::getInstance()->onProcessDealwith(block);
  };
  wiring.silent = [] { return Data_Global::getInstance()->ReceivePathSilent(); };
  wiring.selfTestOn = [] { return Data_Global::getInstance()->RWFPGATestflag == 1; };
  return wiring;
}

bool StubUtil::initialize() {
  MCUC_LOG(kLogInfo,
           "================================= Begin main init ===============================");
  wire(DaemonWiring());
  if (FPGA_UDP_Init() < 0) MCUC_LOG(kLogError, "=== udp_port_init === fail!!!!");
  mbus_init(TaskId(cardsel_bit_self(), task::kQuivord), 0);  // the platform says what went wrong
  Data_Global* global = Data_Global::getInstance();
  global->SNTransfer();
  global->ReadHardwareInfo();
  global->RestoreFPGA();       // the image; the FPGA's turn comes once it has loaded
  SetEnvQuivordVerToRootfs();  // without a version the start goes on
  // The queue comes before reception: a request that arrives early finds it.
  const bool complete = creatProcess() && creatQMBComm() && creatFpgaReport();
  if (!complete) return false;
  MCUC_LOG(kLogInfo,
           "================================= Finish main init ==============================");
  platform::SleepMicroseconds(kSettle_us);
  return true;
}

int StubUtil::SetEnvQuivordVerToRootfs() {
  if (envcfg_openenv() != 0) {
    envcfg_closeenv();
    return -1;
  }
  const char* version = envcfg_getenv("ver_rootfs");
  SetQuivordVersion(version == nullptr ? kNoVersion : version);
  envcfg_closeenv();
  return 0;
}

void StubUtil::SetQuivordVersion(const char* version) {
  if (envcfg_openenv() != 0) MCUC_LOG(kLogInfo, "openenv faild");
  if (envcfg_setenv("ver_quivord", version) != 0) MCUC_LOG(kLogInfo, "setenv faild");
  envcfg_closeenv();
}

}  // namespace ZEPH_MCUC
