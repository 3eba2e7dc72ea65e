#include "driverutil.h"

#include <platform/fpga.h>

#include <algorithm>

#include "driverutil_comif.h"
#include "driverutil_retry.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t FpgaWriteMaxLen = 1024;
constexpr char FpgaStatusDir[] = "/bin/cat /sys/class/fpga/fpga_conf";
constexpr char kWriteFailure[] = ">>>>>>>>>>>>>>>>>>>>> FPGA Write Fail<<<<<<<<<<<<<<<<<<<";
constexpr char kReadFailure[] = ">>>>>>>>>>>>>>>>>>>>> FPGA Read Fail<<<<<<<<<<<<<<<<<<<";

// Calls `transfer(offset, length)` for chunk after chunk. -1 for no bytes.
template <class Transfer>
int32_t InChunks(uint32_t length, Transfer transfer) {
  int32_t result = -1;
  for (uint32_t at = 0; at < length; at += FpgaWriteMaxLen) {
    result = transfer(at, std::min(FpgaWriteMaxLen, length - at));
    if (result < 0) return result;
  }
  return result;
}

}  // namespace

DriverUtil* DriverUtil::getInstance() {
  static auto* const instance = new DriverUtil;
  return instance;
}

template <class Transfer>
int32_t DriverUtil::Retry(const char* failure, Transfer transfer) {
  if (FpgaDownFlg) return -1;
  if (TryThreeTimes(transfer) == 0) return 0;
  ProbeAfterFailure(failure);
  return -1;
}

// Asks whether the FPGA is up at all, so that a lost one costs no more attempts.
void DriverUtil::ProbeAfterFailure(const char* failure) {
  MCUC_LOG(kLogError, failure);
  const int status = ReadFpgaStatus(FpgaStatusDir);
  if (status == -1) {
    MCUC_LOG(kLogError, ">>>>>>>>>>>>>>>>>>>>>Read FPGA Status Err<<<<<<<<<<<<<<<<<<<");
  } else if (status == 0) {
    MCUC_LOG(kLogError, ">>>>>>>>>>>>>>>>>>>>>Read FPGA Status Down<<<<<<<<<<<<<<<<<<<");
    FpgaDownFlg = true;
  } else {
    MCUC_LOG(kLogError, ">>>>>>>>>>>>>>>>>>>>>Read FPGA Status Up<<<<<<<<<<<<<<<<<<<");
    FpgaDownFlg = false;
  }
}

int32_t DriverUtil::WriteFPGABusBlock(uint32_t addr, const uint8_t* data, uint32_t length) {
  return Retry(kWriteFailure,
               [=] { return WriteFPGABlock(T_SPIDEV_DEVTYPE_FPGA1, addr, length, data); });
}

int32_t DriverUtil::Write_C4_FPGABusBlock(uint32_t addr, const uint8_t* data, uint32_t length) {
  return Retry(kWriteFailure,
               [=] { return WriteFPGABlock(T_SPIDEV_DEVTYPE_FPGA0, addr, length, data); });
}

int32_t DriverUtil::ReadFPGABusBlock(uint32_t addr, uint8_t* data, uint32_t length) {
  const CMutexGuardT guard(m_mutex_read);
  return Retry(kReadFailure,
               [=] { return ReadFPGABlock(T_SPIDEV_DEVTYPE_FPGA1, addr, length, data); });
}

int32_t DriverUtil::WriteFPGABusOneWord(uint32_t addr, uint8_t data) {
  return WriteFPGABusBlock(addr, &data, 1);
}

int32_t DriverUtil::ReadFPGABusOneWord(uint32_t addr, uint8_t* data) {
  return ReadFPGABusBlock(addr, data, 1);
}

int32_t DriverUtil::FPGAC5_WriteOneWord(uint8_t /*dev*/, uint8_t /*cmd*/, uint32_t addr,
                                        uint8_t data) {
  return WriteFPGABusBlock(addr, &data, 1);
}

uint8_t DriverUtil::FPGAC5_ReadOneWord(uint8_t /*dev*/, uint8_t /*cmd*/, uint32_t addr) {
  uint8_t data = 0;
  return ReadFPGABusBlock(addr, &data, 1) == 0 ? data : 0;
}

int32_t DriverUtil::FPGAC5_WriteDataBlock(uint8_t /*dev*/, uint8_t /*cmd*/, uint32_t addr,
                                          uint32_t length, const uint8_t* data) {
  return InChunks(length, [=, this](uint32_t at, uint32_t count) {
    return WriteFPGABusBlock(addr + at, data + at, count);
  });
}

int32_t DriverUtil::FPGAC5_ReadDataBlock(uint8_t /*dev*/, uint8_t /*cmd*/, uint32_t addr,
                                         uint32_t length, uint8_t* data) {
  return InChunks(length, [=, this](uint32_t at, uint32_t count) {
    return ReadFPGABusBlock(addr + at, data + at, count);
  });
}

int ReadFPGABusBlock_tx(uint32_t addr, uint32_t length, uint8_t* data, uint8_t index) {
  int result = 0;
  for (uint32_t at = 0; at < length; at += FpgaWriteMaxLen) {
    spidev_ioctl_access_t record{};
    record.header.length = sizeof(record);
    record.header.type = T_SPIDEV;
    record.header.cmd = COMIF_READ_TX;
    record.header.index = index;
    record.extra.header.subtype = T_SPIDEV_REG;
    record.extra.offset = addr + at;
    const uint32_t count = std::min(FpgaWriteMaxLen, length - at);
    record.extra.length = count;
    result = Shal_comif_ioctl(sizeof(record), 1, &record);
    if (result < 0) return result;
    const auto* value = reinterpret_cast<const uint8_t*>(record.value);
    std::copy_n(value, count, data + at);
  }
  return result;
}

}  // namespace ZEPH_MCUC
