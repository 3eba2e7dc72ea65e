#include "proto/addr_edidspaceregister.h"

#include "mcuctrace.h"
#include "process/inputSource.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint16_t kDetect = 1;  // the length of a read that looks for input boards

}  // namespace

std::span<const RowFunction> Addr_EDIDSpaceRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoEDIDSpace};
  return kRows;
}

JSHL_Type_e Addr_EDIDSpaceRegister::DoEDIDSpace(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                int /*flag*/) {
  return space::Dispatch(msg, ReadFromEDIDSpace, WriteToEDIDSpace);
}

JSHL_Type_e Addr_EDIDSpaceRegister::ReadFromEDIDSpace(QMB_proto3rd* msg) {
  const uint16_t length = msg->proto.m_usValidDataLength;
  const bool whole = length == edid::kBlock || length == edid::kSize;
  if (space::Offset(kEDIDSpace, *msg) != 0 || (!whole && length != kDetect)) {
    MCUC_LOG(kLogError, "=== ReadFromEDIDSpace ===Invalid addr+len, return! address = "
                            << CTrace::hex << msg->proto.m_uiRegisterUnitAddress);
    return JSHL_invalidAddrLen;
  }
  InputSource* inputs = InputSource::getInstance();
  if (!whole) {
    inputs->InputBoardInit();
    return JSHL_OK;
  }
  EdidImage image{};
  const uint8_t source_id = Data_Global::getInstance()->SendParameterReg[feature::kEdidFlag];
  inputs->ReadEDIDInfo(GroupOfSourceId(source_id), image.data());
  space::Reply(msg, std::span(image).first(length));
  return JSHL_OK;
}

JSHL_Type_e Addr_EDIDSpaceRegister::WriteToEDIDSpace(QMB_proto3rd* msg) {
  return space::QueueWrite(msg, DoEDIDSpaceKey, "WriteToEDIDSpace");
}

}  // namespace ZEPH_MCUC
