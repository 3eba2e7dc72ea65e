// Is all well, and if not, what is to be done.
#include <algorithm>
#include <vector>

#include "commands.h"
#include "commands/doctor_checks.h"
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

// What to do, with the board's folder where DIR stands; empty where nothing is.
std::string Advice(const Check& check, const Finding& finding, const std::string& board) {
  if (finding.health != Health::kNote && finding.health != Health::kWrong) return "";
  std::string advice = finding.advice != nullptr ? finding.advice : check.advice;
  for (std::size_t at = 0; (at = advice.find("DIR", at)) != std::string::npos;) {
    advice.replace(at, 3, board);
    at += board.size();
  }
  return advice;
}

std::string Text(const Context& context, const std::vector<Finding>& findings) {
  std::vector<std::vector<std::string>> rows;
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const Row& row = RowOf(findings[i].health);
    const Check& check = Checks()[i];
    rows.push_back({check.name, row.tone ? context.out.Paint(*row.tone, row.text) : row.text,
                    findings[i].text});
    const std::string advice = Advice(check, findings[i], context.options.board);
    if (!advice.empty()) rows.push_back({"", "", "-> " + advice});
  }
  return Columns(rows);
}

nlohmann::json Json(const Context& context, const std::vector<Finding>& findings, bool well) {
  nlohmann::json checks = nlohmann::json::array();
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const Check& check = Checks()[i];
    const std::string advice = Advice(check, findings[i], context.options.board);
    checks.push_back({{"name", check.name},
                      {"health", RowOf(findings[i].health).json},
                      {"text", findings[i].text},
                      {"advice", advice.empty() ? nlohmann::json() : nlohmann::json(advice)}});
  }
  return {{"well", well}, {"checks", checks}};
}

Exit Doctor(Context& context) {
  const auto obstacle = SenderObstacle(context.options);
  if (obstacle.has_value()) return context.Fail(Exit::kWrongUse, *obstacle);
  std::error_code failed;
  Patient patient{context, std::filesystem::is_directory(context.options.board, failed)};
  std::vector<Finding> findings;
  for (const Check& check : Checks()) findings.push_back(check.look(patient));
  const bool well = std::ranges::none_of(
      findings, [](const Finding& finding) { return finding.health == Health::kWrong; });
  context.out.Show(Text(context, findings), Json(context, findings, well));
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
