#include "proto/addr_coordinatescanboardspeed.h"

#include <platform/system.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "driverutil.h"
#include "mcucstdout.h"
#include "mcuctrace.h"
#include "proto/porttables.h"

namespace ZEPH_MCUC {
namespace {

#ifdef QUIVORD_SHORT_SPEED_TEST  // under the fuzzer, which asks for it again and again
constexpr int kPasses = 2;
constexpr uint32_t kTransfers = 16;
#else
constexpr int kPasses = 10;
constexpr uint32_t kTransfers = 65535;
#endif
constexpr uint32_t kBuffer = 16384;
constexpr int kRepeatedLines = 4;

struct Texts {
  const char* start;
  const char* stop;
  const char* failed;
  const char* speed;
};
constexpr Texts kTexts[] = {{"=================start write UDP test=================== ",
                             "==================stop write UDP test=================== ",
                             "=== WirteFromPosNetPort ===Read FPGA Posi Info failed! ret = ",
                             "!!!!!!!!!!!!!!!!!!!!!!!!!!!发送%d ,速度%.2f MB/s,time %.2f s\n"},
                            {"=================start Read UDP test=================== ",
                             "==================stop Read UDP test=================== ",
                             "=== ReadFromPosNetPort ===Read FPGA Posi Info failed! ret = ",
                             "!!!!!!!!!!!!!!!!!!!接收%d ,速度%.2f MB/s,time %.2f s\n"}};

void LogRepeated(const char* text) {
  for (int i = 0; i < kRepeatedLines; ++i) MCUC_LOG(kLogInfo, text);
}

double Milliseconds() {
  timeval now{};
  platform::GetTimeOfDay(&now, nullptr);
  return 1000.0 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1000.0;
}

int32_t Transfer(SpeedTest kind, std::vector<uint8_t>* buffer) {
  // What others write meanwhile is written again, not undone.
  if (kind == SpeedTest::kWrite) return RepeatPositions(*buffer);
  return DriverUtil::getInstance()->FPGAC5_ReadDataBlock(
      0, 0, kPositionBus, static_cast<uint32_t>(buffer->size()), buffer->data());
}

void RunPass(SpeedTest kind, const Texts& texts, std::vector<uint8_t>* buffer) {
  const double start_ms = Milliseconds();
  for (uint32_t i = 0; i < kTransfers; ++i) {
    const int32_t result = Transfer(kind, buffer);
    if (result < 0) MCUC_LOG(kLogError, texts.failed << result);
  }
  const double elapsed_ms = Milliseconds() - start_ms;
  const double kilobytes =
      static_cast<double>(kTransfers) * static_cast<double>(buffer->size()) / 1024;
  char line[160];
  std::snprintf(line, sizeof(line), texts.speed, static_cast<int>(kTransfers),
                elapsed_ms > 0 ? kilobytes / elapsed_ms : 0.0, elapsed_ms / 1000);
  SayOnStandardOutput(line);
}

}  // namespace

void RunSpeedTest(SpeedTest kind, uint32_t length) {
  const Texts& texts = kTexts[static_cast<int>(kind)];
  std::vector<uint8_t> buffer(std::min(length, kBuffer));
  LogRepeated(texts.start);
  for (int pass = 0; pass < kPasses; ++pass) RunPass(kind, texts, &buffer);
  LogRepeated(texts.stop);
}

}  // namespace ZEPH_MCUC
