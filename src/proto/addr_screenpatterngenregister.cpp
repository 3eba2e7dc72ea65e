#include "proto/addr_screenpatterngenregister.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_pattern.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

std::span<const RowFunction> Addr_ScreenPatternGenregister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoScreenPatternGen};
  return kRows;
}

JSHL_Type_e Addr_ScreenPatternGenregister::DoScreenPatternGen(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                              int /*flag*/) {
  return space::Dispatch(msg, ReadScreenPatternGenInfo, WriteScreenPatternGenInfo);
}

JSHL_Type_e Addr_ScreenPatternGenregister::ReadScreenPatternGenInfo(QMB_proto3rd* msg) {
  if (!space::InRange(kScreenPatternGenSpace, *msg, pattern::kSize, "ReadScreenPatternGenInfo")) {
    return JSHL_invalidAddrLen;
  }
  const uint32_t offset = space::Offset(kScreenPatternGenSpace, *msg);
  std::vector<uint8_t> bytes(msg->proto.m_usValidDataLength);
  const int32_t result = DriverUtil::getInstance()->FPGAC5_ReadDataBlock(
      0, 0, pattern::kBus + offset, static_cast<uint32_t>(bytes.size()), bytes.data());
  if (result < 0) {
    MCUC_LOG(kLogError,
             "=== ReadScreenPatternGenInfo ===Read ScreenPatternGenInfo failed! ret = " << result);
    return JSHL_TYPE_NG;
  }
  Data_Global::getInstance()->HardwareScreenGenReg.write(offset, bytes);
  msg->proto.m_data = std::move(bytes);
  return JSHL_OK;
}

JSHL_Type_e Addr_ScreenPatternGenregister::WriteScreenPatternGenInfo(QMB_proto3rd* msg) {
  if (!space::InRange(kScreenPatternGenSpace, *msg, pattern::kSize, "WriteScreenPatternGenInfo")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, ScreenPatternGenKey, "WriteScreenPatternGenInfo");
}

}  // namespace ZEPH_MCUC
