// The video path: the slow half of what clients write.
#include "process/inputSource.h"
#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

int Tprocess::Sprocess_DoDoEDIDSpace(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_DoDoEDIDSpace", data, [](const PenetrateInfo& info) {
    if (info.length > edid::kSize) {
      MCUC_LOG(kLogError, "=== DoWriteEdidInfo ===data length > 100! length = " << info.length);
    }
    if (info.length != edid::kBlock && info.length != edid::kSize) return;
    const uint8_t source_id = Data_Global::getInstance()->SendParameterReg[feature::kEdidFlag];
    InputSource::getInstance()->EDIDCommStorage(GroupOfSourceId(source_id), info.data.data());
  });
}

}  // namespace ZEPH_MCUC
