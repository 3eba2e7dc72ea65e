#include "commands/reset_report.h"

#include "commands/files_commands.h"
#include "numbers.h"
#include "proto/calc_feature_words.h"
#include "proto/calc_identity.h"
#include "table.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kNamesBytes = 768;  // what a reset keeps of the device names

const char* NetworkText(const ResetRule& rule) {
  if (rule.defaultNetwork) return "set to the default address 192.168.0.10, DHCP off";
  return rule.keepsDhcp ? "DHCP flag kept" : "DHCP flag cleared";
}

// One thing that is compared.
struct Verdict {
  bool as_meant;
  const char* word;
};

// Where both states are the same nothing tells a reset from what was there.
Verdict Compare(bool kept, const Bytes& before, const Bytes& now) {
  const bool same = before == now;
  if (kept) return {same, same ? "kept" : "LOST"};
  return {true, same ? "as before" : "reset"};
}

}  // namespace

std::string ResetTypeText(std::uint8_t type) {
  return std::to_string(type) + " (" + std::string(ResetRuleOf(type).name) + ")";
}

std::string ResetTypeNames() {
  std::string names;
  for (const ResetRule& rule : kResetRules) {
    names += (names.empty() ? "" : ", ") + std::string(rule.name);
  }
  return names;
}

std::string ResetTypeEffect(std::uint8_t type) {
  const ResetRule& rule = ResetRuleOf(type);
  return std::string("  kept:  serial number, the boot loader's MAC address") +
         (rule.keepsFiles ? ", scenes, device names, configuration files" : "") +
         "\n  network: " + NetworkText(rule) +
         "\n  lost:  all else: the wall, its ports, brightness plans, gamma tables" +
         (rule.keepsFiles ? "" : ", scenes, device names, configuration files") + "\n";
}

Answer ReadKept(Device& device, Kept& kept) {
  struct Part {
    Bytes* into;
    std::uint32_t address;
    std::size_t length;
  };
  const Part parts[] = {{&kept.serial, basicinfo::kSerial, kSerialBytes},
                        {&kept.names, cardfiles::kRename, kNamesBytes},
                        {&kept.files, cardfiles::kBase, quivord::cardfiles::kHeaderBytes}};
  for (const Part& part : parts) {
    Answer answer = device.ReadBytes(part.address, part.length);
    if (!answer.done()) return answer;
    *part.into = std::move(answer.data);
  }
  return {};
}

ResetReport ReportReset(std::uint8_t type, const Kept& before, const Kept& now) {
  const ResetRule& rule = ResetRuleOf(type);
  const Verdict serial = Compare(true, before.serial, now.serial);
  const Verdict names = Compare(rule.keepsFiles, before.names, now.names);
  const Verdict files = Compare(rule.keepsFiles, before.files, now.files);
  const auto width = FeatureNumber(now.page.Bytes(*FindFeature("screen-width")));
  const auto height = FeatureNumber(now.page.Bytes(*FindFeature("screen-height")));
  const std::string screen = std::to_string(width) + " x " + std::to_string(height) + " px";
  ResetReport report;
  report.as_meant = serial.as_meant && names.as_meant && files.as_meant;
  report.text = Columns({{"serial number", HexText(now.serial) + " " + serial.word},
                         {"MAC address", "the boot loader's stays"},
                         {"network", NetworkText(rule)},
                         {"scenes", rule.keepsFiles ? "kept" : "reset"},
                         {"device names", names.word},
                         {"card files", files.word},
                         {"screen", "one card of " + screen},
                         {"all else", "as from the factory; the output is closed"}});
  report.object = {{"type", type},
                   {"name", rule.name},
                   {"as_meant", report.as_meant},
                   {"serial", HexText(now.serial)},
                   {"serial_kept", serial.as_meant},
                   {"network", NetworkText(rule)},
                   {"names", names.word},
                   {"files", files.word},
                   {"screen", {{"width", width}, {"height", height}}}};
  return report;
}

}  // namespace ctl
