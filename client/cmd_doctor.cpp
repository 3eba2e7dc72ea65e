// Is all well, and if not, what is to be done.
#include <algorithm>
#include <vector>

#include "commands.h"
#include "doctor_checks.h"
#include "table.h"

namespace ctl {
namespace {

struct Row {
  const char* json;
  const char* text;
  std::optional<Tone> tone;
};

// By health.
constexpr Row kRows[] = {
    {"good", "good", Tone::kGood},
    {"note", "note", Tone::kDoubtful},
    {"wrong", "WRONG", Tone::kBad},
    {"unknown", "-", std::nullopt},
};

const Row& RowOf(Health health) { return kRows[static_cast<std::size_t>(health)]; }

bool WantsAdvice(const Finding& finding) {
  return finding.health == Health::kNote || finding.health == Health::kWrong;
}

std::string Text(const Output& out, const std::vector<Finding>& findings) {
  std::vector<std::vector<std::string>> rows;
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const Row& row = RowOf(findings[i].health);
    const Check& check = Checks()[i];
    const std::string health = row.tone ? out.Paint(*row.tone, row.text) : row.text;
    rows.push_back({check.name, health, findings[i].text});
    if (WantsAdvice(findings[i])) rows.push_back({"", "", std::string("-> ") + check.advice});
  }
  return Columns(rows);
}

nlohmann::json Json(const std::vector<Finding>& findings, bool well) {
  nlohmann::json checks = nlohmann::json::array();
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const Check& check = Checks()[i];
    checks.push_back({{"name", check.name},
                      {"health", RowOf(findings[i].health).json},
                      {"text", findings[i].text},
                      {"advice", WantsAdvice(findings[i]) ? nlohmann::json(check.advice)
                                                          : nlohmann::json(nullptr)}});
  }
  return {{"well", well}, {"checks", checks}};
}

Exit Doctor(Context& context) {
  Patient patient{context};
  std::vector<Finding> findings;
  for (const Check& check : Checks()) findings.push_back(check.look(patient));
  const bool well = std::ranges::none_of(
      findings, [](const Finding& finding) { return finding.health == Health::kWrong; });
  context.out.Show(Text(context.out, findings), Json(findings, well));
  if (patient.device == nullptr) return Exit::kNoAnswer;
  return well ? Exit::kDone : Exit::kRefused;
}

}  // namespace

const Command kDoctorCommand{
    "doctor",
    "Look whether all is well, and say what to do where it isn't",
    "  quivordctl doctor\n"
    "  quivordctl --board /tmp/my-board --json doctor\n"
    "Ends with 0 where all is well, 1 where something is wrong, 3 where no daemon answers. What\n"
    "lies in the board folder is looked at where there is one.",
    [](CLI::App& /*app*/) -> Run { return Doctor; },
};

}  // namespace ctl
