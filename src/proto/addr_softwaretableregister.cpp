#include "proto/addr_softwaretableregister.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kSignal = 0x0500FFFF;

}  // namespace

std::span<const RowFunction> Addr_SoftwareTableRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoSoftwareTable};
  return kRows;
}

JSHL_Type_e Addr_SoftwareTableRegister::DoSoftwareTable(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                        int /*flag*/) {
  return space::Dispatch(msg, ReadFromSoftwareTable, WriteToSoftwareTable);
}

JSHL_Type_e Addr_SoftwareTableRegister::ReadFromSoftwareTable(QMB_proto3rd* msg) {
  const uint32_t reg = msg->proto.m_uiRegisterUnitAddress;
  if (reg == kSignal && msg->proto.m_usValidDataLength == 1) {
    Data_Global::getInstance()->SendC8toKye();
    space::Reply(msg, {&kConfiguredBySoftware, 1});
    return JSHL_OK;
  }
  return space::ReplyFromFlash(msg, SoftwareFlash(reg),
                               "=== ReadFromSoftwareTable ===Read Bytes From Flash Failed. "
                               "DriverRet = ");
}

JSHL_Type_e Addr_SoftwareTableRegister::WriteToSoftwareTable(QMB_proto3rd* msg) {
  if (!space::FlashTakes(*msg, FlashOwner::kSoftware,
                         SoftwareFlash(msg->proto.m_uiRegisterUnitAddress),
                         "WriteToSoftwareTable")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, DoSoftwareTableKey, "WriteToSoftwareTable");
}

}  // namespace ZEPH_MCUC
