#include "own_cost.h"

#include <platform/fpga.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <vector>

#include "own_board.h"
#include "seqpacket.h"
#include "stub/stubutil.h"
#include "support/inprocess.h"

namespace bench {
namespace {

using namespace ZEPH_MCUC;

constexpr uint32_t kTestCell = 0x400000;
constexpr uint32_t kTestRegister = 0xF0000000 + kTestCell;

double CpuMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

template <class Step>
double BestOf(Step step) {
  constexpr int kRounds = 20;
  constexpr int kSteps = 20'000;
  double best = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    const double begin = CpuMicroseconds();
    for (int i = 0; i < kSteps; ++i) step();
    best = std::min(best, (CpuMicroseconds() - begin) / kSteps);
  }
  return best;
}

double ServeReads(uint16_t length) {
  QMB_proto3rd request = inprocess::ReadRequest(kTestRegister, length);
  return BestOf([&] {
    request.proto.m_ucAck = JSHL_OK;
    request.proto.m_usValidDataLength = length;
    request.proto.m_data.clear();
    StubUtil::getInstance()->onDataRecvFromQMBNew(&request);
  });
}

double ServeFrames() {
  const std::vector<std::uint8_t> packet = ReadRequest(0, 4);
  ihead_t head;
  Flabel_t label;
  std::memcpy(&head, packet.data(), sizeof head);
  std::memcpy(&label, packet.data() + sizeof head, sizeof label);
  McuQMBThread front(
      [](QMB_proto3rd* msg) { return StubUtil::getInstance()->onDataRecvFromQMBNew(msg); },
      [] { return false; });
  return BestOf([&] { front.dealDataBlockNew(&head, &label, packet.data() + kEnvelopeSize); });
}

double CopyCells() {
  std::array<uint8_t, 1024> bytes{};
  return BestOf([&] { ReadFPGABlock(1, kTestCell, bytes.size(), bytes.data()); });
}

}  // namespace

OwnCost MeasureOwnCost() {
  OwnBoard();
  inprocess::Start();
  return {.read4_us = ServeReads(4),
          .frame4_us = ServeFrames(),
          .read1024_us = ServeReads(1024),
          .copy1024_us = CopyCells()};
}

}  // namespace bench
