#include "brightness/standing.h"

#include <algorithm>
#include <vector>

#include "brightness/words.h"
#include "process/calc_time.h"

namespace quivord::brightness {
namespace {

constexpr int kWeekMinutes = 7 * 24 * 60;

// The same time so many days later.
table::Moment Later(const table::Moment& now, int days) {
  table::Moment later = now;
  for (; days > 0; --days) {
    if (later.day < ZEPH_MCUC::DaysOfMonth(later.year, later.month)) {
      ++later.day;
    } else if (later.month < 12) {
      later.day = 1;
      ++later.month;
    } else {
      later.day = later.month = 1;
      ++later.year;
    }
  }
  return later;
}

bool Applies(const Plan& plan, std::size_t node, const table::Moment& now) {
  return plan.kind == Kind::kList || table::AppliesAtArrival(plan.nodes[node], now);
}

std::optional<int> MinuteOfNode(const Plan& plan, std::size_t i) {
  if (plan.kind == Kind::kList) return MinuteOf(plan.list[i].hour, plan.list[i].minute);
  return MinuteOf(plan.nodes[i].hour, plan.nodes[i].minute);
}

}  // namespace

std::optional<Standing> StandingAt(const Plan& plan, const table::Moment& now) {
  std::vector<std::uint16_t> keys;
  for (const auto& node : plan.list) keys.push_back(table::TimeKey(node.hour, node.minute));
  Standing standing;
  if (plan.kind == Kind::kList && !keys.empty()) {
    standing.node = table::ListNodeInForce(keys, table::TimeKey(now));
  } else {
    const std::uint16_t node = table::MixNodeInForce(plan.nodes, table::TimeKey(now));
    if (node == table::kNoNode) return std::nullopt;
    standing.node = node;
  }
  standing.today = Applies(plan, standing.node, now);
  const int minute = now.hour * 60 + now.minute;
  int best = kWeekMinutes + 1;
  for (std::size_t i = 0; i < std::max(plan.list.size(), plan.nodes.size()); ++i) {
    const auto at = MinuteOfNode(plan, i);
    for (int day = 0; day <= 7 && at.has_value(); ++day) {
      const int in = day * 24 * 60 + *at - minute;
      if (in <= 0 || in >= best || !Applies(plan, i, Later(now, day))) continue;
      best = in;
      standing.next = i;
    }
  }
  standing.next_in_min = best;
  return standing;
}

}  // namespace quivord::brightness
