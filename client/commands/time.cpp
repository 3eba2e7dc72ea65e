#include <ctime>

#include "commands.h"
#include "commands/feature_set.h"
#include "commands/feature_value.h"
#include "device.h"
#include "process/calc_time.h"
#include "proto/calc_feature_words.h"
#include "subcommands.h"

namespace ctl {
namespace {

constexpr const char* kWeekdays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                     "Friday", "Saturday", "Sunday"};

constexpr char kMember[] = "time";  // of JSON

const ZEPH_MCUC::FeatureRegister& Row() { return *ZEPH_MCUC::FindFeature("time"); }

std::string Weekday(std::span<const std::uint8_t> bcd) {
  using namespace ZEPH_MCUC;
  if (bcd.size() != 6 || !IsTime(bcd.first<6>())) return "no time";
  return kWeekdays[WeekdayOf(FromBcd(bcd[0]), FromBcd(bcd[1]), FromBcd(bcd[2])) - 1];
}

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
  return text;
}

Exit Show(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer answer = device->Read(Row());
  if (!answer.done()) return context.Fail(answer);
  const std::string time = ZEPH_MCUC::TimeText(answer.data);
  const std::string weekday = Weekday(answer.data);
  context.out.Show(time + " (" + weekday + ")", {{kMember, time}, {"weekday", weekday}});
  return Exit::kDone;
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<std::vector<std::string>>();
  app.add_option("TIME", *words, "now, or as 2026-07-03 12:00:00 in the device's own time")
      ->required()
      ->expected(1, 2);
  return [words](Context& context) {
    const bool two = words->size() == 2;
    const std::string time = two ? words->front() + " " + words->back() : words->front();
    return SetFeature(context, Row(), time == "now" ? Now() : time, kMember);
  };
}

constexpr Command kShow{"show", "Show the device's time", "  quivordctl time show\n",
                        [](CLI::App& /*app*/) -> Run { return Show; }};
constexpr Command kSet{"set", "Set it: system clock and hardware clock",
                       "  quivordctl time set now\n"
                       "  quivordctl time set 2026-07-03T12:00:00\n"
                       "now is this computer's time.",
                       DeclareSet};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kShow, &kSet};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kTimeCommand{
    "time",
    "Show or set the device's clock",
    "  quivordctl time\n"
    "  quivordctl time set now\n",
    Declare,
};

}  // namespace ctl
