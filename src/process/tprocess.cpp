#include "process/tprocess.h"

#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

int LogEntered(const char* name) {
  MCUC_LOG(kLogInfo, name << " enter:");
  return 0;
}

}  // namespace

int Tprocess::Sprocess_Correction(int /*lenth*/, char* /*data*/) {
  return LogEntered("Sprocess_Correction");
}

int Tprocess::Sprocess_SenderTestPatten(int /*lenth*/, char* /*data*/) {
  return LogEntered("Sprocess_SenderTestPatten");
}

int Tprocess::Sprocess_ActiveReporting(int /*lenth*/, char* /*data*/) {
  return LogEntered("Sprocess_ActiveReporting");
}

int Tprocess::Sprocess_SendtoScanCard(int /*lenth*/, char* /*data*/) {
  return LogEntered("Sprocess_SendtoScanCard");
}

int Tprocess::Sprocess_SendtoMultiCard(int /*lenth*/, char* /*data*/) {
  return LogEntered("Sprocess_SendtoMultiCard");
}

int Tprocess::Sprocess_SendtoDistribute(int /*lenth*/, char* /*data*/) {
  return LogEntered("Sprocess_SendtoDistribute");
}

}  // namespace ZEPH_MCUC
