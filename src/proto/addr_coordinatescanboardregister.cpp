#include "proto/addr_coordinatescanboardregister.h"

#include "mcuctrace.h"
#include "proto/addr_coordinatescanboardspeed.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kWriteSpeedOffset = 0x1EF;
constexpr uint32_t kReadSpeedOffset = 0x1EE;

}  // namespace

std::span<const RowFunction> Addr_CoordinateScanBoardRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {PositionNetPort};
  return kRows;
}

JSHL_Type_e Addr_CoordinateScanBoardRegister::PositionNetPort(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                              int /*flag*/) {
  return space::Dispatch(msg, ReadFromPosNetPort, WriteToPosNetPort);
}

JSHL_Type_e Addr_CoordinateScanBoardRegister::ReadFromPosNetPort(QMB_proto3rd* msg) {
  if (!space::InRange(kCoordinateScanBoardSpace, *msg, kPositionSize, "ReadFromPosNetPort")) {
    return JSHL_invalidAddrLen;
  }
  const uint32_t offset = space::Offset(kCoordinateScanBoardSpace, *msg);
  const uint32_t length = msg->proto.m_usValidDataLength;
  if (offset == kWriteSpeedOffset) RunSpeedTest(SpeedTest::kWrite, length);
  if (offset == kReadSpeedOffset) RunSpeedTest(SpeedTest::kRead, length);
  const int32_t result = RefreshPositions(offset, length);
  if (result < 0) {
    MCUC_LOG(kLogError, "=== ReadFromPosNetPort ===Read FPGA Posi Info failed! ret = " << result);
    return JSHL_TYPE_NG;
  }
  msg->proto.m_data.resize(length);
  PortsTopoPara.read(offset, msg->proto.m_data);
  return JSHL_OK;
}

JSHL_Type_e Addr_CoordinateScanBoardRegister::WriteToPosNetPort(QMB_proto3rd* msg) {
  return space::QueueWrite(msg, PositionNetPortKey, "WritePosNetPortInfomation");
}

}  // namespace ZEPH_MCUC
