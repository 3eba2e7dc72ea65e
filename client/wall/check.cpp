#include "wall/check.h"

#include "counted.h"
#include "proto/mosaic_advanced.h"
#include "wall/words.h"

namespace quivord::wall {
namespace {

using ZEPH_MCUC::kMostCabinetsOfPort;
using ZEPH_MCUC::kMostCabinetsOfPorts;

std::string Number(std::size_t number) { return std::to_string(number); }

// The plan of a wall whose cards have some size: the split doesn't depend on it.
ZEPH_MCUC::MosaicPlan Split(const Smart& smart) {
  return ZEPH_MCUC::PlanMosaic({.rows = smart.rows,
                                .columns = smart.columns,
                                .boxNumber = smart.perCable,
                                .mode = smart.mode,
                                .cardWidth = 1,
                                .cardHeight = 1});
}

bool Fits(const ZEPH_MCUC::MosaicPlan& plan) { return plan.valid && plan.usedPorts <= kPorts; }

// How to make a wall fit whose cables carry too little.
std::string RaisePerCable(Smart smart) {
  while (++smart.perCable <= kMostCabinetsOfPort) {
    if (Fits(Split(smart))) return "let each cable carry at least " + Number(smart.perCable);
  }
  return "make the wall smaller";
}

std::optional<std::string> RecordObstacle(std::size_t port, const PortRecord& record) {
  const std::string where = "port " + Number(port) + ": ";
  if (record.rows == 0 || record.columns == 0) return where + "rows and columns are at least 1";
  if (!ZEPH_MCUC::IsConnectionMode(record.mode)) {
    return where + "the connection mode is a number from 0 to 7";
  }
  const std::size_t cabinets = std::size_t{record.rows} * record.columns;
  if (cabinets <= kMostCabinetsOfPort) return std::nullopt;
  return where + SizeText(record.rows, record.columns, " x ") + " are " + Number(cabinets) +
         " cabinets, and a port carries " + Number(kMostCabinetsOfPort) + " at most";
}

}  // namespace

std::optional<std::string> SmartObstacle(const Smart& smart) {
  if (smart.rows == 0 || smart.columns == 0) return "rows and columns are at least 1";
  if (smart.perCable == 0) return "a cable carries at least 1 cabinet";
  if (!ZEPH_MCUC::IsConnectionMode(smart.mode)) {
    return "the connection mode is a number from 0 to 7";
  }
  const std::size_t cabinets = std::size_t{smart.rows} * smart.columns;
  const std::string wall =
      SizeText(smart.rows, smart.columns, " x ") + " are " + Counted(cabinets, "cabinet");
  if (cabinets > kMostCabinetsOfPorts) {
    return wall + ", and a wall has " + Number(kMostCabinetsOfPorts) + " at most";
  }
  if (smart.perCable > kMostCabinetsOfPort) {
    return "a cable carries " + Number(kMostCabinetsOfPort) + " cabinets at most";
  }
  if (cabinets < smart.perCable) {
    return wall + ", fewer than the " + Number(smart.perCable) +
           " that a cable is said to carry; let a cable carry " + Number(cabinets) + " at most";
  }
  const ZEPH_MCUC::MosaicPlan plan = Split(smart);
  if (Fits(plan)) return std::nullopt;
  if (!plan.valid) {
    return wall + ", more than 16 cables of " + Number(smart.perCable) + " carry; " +
           RaisePerCable(smart);
  }
  return wall + " on " + Number(plan.usedPorts) + " cables, and there are " + Number(kPorts) +
         " ports; " + RaisePerCable(smart);
}

std::optional<std::string> AdvancedObstacle(const PortRecords& records) {
  std::size_t all = 0;
  bool any = false;
  for (std::size_t port = 0; port < kPorts; ++port) {
    const PortRecord& record = records[port];
    if (record.empty()) {
      ++all;  // the device counts one cabinet there
      continue;
    }
    any = true;
    if (auto obstacle = RecordObstacle(port, record)) return obstacle;
    all += std::size_t{record.rows} * record.columns;
  }
  if (!any) return "no port carries anything";
  if (all <= kMostCabinetsOfPorts) return std::nullopt;
  return "the ports carry " + Number(all) + " cabinets, an empty one counted as 1, and all " +
         "together carry " + Number(kMostCabinetsOfPorts) + " at most";
}

}  // namespace quivord::wall
