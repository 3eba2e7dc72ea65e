#include "all_boards.h"
#include "command.h"
#include "register.h"

namespace ctl {
namespace {

// What follows `text`, a fault; empty where nothing helps or it says so itself.
std::string NextStep(const Context& context, Exit exit, const std::string& text) {
  if (text.find("quivordctl ") != text.npos) return "";
  if (exit == Exit::kWrongUse) return "; see " + context.called + " --help";
  if (exit != Exit::kNoAnswer) return "";
  const auto& folder = context.options.board;
  const bool fleet = !std::filesystem::exists(folder / "board.conf") && !BoardsIn(folder).empty();
  return fleet ? "; the boards in it answer to --all" : "; 'quivordctl doctor' looks why";
}

}  // namespace

Exit ExitFor(quivord::Trouble trouble) {
  switch (trouble) {
    case quivord::Trouble::kRefused:
      return Exit::kRefused;
    case quivord::Trouble::kWrongUse:
      return Exit::kWrongUse;
    default:
      return Exit::kNoAnswer;
  }
}

quivord::Result<std::unique_ptr<quivord::Client>> Context::Connect(
    std::uint32_t default_id, std::function<void(const quivord::Report&)> on_report,
    std::function<void(const quivord::Error&)> on_end) const {
  const std::uint32_t otherwise = default_id != 0 ? default_id : options.OwnTask();
  return quivord::Client::Connect({.board = options.board,
                                   .id = options.as.value_or(otherwise),
                                   .on_report = std::move(on_report),
                                   .on_end = std::move(on_end)});
}

Exit Context::Fail(const quivord::Error& error) const {
  return Fail(ExitFor(error.trouble), error.text);
}

Exit Context::Fail(const Answer& answer) const { return Fail(answer.exit, answer.text); }

Exit Context::Fail(Exit exit, const std::string& text) const {
  out.Fault(text + NextStep(*this, exit, text), static_cast<int>(exit));
  return exit;
}

}  // namespace ctl
