// The picture's calculations, and a whole mode change with what it moves over the FPGA bus.
#include <benchmark/benchmark.h>
#include <platform/gamma.h>
#include <sys/wait.h>

#include <array>
#include <fstream>
#include <map>
#include <sstream>

#include "own_board.h"
#include "proto/calc_curves.h"
#include "support/inprocess.h"

namespace ZEPH_MCUC {
namespace {

std::array<uint8_t, kGammaTableSize> table{};

void Hdr10(benchmark::State& state) {
  for (auto _ : state) {
    HDR10GammaCalculation(1000, 30, 100, 10, 15, 140, table.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Hdr10)->Unit(benchmark::kMicrosecond);

void Hlg(benchmark::State& state) {
  for (auto _ : state) {
    HLGGammaCalculation(static_cast<uint8_t>(state.range(0)), table.data());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(Hlg)->Arg(4)->Unit(benchmark::kMicrosecond);

void Matrices(benchmark::State& state) {
  std::array<uint8_t, 32> matrix{};
  for (auto _ : state) {
    for (const auto conversion : {FRtoFR, LYtoFR}) {
      PictureQualityCalculation(conversion, 60, 55, 20, 0, matrix.data());
      benchmark::DoNotOptimize(matrix);
    }
  }
}
BENCHMARK(Matrices);

void DefaultTable(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(PowerTable(2.8, 10, 1));
}
BENCHMARK(DefaultTable)->Unit(benchmark::kMicrosecond);

void ChangeMode(uint8_t type) {
  inprocess::Write(0x02200117, std::array<uint8_t, 1>{type});
  inprocess::DrainQueue();
}

// Bytes that the daemon writes over the FPGA bus in one mode change: added up from the trace of a
// board of its own, in a process of its own, since a process has one board.
int BusBytes(uint8_t type) {
  const bench::Board board;
  std::ofstream(board.path() + "/board.conf") << "trace = fpga\n";
  if (const pid_t child = fork(); child == 0) {
    board.Choose();
    ChangeMode(type);
    _exit(0);
  } else {
    waitpid(child, nullptr, 0);
  }
  int bytes = 0;
  std::ifstream trace(board.path() + "/trace.log");
  for (std::string line; std::getline(trace, line);) {
    std::istringstream words(line);
    std::string time, kind, direction, fpga, address;
    int length = 0;
    words >> time >> kind >> direction >> fpga >> address >> length;
    if (direction == "W") bytes += length;
  }
  return bytes;
}

// From the decoded request to the last byte in FPGA and store.
void ModeChange(benchmark::State& state, uint8_t type) {
  // While this process has no board yet: all of them at the first run, which comes before the
  // benchmarks of the other files.
  static const std::map<uint8_t, int> bytes = {
      {0x58, BusBytes(0x58)}, {0x78, BusBytes(0x78)}, {0x00, BusBytes(0x00)}};
  static_cast<void>(bench::OwnBoard());
  if (bytes.at(type) == 0) return state.SkipWithError("the bus wasn't traced");
  for (auto _ : state) ChangeMode(type);
  state.counters["bus_bytes"] = bytes.at(type);
}
BENCHMARK_CAPTURE(ModeChange, hdr10, 0x58)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ModeChange, hlg, 0x78)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ModeChange, standard, 0x00)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ZEPH_MCUC
