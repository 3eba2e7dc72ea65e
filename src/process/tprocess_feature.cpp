#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

int Tprocess::Sprocess_DoFeatureInfo(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_DoFeatureInfo", data, [](const PenetrateInfo& info) {
    Data_Global::getInstance()->DoWriteFeatureInfo(info.Register, info.length, info.data.data());
  });
}

}  // namespace ZEPH_MCUC
