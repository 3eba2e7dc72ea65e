#include "live/describe.h"

#include <tuple>

namespace quivord::live {
namespace {

// A section: how it is described, and whether two snapshots look the same to it.
struct Row {
  const char* name;
  Json (*describe)(const Snapshot&);
  bool (*same)(const Snapshot&, const Snapshot&);
};

constexpr std::int64_t kSecond_us = 1000000;
constexpr std::int64_t kMinute_us = 60 * kSecond_us;

bool SameBoard(const Snapshot& a, const Snapshot& b) {
  const auto view = [](const Snapshot& s) {
    return std::tie(s.exists, s.troubles, s.settings, s.daemon, s.fpga_loaded);
  };
  return view(a) == view(b);
}

bool SameWall(const Snapshot& a, const Snapshot& b) { return a.device == b.device; }
bool SameCells(const Snapshot& a, const Snapshot& b) { return a.cells == b.cells; }

bool SameTime(const Snapshot& a, const Snapshot& b) {
  return a.settings.speed == b.settings.speed &&
         BoardTime_us(a) / kSecond_us == BoardTime_us(b) / kSecond_us;
}

bool SamePlan(const Snapshot& a, const Snapshot& b) {
  return a.plan == b.plan && BoardTime_us(a) / kMinute_us == BoardTime_us(b) / kMinute_us;
}

bool SamePicture(const Snapshot& a, const Snapshot& b) {
  return a.picture == b.picture && a.cells == b.cells;
}

bool SameInputs(const Snapshot& a, const Snapshot& b) {
  return a.settings.inputs == b.settings.inputs && a.edids == b.edids;
}

bool SameOutside(const Snapshot& a, const Snapshot& b) {
  return a.lux == b.lux && a.faults == b.faults;
}

bool SameLog(const Snapshot& a, const Snapshot& b) {
  return a.log == b.log && a.trace_passed_over == b.trace_passed_over;
}

constexpr std::array<Row, kSections> kRows = {{
    {"board", DescribeBoard, SameBoard},
    {"time", DescribeTime, SameTime},
    {"screen", DescribeScreen, SameCells},
    {"links", DescribeLinks, SameCells},
    {"wall", DescribeWall, SameWall},
    {"cards", DescribeCards,
     [](const Snapshot& a, const Snapshot& b) { return a.cards == b.cards; }},
    {"picture", DescribePicture, SamePicture},
    {"inputs", DescribeInputs, SameInputs},
    {"plan", DescribePlan, SamePlan},
    {"outside", DescribeOutside, SameOutside},
    {"log", DescribeLog, SameLog},
}};

}  // namespace

std::array<const char*, kSections> SectionNames() {
  std::array<const char*, kSections> names{};
  for (std::size_t i = 0; i < kSections; ++i) names[i] = kRows[i].name;
  return names;
}

State Describe(const Snapshot& snapshot, const Snapshot* before, const State& last) {
  State state = last;
  for (std::size_t i = 0; i < kSections; ++i) {
    const bool same = before != nullptr && last[i] != nullptr && kRows[i].same(snapshot, *before);
    if (!same) state[i] = std::make_shared<const Json>(kRows[i].describe(snapshot));
  }
  return state;
}

}  // namespace quivord::live
