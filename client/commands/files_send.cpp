#include <algorithm>
#include <thread>

#include "commands/files_commands.h"
#include "counted.h"
#include "numbers.h"

namespace ctl {
namespace {

namespace cardfiles = quivord::cardfiles;
using quivord::Counted;
namespace space = ZEPH_MCUC::cardfiles;
using cardfiles::Entry;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr auto kBeat = milliseconds(100);

// All bytes of a file: as many as the header says, else up to the file behind it.
Answer ReadFile(Device& device, const std::vector<Entry>& entries, std::size_t number) {
  const Entry& file = entries[number];
  std::uint32_t length = file.length;
  if (length == 0) {
    std::uint32_t end = space::kImage;
    for (const Entry& other : entries) {
      if (other.offset > file.offset) end = std::min(end, other.offset);
    }
    length = end - std::min(file.offset, end);
  }
  if (length < space::kFirstPack) return {Exit::kRefused, "the file lies outside the image", {}};
  return ReadImage(device, file.offset, length);
}

// Says how far the sending should be. The device isn't asked meanwhile: who asks it for anything
// that goes through its queue makes all others wait.
void WaitOut(const Context& context, milliseconds pauses) {
  const auto begin = steady_clock::now();
  for (auto passed = milliseconds(0); passed < pauses;) {
    std::this_thread::sleep_for(std::min(kBeat, pauses - passed));
    passed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
    context.out.Progress("sent, about", static_cast<std::size_t>(passed.count()),
                         static_cast<std::size_t>(pauses.count()));
  }
}

// The number by itself, or that of a file of this name.
std::optional<std::size_t> Find(const std::vector<Entry>& entries, const std::string& word) {
  const auto number = ParseNumber(word, space::kMostFiles - 1);
  if (number.has_value()) {
    return *number < entries.size() ? std::optional<std::size_t>(*number) : std::nullopt;
  }
  const auto file =
      std::ranges::find_if(entries, [&](const Entry& entry) { return entry.name == word; });
  if (file == entries.end()) return std::nullopt;
  return static_cast<std::size_t>(file - entries.begin());
}

Answer SendFile(const Context& context, Device& device, std::size_t number, milliseconds pauses) {
  const Answer answer = device.Send(space::kSend + static_cast<std::uint32_t>(number), {1});
  if (!answer.done()) return answer;
  WaitOut(context, pauses);
  return device.AwaitWork(pauses + kSettleTime);
}

Exit Send(const Context& context, const std::string& word) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Listed listed = ListFiles(*device);
  if (!listed.answer.done()) return context.Fail(listed.answer);
  const auto number = Find(listed.entries, word);
  if (!number.has_value()) {
    return context.Fail(Exit::kRefused, "not sent: the device keeps no file " + word +
                                            "; 'quivordctl files list' shows them");
  }
  const Answer bytes = ReadFile(*device, listed.entries, *number);
  if (!bytes.done()) return context.Fail(bytes);
  const auto verdict = cardfiles::Check(bytes.data);
  const std::string name =
      "file " + std::to_string(*number) + ", " + NameOf(listed.entries[*number]);
  if (!verdict.fault.empty()) {
    return context.Fail(Exit::kRefused, "not sent: " + name + ", " + verdict.fault);
  }
  const milliseconds pauses(verdict.pauses_ms / context.options.speed);
  context.out.Step(name + ": " + Counted(verdict.packs, "pack") + ", about " +
                   std::to_string((pauses.count() + 999) / 1000) + " s");
  const Answer answer = SendFile(context, *device, *number, pauses);
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(
      "sent to all cards: " + Counted(verdict.packs, "pack") + " of " + name,
      {{"number", *number}, {"name", listed.entries[*number].name}, {"packs", verdict.packs}});
  return Exit::kDone;
}

}  // namespace

const Command kFilesSend{
    "send",
    "Let the device send one of its files to all receiving cards, and wait until it has",
    "  quivordctl files send 1\n"
    "  quivordctl files send night.rcfgx\n",
    [](CLI::App& app) -> Run {
      const auto word = std::make_shared<std::string>();
      app.add_option("FILE", *word, "Number or name, as list shows them")->required();
      return [word](Context& context) { return Send(context, *word); };
    },
};

}  // namespace ctl
