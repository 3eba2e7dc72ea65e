#include <algorithm>
#include <cstdio>

#include "commands.h"
#include "number_check.h"
#include "register.h"

namespace ctl {
namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

// Answered without data and without touching hardware: what is measured is the road.
constexpr std::uint32_t kPingRegister = 0x00010000;
constexpr std::uint32_t kMostPings = 1'000'000;

struct Words {
  std::uint32_t count = 100;
};

// The value below which `percent` of the sorted `times` lie.
double Percentile(const std::vector<double>& times, std::size_t percent) {
  const std::size_t rank = (times.size() * percent + 99) / 100;
  return times[std::max<std::size_t>(rank, 1) - 1];
}

Exit Ping(Context& context, const Words& words) {
  const auto obstacle = SenderObstacle(context.options);
  if (obstacle.has_value()) return context.Fail(Exit::kWrongUse, *obstacle);
  const auto client = context.Connect();
  if (!client) return context.Fail(client.error());
  std::vector<double> times;
  while (times.size() < words.count) {
    const auto begin = std::chrono::steady_clock::now();
    const auto reply =
        client.value()->Call({.address = kPingRegister, .length = 1}, context.options.timeout);
    if (!reply) return context.Fail(reply.error());
    times.push_back(Microseconds(std::chrono::steady_clock::now() - begin).count());
  }
  std::sort(times.begin(), times.end());
  const double median = Percentile(times, 50);
  const double most = Percentile(times, 99);
  char text[160];
  std::snprintf(text, sizeof text,
                "%zu round trips: minimum %.0f us, median %.0f us, 99 %% below %.0f us",
                times.size(), times.front(), median, most);
  context.out.Show(text, {{"count", times.size()},
                          {"minimum_us", times.front()},
                          {"median_us", median},
                          {"p99_us", most}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--count", words->count, "Number of round trips")
      ->type_name("N")
      ->check(NumberFrom(1U, kMostPings))
      ->capture_default_str();
  return [words](Context& context) { return Ping(context, *words); };
}

}  // namespace

const Command kPingCommand{
    "ping",
    "Measure the time of a request and its reply",
    "  quivordctl ping\n"
    "  quivordctl --board /tmp/board ping --count 1000\n",
    Declare,
};

}  // namespace ctl
