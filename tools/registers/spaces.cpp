#include "markdown.h"
#include "pages.h"
#include "proto/registerspace_names.h"

namespace registers {
namespace {

using namespace ZEPH_MCUC;
using Rows = std::vector<std::vector<std::string>>;

std::string Bytes(std::int32_t count) {
  return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string Keys(const SpaceNames& space) {
  std::string text;
  for (const TopRow& row : space.top) {
    if (row.cmdStr != nullptr) text += (text.empty() ? "" : ", ") + Hex(row.key, 8);
  }
  return text;
}

const char* NameOf(const SpaceNames& space) {
  return space.rows.size() == 1 ? space.rows[0].cmdExp : space.top[0].cmdExp;
}

std::string Lengths(const SpaceNames& space) {
  return space.rowsChecked ? std::to_string(space.least) + " to " + std::to_string(space.most)
                           : "any";
}

void Add(std::string& text, const std::string& more) { text += (text.empty() ? "" : "; ") + more; }

std::string AreasText(const AccessRule& rule, const char* dropped) {
  std::string text;
  for (const Area& area : rule.areas) {
    text += (text.empty() ? "" : ", ") + Hex(area.begin) +
            (area.end - area.begin > 1 ? " to " + Hex(area.end - 1) : "");
  }
  if (rule.outside == Outside::kDropped) text += std::string(", ") + dropped;
  return text;
}

std::string ExactText(const Exact& exact) {
  const std::string what = Bytes(exact.length) + " at " + Hex(exact.offset);
  return exact.service == Service::kNothing ? what + ": answered without bytes" : what;
}

// How an access is said to go where it does nothing, and in part.
struct Manner {
  const char* nothing;
  const char* dropped;
};
constexpr Manner kReads = {"answered without bytes", "bytes outside don't come"};
constexpr Manner kWrites = {"answered, nothing is kept", "bytes outside go nowhere"};

std::string RuleText(const AccessRule& rule, const Manner& manner) {
  std::string text;
  if (rule.service == Service::kNothing) text = manner.nothing;
  if (rule.service == Service::kRefused) text = rule.exact.empty() ? "refused" : "nothing but";
  if (rule.service == Service::kServed) {
    text = rule.areas.empty() ? "everywhere" : AreasText(rule, manner.dropped);
  }
  if (rule.most != 0) Add(text, "at most " + Bytes(rule.most));
  for (const Exact& exact : rule.exact) {
    if (text == "nothing but") {
      text = ExactText(exact);
    } else {
      Add(text, ExactText(exact));
    }
  }
  return text;
}

}  // namespace

std::string SpacesPart() {
  Rows rows;
  for (const SpaceNames* space : kSpaces) {
    rows.push_back({Keys(*space), NameOf(*space), Lengths(*space), RuleText(space->read, kReads),
                    RuleText(space->write, kWrites), Code(space->className)});
  }
  return Table({"Registers from", "Space", "Bytes at once", "Reads", "Writes", "Class"}, rows);
}

std::string RowsPart() {
  std::string text;
  for (const SpaceNames* space : kSpaces) {
    if (space->rows.size() < 2) continue;
    Rows rows;
    for (const RowNames& row : space->rows) {
      rows.push_back({Hex(row.key, 8), row.cmdExp, Bytes(row.leastWritten)});
    }
    text += (text.empty() ? "### " : "\n### ") + std::string(space->top[0].cmdExp) + "\n\n" +
            Table({"Row", "Name", "A write has at least"}, rows);
  }
  return text;
}

}  // namespace registers
