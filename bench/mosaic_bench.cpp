// The mosaic's plan and its tables, beside what copying tables of that size costs alone.
#include <benchmark/benchmark.h>

#include <array>
#include <cstring>

#include "proto/mosaic.h"

namespace ZEPH_MCUC {
namespace {

alignas(64) std::array<uint8_t, kPositionSize> tables{};

// The largest wall that a client may ask for: 2048 cabinets on ten cables.
constexpr MosaicInput kLargest{
    .rows = 32, .columns = 64, .boxNumber = 205, .mode = 0, .cardWidth = 128, .cardHeight = 128};
constexpr MosaicInput kOneCabinet{
    .rows = 1, .columns = 1, .boxNumber = 1, .mode = 0, .cardWidth = 128, .cardHeight = 128};

void PlanAndFill(benchmark::State& state, MosaicInput wall) {
  wall.mode = static_cast<uint8_t>(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(wall);
    const MosaicPlan plan = PlanMosaic(wall);
    FillPositionTables(plan, tables);
    benchmark::ClobberMemory();
  }
}
BENCHMARK_CAPTURE(PlanAndFill, largest, kLargest)->DenseRange(0, 7);
BENCHMARK_CAPTURE(PlanAndFill, one_cabinet, kOneCabinet)->Arg(0);

void Plan(benchmark::State& state) {
  MosaicInput wall = kLargest;
  for (auto _ : state) {
    benchmark::DoNotOptimize(wall);
    benchmark::DoNotOptimize(PlanMosaic(wall));
  }
}
BENCHMARK(Plan);

void CopyTables(benchmark::State& state) {
  static const std::array<uint8_t, kPositionSize> from{};
  for (auto _ : state) {
    std::memcpy(tables.data(), from.data(), tables.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(CopyTables);

}  // namespace
}  // namespace ZEPH_MCUC
