#include "commands.h"
#include "numbers.h"
#include "register.h"

namespace ctl {
namespace {

struct Words {
  std::string address;
  std::string length;
};

Exit Read(Context& context, const Words& words) {
  const auto address = ParseNumber(words.address, UINT32_MAX);
  if (!address.has_value()) return context.Fail(Exit::kWrongUse, kAddressRule);
  const auto length = ParseNumber(words.length, ZEPH_MCUC::frame::kMostData);
  if (!length.has_value()) {
    return context.Fail(Exit::kWrongUse, "LENGTH is a number of bytes from 0 to 65516");
  }
  const auto obstacle = ReadObstacle(context.options);
  if (obstacle.has_value()) return context.Fail(Exit::kWrongUse, *obstacle);
  const auto client = context.Connect();
  if (!client) return context.Fail(client.error());
  const auto place = static_cast<std::uint32_t>(*address);
  const Answer answer =
      ReadRegister(context.options, *client.value(), place, static_cast<std::uint16_t>(*length));
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(
      answer.data.empty() ? answer.text : HexDump(place, answer.data),
      {{"address", place}, {"length", answer.data.size()}, {"data", HexText(answer.data)}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("ADDRESS", words->address, "Register address, 0x and hexadecimal digits")
      ->required();
  app.add_option("LENGTH", words->length, "Number of bytes")->required();
  return [words](Context& context) { return Read(context, *words); };
}

}  // namespace

const Command kReadCommand{
    "read",
    "Read registers",
    "  quivordctl read 0xF0000100 4\n"
    "  quivordctl --device receiver --port 0 --card 2 read 0x02000017 4\n"
    "  quivordctl --json read 0xF0000000 256\n",
    Declare,
};

}  // namespace ctl
