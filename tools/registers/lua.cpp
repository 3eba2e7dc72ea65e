// The names for the dissector, as a table in Lua.
#include <algorithm>

#include "pages.h"
#include "proto/calc_feature.h"
#include "proto/registerspace_names.h"
#include "proto/report_names.h"
#include "quivord/messages.h"
#include "trace/subject.h"

namespace registers {
namespace {

using namespace ZEPH_MCUC;

constexpr std::uint32_t kCells = 0xF0000000;
constexpr std::size_t kWidth = 100;  // characters of a line

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string Number(std::uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", number);
  return text;
}

// A field `name` whose value is a table of `entries`, several in a line.
std::string Field(const char* name, const std::vector<std::string>& entries) {
  std::string text = "  " + std::string(name) + " = {";
  std::string line = "\n   ";
  for (const std::string& entry : entries) {
    if (line.size() + entry.size() + 2 > kWidth) {
      text += line;
      line = "\n   ";
    }
    line += " " + entry + ",";
  }
  return text + line + "\n  },\n";
}

std::string Named(std::uint32_t number, std::string_view name) {
  return "[" + std::to_string(number) + "] = " + Quoted(name);
}

std::string Stretch(std::uint32_t begin, std::uint32_t bytes, std::string_view name) {
  return "{ " + Number(begin) + ", " + std::to_string(bytes) + ", " + Quoted(name) + " }";
}

const FeatureRegister* FeatureAt(std::uint32_t address) {
  FrameHead head;
  head.registerAddress = address;
  return quivord::trace::FeatureOf(head);
}

// The bytes of the page at `base` that have a name.
void AddFeatures(std::uint32_t base, std::vector<std::string>& stretches) {
  for (std::uint32_t at = base; at < base + feature::kSize;) {
    const FeatureRegister* row = FeatureAt(at);
    std::uint32_t end = at + 1;
    while (end < base + feature::kSize && FeatureAt(end) == row) ++end;
    if (row != nullptr) stretches.push_back(Stretch(at, end - at, row->name));
    at = end;
  }
}

// The rows of a space that lie at single addresses, then the space itself.
void AddSpace(const SpaceNames& space, std::vector<std::string>& stretches) {
  constexpr std::uint32_t kBlock = 0x10000;
  constexpr std::uint32_t kLarge = 0x1000000;
  for (const TopRow& top : space.top) {
    if (top.cmdStr == nullptr) continue;
    const bool large = TopTableKey(top.key + kBlock) == top.key;
    const bool single = space.rowsChecked && (space.mask & (kBlock - 1)) == kBlock - 1;
    for (const RowNames& row : space.rows) {
      if (single) stretches.push_back(Stretch(top.key + row.key, 1, row.cmdExp));
    }
    const std::string name = quivord::trace::RegisterName(top.key);
    const std::string whole = single || name.empty() ? std::string(top.cmdExp) : name;
    stretches.push_back(Stretch(top.key, large ? kLarge : kBlock, whole));
  }
}

std::vector<std::string> Stretches() {
  std::vector<std::string> stretches;
  for (const std::uint32_t base : {feature::kBase, kCells}) AddFeatures(base, stretches);
  for (const SpaceNames* space : kSpaces) AddSpace(*space, stretches);
  return stretches;
}

std::vector<std::string> Acks() {
  std::vector<std::string> acks;
  for (int ack = JSHL_OK; ack <= JSHL_invalidTypeErr; ++ack) {
    acks.push_back(
        Named(static_cast<std::uint32_t>(ack), quivord::AckText(static_cast<std::uint8_t>(ack))));
  }
  return acks;
}

std::vector<std::string> Reports() {
  std::vector<std::string> reports;
  for (const ReportName& row : ReportNames()) {
    reports.push_back("[" + Number(row.address) + "] = " + Quoted(row.meaning));
  }
  return reports;
}

std::vector<std::string> Tasks() {
  std::vector<std::string> tasks;
  for (const std::uint32_t number : {task::kOwd, task::kKye, task::kMoirad}) {
    tasks.push_back("[" + Number(number) + "] = " + Quoted(quivord::trace::PeerText(number)));
  }
  return tasks;
}

}  // namespace

std::string LuaPart() {
  return "local NAMES = {\n" + Field("acks", Acks()) +
         Field("devices", {Named(JSHL_TypeSender, "sending card"), Named(JSHL_TypeReceiver, "card"),
                           Named(JSHL_TypeMultiFunc, "multi-function card"),
                           Named(JSHL_TypeDistribute, "distribution box"),
                           Named(JSHL_TypeLauncher3D, "3D launcher")}) +
         Field("tasks", Tasks()) + Field("reports", Reports()) + Field("registers", Stretches()) +
         "}\n";
}

}  // namespace registers
