#include "board/faults.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>

#include "board/files.h"

namespace board {
namespace {

static_assert(std::endian::native == std::endian::little, "the counters lie in a mapped file");

std::atomic_ref<std::int32_t> Counter(Fault fault) {
  static std::int32_t* const counters =
      reinterpret_cast<std::int32_t*>(MapShared(Folder() / "faults", kFaultFileSize));
  return std::atomic_ref<std::int32_t>(counters[static_cast<std::size_t>(fault)]);
}

}  // namespace

bool TakeFault(Fault fault) {
  if (FaultCount(fault) == 0) return false;
  if (CountDown(Fault::kSkip) >= 0) return false;
  return CountDown(fault) >= 0 || FaultCount(fault) < 0;
}

std::optional<Fault> FaultByName(std::string_view name) {
  const auto* const row = std::find_if(kFaultTable.begin(), kFaultTable.end(),
                                       [&](const FaultRow& entry) { return entry.name == name; });
  if (row == kFaultTable.end()) return std::nullopt;
  return row->fault;
}

int FaultCount(Fault fault) { return Counter(fault).load(std::memory_order_relaxed); }

void SetFaultCount(Fault fault, int count) {
  Counter(fault).store(count, std::memory_order_relaxed);
}

void CountUp(Fault fault) { Counter(fault).fetch_add(1, std::memory_order_relaxed); }

int CountDown(Fault fault) {
  const auto counter = Counter(fault);
  std::int32_t count = counter.load(std::memory_order_relaxed);
  while (count > 0) {
    if (counter.compare_exchange_weak(count, count - 1, std::memory_order_relaxed)) {
      return count - 1;
    }
  }
  return -1;
}

}  // namespace board
