#include <atomic>
#include <thread>

#include "commands.h"
#include "number_check.h"
#include "numbers.h"
#include "proto/calc_feature_words.h"
#include "trace/interrupt.h"

namespace ctl {
namespace {

constexpr auto kLook = std::chrono::milliseconds(50);

struct Words {
  std::uint32_t count = 0;  // reports, 0 for no end
};

void Show(const Output& out, const quivord::Report& report) {
  const std::string data = HexText(report.data);
  const std::string text = ZEPH_MCUC::ReportText(report.address, report.data);
  out.Show(AddressText(report.address) + " " + (data.empty() ? "-" : data) +
               (text.empty() ? "" : "  " + text),
           {{"address", report.address},
            {"length", report.data.size()},
            {"data", data},
            {"text", text}});
}

Exit Monitor(Context& context, const Words& words) {
  std::atomic<std::uint32_t> shown{0};
  std::atomic<bool> ended{false};
  quivord::trace::WatchInterrupts();
  const auto client = context.Connect(
      context.options.Task(ZEPH_MCUC::task::kOwd),
      [&](const quivord::Report& report) {
        if (words.count != 0 && shown >= words.count) return;
        Show(context.out, report);
        ++shown;
      },
      [&](const quivord::Error&) { ended = true; });
  if (!client) return context.Fail(client.error());
  while (!quivord::trace::Interrupted() && !ended && (words.count == 0 || shown < words.count)) {
    std::this_thread::sleep_for(kLook);
  }
  if (!ended) return Exit::kDone;
  return context.Fail(Exit::kNoAnswer,
                      "the daemon has ended, or another peer has taken this identifier");
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--count", words->count, "End after so many reports (default: never)")
      ->type_name("N")
      ->check(NumberFrom(1U, UINT32_MAX));
  return [words](Context& context) { return Monitor(context, *words); };
}

}  // namespace

const Command kMonitorCommand{
    "monitor",
    "Print what the daemon reports, until Ctrl-C",
    "  quivordctl monitor\n"
    "  quivordctl --json monitor --count 10\n"
    "  quivordctl --as kye monitor\n",
    Declare,
};

}  // namespace ctl
