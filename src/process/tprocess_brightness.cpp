#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/addr_hardwarebrightnessadjust.h"

namespace ZEPH_MCUC {

int Tprocess::Sprocess_doAdjustBrightness(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_doAdjustBrightness", data, [](const PenetrateInfo& info) {
    Addr_HardWareBrightnessAdjust::SetBrightnessAdjustTable(info.Register, info.length,
                                                            info.data.data());
  });
}

}  // namespace ZEPH_MCUC
