// The conformance program: calls every function of the platform that it is linked with and says, a
// line each, what holds of the contract in platform/include/platform. Run it in the daemon's place,
// never beside it. docs/porting.md has more.
#include <platform/system.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "check/report.h"

namespace {

constexpr int kAllHolds = 0, kSomethingBroken = 1, kWrongUse = 2;

struct Subject {
  std::string_view name;  // of the header
  void (*run)(check::Report&, const check::Options&);
};

constexpr Subject kSubjects[] = {
    {"system", check::System},      {"envcfg", check::Environment}, {"flash", check::Flash},
    {"fpga", check::Fpga},          {"recvcard", check::Cards},     {"mbus", check::Bus},
    {"inputsource", check::Inputs}, {"edid", check::Edid},          {"gamma", check::Gamma},
    {"network", check::Network},    {"info", check::Info},
};

constexpr char kUsage[] =
    "quivord-platform-check [--lasting] [--echo TASK] [--card PORT BOARD] [SUBJECT...]\n"
    "Calls every function of the platform and says what holds of its contract.\n"
    "  --lasting          also what can't be put back: clock, clock chip, factory stores,\n"
    "                     network, info store\n"
    "  --echo TASK        a task on the bus that sends back every message, such as 0x7F0001\n"
    "  --card PORT BOARD  a receiving card that answers\n"
    "Subjects: system envcfg flash fpga recvcard mbus inputsource edid gamma network info; all\n"
    "without one. Exit status: 0 all holds, 1 something does not, 2 wrong use.\n";

struct Arguments {
  check::Options options;
  std::vector<std::string_view> subjects;

  bool Wants(std::string_view name) const {
    return subjects.empty() || std::find(subjects.begin(), subjects.end(), name) != subjects.end();
  }
};

// A whole text as a decimal or 0x number up to `most`.
std::optional<std::uint32_t> Number(const char* word, std::uint32_t most) {
  if (word == nullptr) return std::nullopt;
  std::string_view text = word;
  const bool hex = text.starts_with("0x");
  if (hex) text.remove_prefix(2);
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, fault] = std::from_chars(text.data(), end, number, hex ? 16 : 10);
  if (fault != std::errc() || rest != end || number > most) return std::nullopt;
  return number;
}

bool IsSubject(std::string_view word) {
  return std::any_of(std::begin(kSubjects), std::end(kSubjects),
                     [&](const Subject& subject) { return subject.name == word; });
}

// Takes one option, or a subject, and what belongs to it off the front of `words`; false where it
// is none. The last word is a null pointer.
bool Take(char**& words, Arguments& arguments) {
  const std::string_view word = *words++;
  if (word == "--lasting") return arguments.options.lasting = true;
  if (word == "--echo") {
    arguments.options.echo = Number(*words, 0xFFFFFFFF);
    return arguments.options.echo && *words++ != nullptr;
  }
  if (word == "--card") {
    const auto port = Number(*words, 15);
    const auto board = port ? Number(*++words, 0xFFFF) : std::nullopt;
    if (!board) return false;
    arguments.options.card = {static_cast<std::uint8_t>(*port), static_cast<std::uint16_t>(*board)};
    return *words++ != nullptr;
  }
  arguments.subjects.push_back(word);
  return IsSubject(word);
}

// A word that asks for no check.
int Unlike(const char* word) {
  const bool help = std::strcmp(word, "--help") == 0;
  if (help || std::strcmp(word, "--version") == 0) {
    std::fputs(help ? kUsage : "quivord-platform-check " QUIVORD_VERSION "\n", stdout);
    return kAllHolds;
  }
  std::fprintf(stderr, "quivord-platform-check: '%s' is no subject or lacks what belongs to it\n%s",
               word, kUsage);
  return kWrongUse;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  for (char** words = argv + std::min(argc, 1); *words != nullptr;) {
    const char* const word = *words;
    if (!Take(words, arguments)) return Unlike(word);
  }
  platform::Initialize();
  check::Report report;
  for (const Subject& subject : kSubjects) {
    if (!arguments.Wants(subject.name)) continue;
    report.Begin(subject.name);
    subject.run(report, arguments.options);
  }
  report.End();
  return report.broken() == 0 ? kAllHolds : kSomethingBroken;
}
