#include "proto/addr_testprinfregister.h"

#include <array>

#include "driverutil.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kBufferSize = 4096;
constexpr uint32_t kBusEnd = 0x10000000;  // 28 bits
constexpr uint32_t kPatternAddress = 0x1200000;
constexpr uint32_t kPatternLength = 25;
constexpr uint32_t kApplyStrobe = 0x100051;

}  // namespace

std::span<const RowFunction> Addr_TestPrinfRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {REG_TestPrintfInfomation};
  return kRows;
}

JSHL_Type_e Addr_TestPrinfRegister::REG_TestPrintfInfomation(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                             int /*flag*/) {
  return space::Dispatch(msg, ReadTestPrintfInfomation, WriteTestPrintfInfomation);
}

JSHL_Type_e Addr_TestPrinfRegister::ReadTestPrintfInfomation(QMB_proto3rd* msg) {
  const uint32_t address = space::Offset(kTestPrinfSpace, *msg);
  const uint32_t length = msg->proto.m_usValidDataLength;
  if (length >= kBufferSize) return JSHL_invalidCMD;
  MCUC_LOG(kLogInfo, "=== Read FPGA test Reg :  " << CTrace::hex << address << " " << length);
  auto& data = msg->proto.m_data;
  data.assign(length, 0);  // cells that can't be read answer 0
  if (DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, address, length, data.data()) < 0) {
    MCUC_LOG(kLogError, "=== Read FPGA test Reg failed ,Reg :  " << CTrace::hex << address);
  }
  return JSHL_OK;
}

JSHL_Type_e Addr_TestPrinfRegister::WriteTestPrintfInfomation(QMB_proto3rd* msg) {
  const uint32_t address = space::Offset(kTestPrinfSpace, *msg);
  const auto& data = msg->proto.m_data;
  const auto length = static_cast<uint32_t>(data.size());
  MCUC_LOG(kLogInfo, "=== Write FPGA test Reg :  " << CTrace::hex << address << " " << length);
  if (data.empty()) {
    MCUC_LOG(kLogError, "=== WriteTestPrintfInfomation ===invalid data");
    return JSHL_invalidTypeErr;
  }
  if (length > kBufferSize || length > kBusEnd - address) {
    MCUC_LOG(kLogError, "=== WriteTestPrintfInfomation ===does not fit, length = " << length);
    msg->proto.m_ucAck = JSHL_invalidCMD;
    return JSHL_invalidCMD;
  }
  DriverUtil* driver = DriverUtil::getInstance();
  if (driver->FPGAC5_WriteDataBlock(0, 0, address, length, data.data()) < 0) {
    MCUC_LOG(kLogError, "=== Write FPGA test Reg failed ,Reg :  " << CTrace::hex << address);
  }
  if (address == kPatternAddress && length == kPatternLength) {
    driver->FPGAC5_WriteOneWord(0, 0, kApplyStrobe, 1);
    MCUC_LOG(kLogInfo, "============================ Test Partten ===========================");
  }
  return JSHL_OK;
}

}  // namespace ZEPH_MCUC
