// The flash stores.
#include <platform/flash.h>

#include <array>

#include "driverutil.h"
#include "driverutil_retry.h"
#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

template <class Access>
int32_t LogAndTry(const char* operation, uint32_t addr, uint32_t length, Access access) {
  MCUC_LOG(kLogInfo,
           operation << ": start address = " << CTrace::hex << addr << " length = " << length);
  return TryThreeTimes(access);
}

}  // namespace

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

int32_t DriverUtil::ReadBytesFromFlash(uint32_t addr, uint32_t length, uint8_t* data) {
  return LogAndTry("ReadBytesFromFlash", addr, length,
                   [=] { return ReadDataFromFlashx(addr, length, data); });
}

int32_t DriverUtil::ReadBytesFromFlash(uint8_t /*FlashNum*/, uint32_t addr, uint32_t length,
                                       uint8_t* data) {
  return ReadBytesFromFlash(addr, length, data);
}

int32_t DriverUtil::WriteDataToFlash(uint32_t addr, uint32_t length, const uint8_t* data) {
  return LogAndTry("WriteDataToFlash", addr, length,
                   [=] { return WriteDataToFlashx(addr, length, data); });
}

int32_t DriverUtil::WriteDataToFlash(uint8_t /*FlashNum*/, uint32_t addr, uint32_t length,
                                     const uint8_t* data) {
  return WriteDataToFlash(addr, length, data);
}

int32_t DriverUtil::PageProgram(uint8_t /*FlashNum*/, uint32_t addr, uint16_t n,
                                const uint8_t* data) {
  return WriteDataToFlash(addr, n, data);
}

int32_t DriverUtil::WriteDataToFactoryFlash(uint8_t /*FlashNum*/, uint32_t addr, uint32_t length,
                                            const uint8_t* data) {
  return LogAndTry("WriteDataToFactoryFlash", addr, length,
                   [=] { return WriteDataToFactoryFlashx(addr, length, data); });
}

int32_t DriverUtil::WriteDataToFactoryTmpFlash(uint32_t addr, uint32_t length,
                                               const uint8_t* data) {
  return LogAndTry("WriteDataToFactoryTmpFlash", addr, length,
                   [=] { return WriteDataToFactoryTmpFlashx(addr, length, data); });
}

int32_t DriverUtil::Erase32kBlock(uint32_t StartAddress) {
  static constexpr std::array<uint8_t, 4096> kZeros{};
  return WriteDataToFlash(StartAddress, kZeros.size(), kZeros.data());
}

}  // namespace ZEPH_MCUC
