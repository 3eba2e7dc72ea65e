#include "commands.h"
#include "commands/edid_device.h"
#include "process/calc_inputsource.h"
#include "table.h"
#include "video/edid_facts.h"
#include "video/mode.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
namespace video = quivord::video;

struct Input {
  std::uint8_t group;
  std::uint8_t source_id;
  std::optional<video::EdidFacts> facts;  // none: nothing is shown there
};

Answer ReadGroups(EdidDevice& device, std::vector<Input>& inputs) {
  for (std::uint8_t group = 0; group < kReachableGroups; ++group) {
    EdidImage image{};
    Answer answer = device.Select(group);
    if (answer.done()) answer = device.Read(image);
    if (!answer.done()) return answer;
    inputs.push_back({group, SourceIdOfGroup(group), std::nullopt});
    if (HasEdid(image)) inputs.back().facts = video::ReadEdid(image);
  }
  return {};
}

std::string Preferred(const video::EdidFacts& facts) {
  return facts.timings.empty() ? "no timing" : video::TimingText(facts.timings.front());
}

void Print(const Context& context, const std::vector<Input>& inputs) {
  std::vector<std::vector<std::string>> rows = {{"group", "source ID", "EDID", "shows"}};
  nlohmann::json all = nlohmann::json::array();
  for (const Input& input : inputs) {
    char id[8];
    std::snprintf(id, sizeof id, "0x%02X", unsigned{input.source_id});
    nlohmann::json object = {{"group", input.group}, {"source_id", input.source_id}};
    if (input.facts) {
      rows.push_back({std::to_string(input.group), id, input.facts->name, Preferred(*input.facts)});
      object["edid"] = video::EdidJson(*input.facts);
    } else {
      rows.push_back({std::to_string(input.group), id, "none", ""});
      object["edid"] = nullptr;
    }
    all.push_back(object);
  }
  context.out.Show(Columns(rows), {{"inputs", all}});
}

Exit Look(Context& context) {
  Exit exit = Exit::kDone;
  const auto device = EdidDevice::Open(context, exit);
  if (device == nullptr) return exit;
  std::vector<Input> inputs;
  Answer answer = device->Detect();
  if (answer.done()) answer = ReadGroups(*device, inputs);
  const Answer back = device->PutBack();
  if (answer.done()) answer = back;
  if (!answer.done()) return context.Fail(answer);
  Print(context, inputs);
  return Exit::kDone;
}

Run Declare(CLI::App& /*app*/) { return Look; }

}  // namespace

const Command kInputsCommand{
    "inputs",
    "Look for input boards and show what the bus tells of them",
    "  quivordctl inputs\n"
    "Each board found is given the EDID of its group's stored mode. The bus reaches the EDIDs of\n"
    "groups 0 to 2; each is made current in turn, and the input that was so before again.\n",
    Declare,
};

}  // namespace ctl
