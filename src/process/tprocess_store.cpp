// Save and reload of the parameters.
#include "driverutil.h"
#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

int Tprocess::Sprocess_SaveSendCardPara(int /*lenth*/, char* data) {
  return RunHandler("Sprocess_SaveSendCardPara", data, [] {
    Data_Global* global = Data_Global::getInstance();
    DriverUtil* driver = DriverUtil::getInstance();
    // Nothing looks at a failure here: the save behind it goes on.
    if (global->LEDConfigStatus == kConfiguredBySoftware) {
      driver->WriteDataToFlash(flash::kShortcut, 1, &kConfiguredBySoftware);
    }
    const auto screen = global->ScreenParaReg.snapshot<2>(0);
    driver->WriteDataToFlash(flash::kScreenPara, screen.size(), screen.data());
    global->SaveParaToFlash(kSaveAll);
  });
}

int Tprocess::Sprocess_ReloadSendCardProgram(int /*lenth*/, char* data) {
  return RunHandler("Sprocess_ReloadSendCardProgram", data, [] {
    Data_Global* global = Data_Global::getInstance();
    if (global->RebootRF != EN_NOT_REBOOT) {  // a restore would forget the reset
      MCUC_LOG(kLogError, "=== Sprocess_ReloadSendCardProgram ===a reset is under way, return.");
      return;
    }
    global->RestoreFPGA();
  });
}

}  // namespace ZEPH_MCUC
