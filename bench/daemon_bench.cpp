// The road of a request, piece by piece and whole, on the calling thread: codec, checksum,
// dispatch. Makes a board folder of its own.
#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <thread>
#include <vector>

#include "driverutil.h"
#include "own_board.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"
#include "stub/stubutil.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;
using bench::OwnBoard;

constexpr uint32_t kTestCell = 0xF0400000;

// The frame of a write of `size` bytes, as it arrives.
std::vector<uint8_t> WriteFrame(std::size_t size) {
  std::vector<uint8_t> frame(frame::kShortest + size);
  frame[frame::kCode] = JSHL_PROTOWRITE;
  DWQ_ENCDW(&frame[frame::kRegister], kTestCell);
  DWQ_ENCWD(&frame[frame::kDataLength], static_cast<uint16_t>(size));
  std::iota(frame.begin() + frame::kData, frame.end() - frame::kChecksumSize, uint8_t{1});
  return frame;
}

void Decode(benchmark::State& state) {
  const auto frame = WriteFrame(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    ThirdProtoMCUCMsg message;
    benchmark::DoNotOptimize(message.Decode(frame.data(), static_cast<int32_t>(frame.size())));
    benchmark::DoNotOptimize(message.m_data.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(frame.size()));
}
BENCHMARK(Decode)->Arg(4)->Arg(1024)->Arg(frame::kMostData);

void Encode(benchmark::State& state) {
  ThirdProtoMCUCMsg message;
  message.m_data.assign(static_cast<std::size_t>(state.range(0)), 0x5A);
  std::vector<uint8_t> buffer(TP_SEND_BUFFER_LENGTH);
  int32_t length = 0;
  for (auto _ : state) {
    length = message.Encode(buffer.data(), TP_SEND_BUFFER_LENGTH);
    benchmark::DoNotOptimize(buffer.data());
  }
  state.SetBytesProcessed(state.iterations() * length);
}
BENCHMARK(Encode)->Arg(4)->Arg(1024)->Arg(frame::kMostData);

constexpr int32_t kBlock = 65536;

void CaculCheckout64KiB(benchmark::State& state) {
  const std::vector<uint8_t> block(kBlock, 0x5A);
  for (auto _ : state) {
    uint16_t sum = 0;
    MCUCMsg::CaculCheckout(block.data(), 0, kBlock, &sum);
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(state.iterations() * kBlock);
}
BENCHMARK(CaculCheckout64KiB);

// The yardstick: the same memory read once, word by word.
void ReadMemory64KiB(benchmark::State& state) {
  const std::vector<uint64_t> block(kBlock / sizeof(uint64_t), 0x5A5A);
  for (auto _ : state) {
    uint64_t sum = std::accumulate(block.begin(), block.end(), uint64_t{0});
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(state.iterations() * kBlock);
}
BENCHMARK(ReadMemory64KiB);

// A 4-byte read of the test space from decoded request to encoded reply; only the bus is missing.
void ServeTestReads(benchmark::State& state, uint8_t expected) {
  QMB_proto3rd request = inprocess::ReadRequest(kTestCell, 4);
  StubUtil* const daemon = StubUtil::getInstance();
  for (auto _ : state) {
    request.proto.m_ucAck = JSHL_OK;
    request.proto.m_usValidDataLength = 4;
    request.proto.m_data.clear();
    daemon->onDataRecvFromQMBNew(&request);
  }
  if (request.proto.m_data != std::vector<uint8_t>(4, expected)) {
    state.SkipWithError("the read did not give what the cells hold");
  }
}

void TestRead(benchmark::State& state) {
  OwnBoard();
  inprocess::Write(kTestCell, std::array<uint8_t, 4>{7, 7, 7, 7});
  ServeTestReads(state, 7);
}
BENCHMARK(TestRead);

// The same while the loop makes pass after pass, without the 200 ms between them: how long a
// request is held up by the loop's reads of the FPGA.
void TestReadBesideTheLoop(benchmark::State& state) {
  OwnBoard();
  inprocess::Write(kTestCell, std::array<uint8_t, 4>{7, 7, 7, 7});
  std::atomic<bool> stop = false;
  std::thread loop([&] {
    while (!stop) McuQMBThread::PollingPass();
  });
  ServeTestReads(state, 7);
  stop = true;
  loop.join();
}
BENCHMARK(TestReadBesideTheLoop);

// The whole feature page, and the bus read that it needs, by itself.
void FeaturePage(benchmark::State& state) {
  OwnBoard();
  QMB_proto3rd request = inprocess::ReadRequest(feature::kBase, feature::kSize);
  StubUtil* const daemon = StubUtil::getInstance();
  Data_Global::getInstance()->SendParameterReg.setU32(feature::kScreenWidth, 0x00800080);
  inprocess::Write(0xF0000000 + feature::kScreenWidth, std::array<uint8_t, 4>{128, 0, 128, 0});
  for (auto _ : state) {
    request.proto.m_ucAck = JSHL_OK;
    request.proto.m_usValidDataLength = feature::kSize;
    request.proto.m_data.clear();
    daemon->onDataRecvFromQMBNew(&request);
  }
  if (request.proto.m_data.size() != feature::kSize) state.SkipWithError("no page came");
}
BENCHMARK(FeaturePage);

void FeaturePageRefresh(benchmark::State& state) {
  OwnBoard();
  inprocess::Start();
  std::array<uint8_t, feature::kBusEnd> page{};
  for (auto _ : state) {
    DriverUtil::getInstance()->ReadFPGABusBlock(0, page.data(), page.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(FeaturePageRefresh);

// The largest wall laid out: plan, tables, FPGA and the save with its "sync".
void LayOutLargestWall(benchmark::State& state) {
  OwnBoard();
  inprocess::Start();
  for (auto _ : state) {
    Data_Global::getInstance()->CalculateParaOfSenderInMosaicMode({32, 64, 205, 0, 0});
  }
}
BENCHMARK(LayOutLargestWall)->Unit(benchmark::kMicrosecond);

// The same once the FPGA is known to be down, so that no call goes to it. Nothing brings it back:
// this one runs last.
void TestReadWithoutFpga(benchmark::State& state) {
  std::filesystem::create_directories(OwnBoard().path() + "/sys/class/fpga");
  inprocess::Start();
  std::ofstream(OwnBoard().path() + "/sys/class/fpga/fpga_conf") << "0\n";
  std::fstream faults(OwnBoard().path() + "/faults",
                      std::ios::in | std::ios::out | std::ios::binary);
  const std::array<int32_t, 2> three = {0, 3};  // writes, reads
  faults.write(reinterpret_cast<const char*>(three.data()), sizeof three).flush();
  inprocess::Read(kTestCell, 4);
  ServeTestReads(state, 0);
}
BENCHMARK(TestReadWithoutFpga);

}  // namespace
