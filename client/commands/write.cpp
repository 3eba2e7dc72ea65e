#include "commands.h"
#include "numbers.h"
#include "register.h"

namespace ctl {
namespace {

struct Words {
  std::string address;
  std::vector<std::string> bytes;
};

Exit Write(Context& context, const Words& words) {
  const auto address = ParseNumber(words.address, UINT32_MAX);
  if (!address.has_value()) return context.Fail(Exit::kWrongUse, kAddressRule);
  auto bytes = ParseBytes(words.bytes);
  if (!bytes.has_value()) {
    return context.Fail(Exit::kWrongUse, "BYTES are hexadecimal: 05 0x1F 0a0b0c");
  }
  const auto place = static_cast<std::uint32_t>(*address);
  const std::size_t length = bytes->size();
  const auto obstacle = WriteObstacle(context.options, place, length);
  if (obstacle.has_value()) return context.Fail(Exit::kRefused, "not sent: " + *obstacle);
  const auto client = context.Connect();
  if (!client) return context.Fail(client.error());
  const Answer answer = WriteRegister(context.options, *client.value(), place, std::move(*bytes));
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(answer.text, {{"address", place}, {"length", length}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("ADDRESS", words->address, "Register address, 0x and hexadecimal digits")
      ->required();
  app.add_option("BYTES", words->bytes, "Bytes in hexadecimal, blanks between them or not")
      ->required();
  return [words](Context& context) { return Write(context, *words); };
}

}  // namespace

const Command kWriteCommand{
    "write",
    "Write registers",
    "  quivordctl write 0xF0000100 11 22 33 44\n"
    "  quivordctl write 0xF0000100 11223344\n"
    "  quivordctl --device receiver --port all --card all write 0x02000001 80\n",
    Declare,
};

}  // namespace ctl
