// Sends a recording's frames again, and shows what is different now.
#include <cerrno>
#include <cstdlib>

#include "board/files.h"
#include "commands.h"
#include "file_fault.h"
#include "number_check.h"
#include "numbers.h"
#include "record/text.h"

namespace ctl {
namespace {

namespace record = quivord::record;

constexpr double kMostSpeed = 1e6;
constexpr double kMostPatience_s = 3600;

struct Words {
  std::string file;
  std::string speed = "1";
  bool compare = false;
  double patience_s = 5;
  std::vector<std::string> ignored;
};

// Times the recorded rhythm, 0 for as fast as answers come.
std::optional<double> ParseSpeed(const std::string& word) {
  if (word == "fast") return 0;
  char* end = nullptr;
  const double speed = std::strtod(word.c_str(), &end);
  const bool whole = !word.empty() && *end == '\0';
  if (!whole || !(speed >= 0 && speed <= kMostSpeed)) return std::nullopt;
  return speed;
}

// ADDRESS or ADDRESS:BYTES.
std::optional<record::MayDiffer> ParseIgnored(const std::string& word) {
  const auto colon = word.find(':');
  const auto address = ParseNumber(word.substr(0, colon), UINT32_MAX);
  const auto bytes = colon == std::string::npos ? std::optional<std::uint64_t>(1)
                                                : ParseNumber(word.substr(colon + 1), UINT32_MAX);
  if (!address.has_value() || !bytes.has_value()) return std::nullopt;
  return record::MayDiffer{static_cast<std::uint32_t>(*address), static_cast<std::uint32_t>(*bytes),
                           "ignored, as was asked"};
}

// How to play; where the words don't say it, `fault` says what is wrong with them.
record::Manner MannerOf(const Context& context, const Words& words, std::string& fault) {
  const Options& options = context.options;
  const auto speed = ParseSpeed(words.speed);
  if (!speed.has_value()) fault = "--speed is a number from 0 to 1000000, or fast";
  record::Manner manner{
      .speed = speed.value_or(1),
      .compare = words.compare,
      .slot = options.slot,
      .timeout = options.timeout,
      .patience = std::chrono::milliseconds(static_cast<std::int64_t>(words.patience_s * 1000)),
      .may_differ = record::UsuallyDiffer(),
      .on_progress = [&out = context.out](std::size_t done, std::size_t of) {
        out.Progress("frame " + std::to_string(done) + " of " + std::to_string(of));
      }};
  for (const std::string& word : words.ignored) {
    const auto row = ParseIgnored(word);
    if (!row.has_value()) fault = "--ignore takes ADDRESS or ADDRESS:BYTES, such as 0x02000046:4";
    manner.may_differ.push_back(row.value_or(record::MayDiffer{}));
  }
  return manner;
}

Exit ExitOf(const record::Played& played, bool compared) {
  if (played.same()) return Exit::kDone;
  return compared ? Exit::kRefused : Exit::kNoAnswer;
}

Exit Replay(Context& context, const Words& words) {
  std::string fault;
  const record::Manner manner = MannerOf(context, words, fault);
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, fault);
  errno = 0;
  const auto text = board::ReadWhole(words.file);
  if (!text.has_value()) {
    return context.Fail(Exit::kWrongUse, quivord::CannotRead(words.file, errno));
  }
  record::Recording recording;
  fault = record::ReadRecording(*text, words.file, recording);
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, fault);
  record::Player player(context.options.board, recording, manner);
  const auto played = player.Play();
  if (!played) return context.Fail(played.error());
  context.out.Show(record::PlayedText(played.value(), words.compare),
                   record::PlayedJson(played.value(), words.compare));
  return ExitOf(played.value(), words.compare);
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("FILE", words->file, "A recording, as 'quivordctl record' makes it")->required();
  app.add_option("--speed", words->speed,
                 "Times the recorded rhythm; 0 or fast: as fast as answers come")
      ->type_name("N")
      ->capture_default_str();
  app.add_flag("--compare", words->compare,
               "Show what differs from the recording; the exit status is then 1");
  app.add_option("--patience", words->patience_s,
                 "With --compare: how long in all to wait for answers to become the same")
      ->type_name("SECONDS")
      ->check(NumberFrom(0.0, kMostPatience_s))
      ->capture_default_str();
  app.add_option("--ignore", words->ignored,
                 "With --compare: registers that may differ, as ADDRESS or ADDRESS:BYTES")
      ->type_name("PLACE");
  return [words](Context& context) { return Replay(context, *words); };
}

}  // namespace

const Command kReplayCommand{
    "replay",
    "Send a recording's frames again, and show what differs",
    "  quivordctl replay session.rec --compare\n"
    "  quivordctl replay session.rec --speed fast --compare --board /tmp/other\n"
    "  quivordctl --json replay session.rec --speed 10 --compare --ignore 0x02000046:4\n",
    Declare,
};

}  // namespace ctl
