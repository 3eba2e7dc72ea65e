#include "options.h"

#include <unistd.h>

#include <cmath>

#include "access/place.h"
#include "number_check.h"
#include "numbers.h"
#include "option_words.h"

namespace ctl {
namespace {

namespace bus = ZEPH_MCUC;
using quivord::access::kDevices;
using quivord::access::kTasks;
using quivord::access::Look;

constexpr std::uint32_t kUnnamedTasks = 0x7F0000;
constexpr double kLeastTimeout_s = 0.001;
constexpr double kMostTimeout_s = 3600;

template <class Value, std::size_t N>
std::vector<std::string> WordsOf(const std::array<quivord::access::Word<Value>, N>& words) {
  std::vector<std::string> all;
  for (const auto& candidate : words) all.emplace_back(candidate.word);
  return all;
}

template <class Value>
Value Want(std::optional<Value> value, const char* option, const char* reason) {
  if (!value.has_value()) throw CLI::ValidationError(option, reason);
  return *value;
}

// A place behind the ports: a number, or `all`.
std::uint16_t Place(const std::string& word, std::uint16_t most, std::uint16_t all,
                    const char* option, const char* reason) {
  if (word.empty()) return 0;
  if (word == "all") return all;
  return static_cast<std::uint16_t>(Want(ParseNumber(word, most), option, reason));
}

std::uint32_t Identifier(const Options& options, const std::string& word) {
  if (const auto task = Look(kTasks, word)) return options.Task(*task);
  const auto number =
      word.starts_with("0x") ? ParseNumber(word, UINT32_MAX) : std::optional<std::uint64_t>();
  return static_cast<std::uint32_t>(Want(
      number, "--as", "is owd, kye, moirad or a task identifier as 0x and hexadecimal digits"));
}

}  // namespace

std::uint32_t Options::Task(std::uint32_t number) const { return bus::TaskId(slot, number); }

std::uint32_t Options::OwnTask() const {
  return Task(kUnnamedTasks + (static_cast<std::uint32_t>(getpid()) & 0xFFFF));
}

void Declare(CLI::App& app, OptionWords& words) {
  app.add_option("--board", words.board, "Board folder (default: the one the daemon would take)")
      ->type_name("DIR");
  app.add_flag("--all", words.all, "Ask every board that lies in the board folder, all at once");
  auto* const as =
      app.add_option("--as", words.as, "Register on the bus as owd, kye, moirad or task 0xID")
          ->type_name("TASK");
  Offer(as, WordsOf(kTasks));
  auto* const device =
      app.add_option("--device", words.device,
                     "Whose registers: sender, receiver, multi, distribute or launcher")
          ->type_name("KIND")
          ->capture_default_str();
  Offer(device, WordsOf(kDevices));
  app.add_option("--port", words.port, "Output port of the device, 0 to 15 or all (default: 0)")
      ->type_name("N");
  app.add_option("--card", words.card, "Place of the device on its port, 0 up or all (default: 0)")
      ->type_name("N");
  app.add_option("--timeout", words.timeout_s, "How long to wait for an answer")
      ->type_name("SECONDS")
      ->check(NumberFrom(kLeastTimeout_s, kMostTimeout_s))
      ->capture_default_str();
  app.add_flag("--json", words.json, "Print JSON, one object a line");
}

Options Understand(const OptionWords& words) {
  Options options;
  const quivord::access::Place place = quivord::access::FindPlace(words.board);
  options.board = place.board;
  options.slot = place.slot;
  options.speed = place.speed;
  if (!words.as.empty()) options.as = Identifier(options, words.as);
  options.target.device = Want(Look(kDevices, words.device), "--device",
                               "is sender, receiver, multi, distribute or launcher");
  options.target.port = static_cast<std::uint8_t>(
      Place(words.port, 15, kAllPorts, "--port", "is a port from 0 to 15, or all"));
  options.target.board =
      Place(words.card, 0xFFFE, kAllCards, "--card", "is a place from 0 to 65534, or all");
  options.portGiven = !words.port.empty();
  options.cardGiven = !words.card.empty();
  options.timeout =
      std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(words.timeout_s * 1000)));
  options.json = words.json;
  return options;
}

}  // namespace ctl
