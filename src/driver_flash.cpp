// The flash stores.
#include <platform/flash.h>

#include "driverutil.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {

bool DriverUtil::initialize() {
  MCUC_LOG(kLogInfo,
           "============================= Begin brmpara file init ===========================");
  if (Flash_Init() != 0) {
    MCUC_LOG(kLogError, "brmpara file fail");
    return false;
  }
  MCUC_LOG(kLogInfo,
           "============================= Finish brmpara file init ===========================");
  return true;
}

}  // namespace ZEPH_MCUC
