#include "proto/addr_hwbasicinforegister.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_identity.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

// Whether a request of `length` bytes at `offset` covers the field.
bool Covers(uint32_t offset, uint32_t length, uint32_t field, uint32_t fieldLength) {
  return offset <= field && offset + length >= field + fieldLength;
}

}  // namespace

std::span<const RowFunction> Addr_HwBasicInfoRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {REG_HwBasicInfomation};
  return kRows;
}

JSHL_Type_e Addr_HwBasicInfoRegister::REG_HwBasicInfomation(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                            int /*flag*/) {
  if (msg == nullptr) {
    MCUC_LOG(kLogError, "***************************REG_HwBasicInfomation**************\n");
  }
  return space::Dispatch(msg, ReadHwBasicInfomation, WriteHwBasicInfomation);
}

JSHL_Type_e Addr_HwBasicInfoRegister::ReadHwBasicInfomation(QMB_proto3rd* msg) {
  if (!space::InRange(kHwBasicInfoSpace, *msg, basicinfo::kSize, "ReadHwBasicInfomation")) {
    return JSHL_invalidAddrLen;
  }
  const uint32_t offset = space::Offset(kHwBasicInfoSpace, *msg);
  const uint32_t length = msg->proto.m_usValidDataLength;
  auto& data = msg->proto.m_data;
  data.assign(length, 0);
  MCUC_LOG(kLogInfo, "flash addr:" << CTrace::hex << flash::kBasicInfo + offset);
  const int32_t result = DriverUtil::getInstance()->ReadBytesFromFlash(flash::kBasicInfo + offset,
                                                                       length, data.data());
  Data_Global* global = Data_Global::getInstance();
  if (Covers(offset, length, basicinfo::kSerial, kSerialBytes)) {
    global->GetEnvSNPara(data.data() + basicinfo::kSerial - offset);
  }
  if (Covers(offset, length, basicinfo::kModel, basicinfo::kModelBytes)) {
    global->GetEnvModelIDPara(data.data() + basicinfo::kModel - offset);
  }
  return result == 0 ? JSHL_OK : JSHL_TYPE_NG;
}

JSHL_Type_e Addr_HwBasicInfoRegister::WriteHwBasicInfomation(QMB_proto3rd* msg) {
  if (!space::InRange(kHwBasicInfoSpace, *msg, basicinfo::kSize, "ReadHwBasicInfomation")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, HwBasicinfoKey, "WriteHwBasicInfomation");
}

}  // namespace ZEPH_MCUC
