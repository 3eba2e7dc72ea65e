#include "proto/addr_cardprogmaspaceregister.h"

namespace ZEPH_MCUC {

std::span<const RowFunction> Addr_CardProgmaSpaceRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {ProcessCardProgmaSpace};
  return kRows;
}

JSHL_Type_e Addr_CardProgmaSpaceRegister::ProcessCardProgmaSpace(QMB_proto3rd* msg,
                                                                 Fshl_cmd* /*row*/, int /*flag*/) {
  const JSHL_Type_e result =
      space::Dispatch(msg, ReadCardProgmaSpace, [](QMB_proto3rd*) { return JSHL_invalidCMD; });
  if (msg != nullptr) msg->proto.m_ucAck = static_cast<uint8_t>(result);
  return result;
}

JSHL_Type_e Addr_CardProgmaSpaceRegister::ReadCardProgmaSpace(QMB_proto3rd* msg) {
  msg->proto.m_data.assign(msg->proto.m_usValidDataLength, 0);
  return JSHL_OK;
}

}  // namespace ZEPH_MCUC
