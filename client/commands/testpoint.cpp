#include "commands.h"
#include "device.h"
#include "numbers.h"

namespace ctl {
namespace {

constexpr std::uint32_t kTestPoint = 0x01000003;
constexpr std::uint32_t kCells = 0xF0000000;     // the register of FPGA cell 0
constexpr std::uint32_t kLastCell = 0x01FFFFFF;  // the last one that can be read back

struct Words {
  std::string address;
  std::string value;
};

// The address goes out high byte first.
std::vector<std::uint8_t> Payload(std::uint32_t address, std::uint8_t value) {
  return {static_cast<std::uint8_t>(address >> 24), static_cast<std::uint8_t>(address >> 16),
          static_cast<std::uint8_t>(address >> 8), static_cast<std::uint8_t>(address), value};
}

Exit TestPoint(const Context& context, const Words& words) {
  const auto address = ParseNumber(words.address, kLastCell);
  const auto value = ParseNumber(words.value, 0xFF);
  if (!address.has_value()) return context.Fail(Exit::kWrongUse, "CELL is 0 to 0x1FFFFFF");
  if (!value.has_value())
    return context.Fail(Exit::kWrongUse, "VALUE is 0 to 255, or 0x00 to 0xFF");
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const auto cell = static_cast<std::uint32_t>(*address);
  const auto byte = static_cast<std::uint8_t>(*value);
  const Answer now = device->Write({.address = kTestPoint,
                                    .data = Payload(cell, byte),
                                    .shown_at = kCells + cell,
                                    .shown_length = 1,
                                    .shows = [byte](auto shown) { return shown[0] == byte; }});
  if (!now.done() && now.data.empty()) return context.Fail(now);
  const std::string shown = "cell " + AddressText(cell) + " reads " + HexText(now.data);
  if (!now.done()) {
    return context.Fail(now.exit, "written, but after " + std::to_string(kSettleTime.count()) +
                                      " seconds " + shown + "; status cells take no write");
  }
  context.out.Show(shown, {{"cell", cell}, {"value", now.data[0]}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("CELL", words->address, "Bus address of the cell, 0 to 0x1FFFFFF")->required();
  app.add_option("VALUE", words->value, "Byte, 0 to 255")->required();
  return [words](Context& context) { return TestPoint(context, *words); };
}

}  // namespace

const Command kTestPointCommand{
    "testpoint",
    "Write one FPGA cell by the test point command, and read it back",
    "  quivordctl testpoint 0x100051 1\n",
    Declare,
};

}  // namespace ctl
