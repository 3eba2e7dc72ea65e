#include "stub/fpgareportthread.h"

#include <platform/system.h>

#include <algorithm>
#include <array>

#include "driverutil.h"
#include "mcuctrace.h"
#include "stub/stubutilthread.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kReportParameters = 0x100071;
constexpr uint32_t kReportEnable = 0x100070;
constexpr uint64_t kPause_us = 1000;
constexpr uint32_t kRunsPerLine = 100;

constexpr std::size_t kTestBuffer = 1024;
constexpr uint32_t kSmallestTest = 16;
constexpr uint64_t kBetween_us = 100;
constexpr uint8_t kPatterns[] = {0xAA, 0x55};

// A memory of the FPGA under test.
struct TestedMemory {
  uint32_t bus;
  uint32_t largest;  // bytes; sizes double from the smallest
  const char* writeText;
  const char* readText;
  const char* dataText;
};
constexpr TestedMemory kMemories[] = {
    {0x600000, 1024, "=== WriteToPosNetPort ===Write FPGA Position ",
     "=== ReadFromPosNetPort ===Read FPGA Position ", "Read_Write FPGA 0x03000000 "},
    {0x500000, 256, "=== WriteToNumberFunCardPort ===Write FPGA Number ",
     "=== ReadFromNumberFunCardPort ===Read FPGA Number ", "Read_Write FPGA 0x03100000 "}};

void LogTransfer(const char* text, uint32_t size, int32_t result) {
  MCUC_LOG(kLogError, text << size << " Word Info failed! ret = " << result);
}

void TestOnce(const TestedMemory& memory, uint32_t size, uint8_t pattern) {
  std::array<uint8_t, kTestBuffer> sent;
  std::array<uint8_t, kTestBuffer> received{};
  sent.fill(pattern);
  DriverUtil* driver = DriverUtil::getInstance();
  if (const int32_t result = driver->FPGAC5_WriteDataBlock(0, 0, memory.bus, size, sent.data());
      result < 0) {
    LogTransfer(memory.writeText, size, result);
    return;
  }
  platform::SleepMicroseconds(kBetween_us);
  if (const int32_t result = driver->FPGAC5_ReadDataBlock(0, 0, memory.bus, size, received.data());
      result < 0) {
    LogTransfer(memory.readText, size, result);
    return;
  }
  for (uint32_t i = 0; i < size; ++i) {
    if (sent[i] == received[i]) continue;
    MCUC_LOG(kLogError, memory.dataText << size << " Word , Data error  reg = " << i << " sendData "
                                        << sent[i] << " recvData " << received[i]);
  }
}

}  // namespace

void testfpgareadwrite() {
  for (const TestedMemory& memory : kMemories) {
    for (uint32_t size = kSmallestTest; size <= memory.largest; size *= 2) {
      for (const uint8_t pattern : kPatterns) TestOnce(memory, size, pattern);
    }
  }
}

int32_t FpgaReportThread::CreateThread() {
  const auto body = [](void* self) -> void* {
    static_cast<FpgaReportThread*>(self)->ActiveReport();
    return nullptr;
  };
  return StartDetachedThread("FpgaReportThread", "quivord-report", body, this,
                             &m_hFpgaReportThread);
}

int32_t FpgaReportThread::FPGAReport_init() {
  constexpr uint8_t kParameters[] = {0x04, 0x00, 0x90, 0x01};
  constexpr uint8_t kOff[] = {0x00};
  struct Setting {
    uint32_t address;
    std::span<const uint8_t> bytes;
    const char* failure;
  };
  const Setting settings[] = {
      {kReportParameters, kParameters, "=== Write reprot para Reg failed! ret = "},
      {kReportEnable, kOff, "=== Write reprot enable Reg failed! ret = "}};
  for (const Setting& setting : settings) {
    const int32_t result = DriverUtil::getInstance()->FPGAC5_WriteDataBlock(
        0, 0, setting.address, static_cast<uint32_t>(setting.bytes.size()), setting.bytes.data());
    if (result < 0) MCUC_LOG(kLogInfo, setting.failure << result);
  }
  return 0;
}

int32_t FpgaReportThread::ActiveReport() {
  MCUC_LOG(kLogDebug, "ActiveReport thread begin:");
  FPGAReport_init();
  uint32_t runs = 0;
  while (!m_bExitFpgaReportThread) {
    if (m_testIsOn()) {
      testfpgareadwrite();
      if (++runs % kRunsPerLine == 0) MCUC_LOG(kLogDebug, "Read_Write FPGA test : " << runs);
    }
    platform::SleepMicroseconds(kPause_us);
  }
  MCUC_LOG(kLogInfo, "FpgaThread  exit.");
  MCUC_LOG(kLogDebug, "ActiveReport thread exit.");
  return 0;
}

}  // namespace ZEPH_MCUC
