// The device's identity: serial number, model, MAC address.
#include <algorithm>
#include <cctype>

#include "commands.h"
#include "device.h"
#include "numbers.h"
#include "proto/calc_identity.h"
#include "subcommands.h"
#include "table.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kIdentity = 0;  // the register of byte 0 of the basic area
constexpr char kModelSource[] =
    "from the environment's key device_modelid, else as fixed at each start; a write doesn't "
    "outlive a start";

constexpr char kNoMac[] = "no record of one; the boot loader may hold it all the same";

struct Words {
  std::string serial;
  std::string mac;
};

Bytes Part(const Bytes& area, std::uint32_t begin, std::size_t length) {
  return {area.begin() + begin, area.begin() + static_cast<std::ptrdiff_t>(begin + length)};
}

std::string SerialOf(const Bytes& area) {
  return HexText(Part(area, basicinfo::kSerial, kSerialBytes));
}

// Low byte first, so the digits of the key are those of the number.
std::string ModelOf(const Bytes& area) {
  return HexText({area[basicinfo::kModel + 1], area[basicinfo::kModel]});
}

std::string MacText(std::span<const std::uint8_t> address) {
  std::string text;
  for (const std::uint8_t byte : address) text += (text.empty() ? "" : ":") + HexText({byte});
  return text;
}

std::string MacOf(const Bytes& area) {
  const Bytes address = Part(area, basicinfo::kMac + 1, basicinfo::kMacBytes - 1);
  const bool unset = std::all_of(address.begin(), address.end(), [](int b) { return b == 0xFF; });
  return unset ? "" : MacText(address);
}

Exit Show(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer area = device->ReadBytes(kIdentity, basicinfo::kSize);
  if (!area.done()) return context.Fail(area);
  const std::string mac = MacOf(area.data);
  const std::string serial = SerialOf(area.data);
  const std::string model = ModelOf(area.data);
  const bool preset = serial == SerialText(kDefaultSerial);
  context.out.Show(Columns({{"serial number", serial + (preset ? " (the preset one)" : "")},
                            {"model", model + " (" + kModelSource + ")"},
                            {"MAC address", mac.empty() ? kNoMac : mac}}),
                   {{"serial", serial},
                    {"serial_preset", preset},
                    {"model", model},
                    {"model_source", kModelSource},
                    {"mac", mac.empty() ? nlohmann::json(nullptr) : nlohmann::json(mac)}});
  return Exit::kDone;
}

// The bytes of a serial number; empty where `word` is none that a device keeps.
Bytes ParseSerial(const std::string& word) {
  const bool digits =
      word.size() == kSerialDigits &&
      std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
  return digits && !IsBlankSerial(word) ? ParseBytes({word}).value_or(Bytes{}) : Bytes{};
}

// The six bytes of an address that a device may have: not 0, and no group's.
Bytes ParseMac(const std::string& word) {
  constexpr std::size_t kText = 17;
  std::string digits;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const bool between = i % 3 == 2;
    if (between && word[i] != ':' && word[i] != '-') return {};
    if (!between && std::isxdigit(static_cast<unsigned char>(word[i])) == 0) return {};
    if (!between) digits += word[i];
  }
  if (word.size() != kText) return {};
  const Bytes bytes = ParseBytes({digits}).value_or(Bytes{});
  const bool zero = std::all_of(bytes.begin(), bytes.end(), [](int b) { return b == 0; });
  return zero || (bytes[0] & 1) != 0 ? Bytes{} : bytes;
}

// Bytes of the area, and the stretch that a write of them has to cover.
struct Setting {
  std::uint32_t begin;
  Bytes bytes;
  std::uint32_t written;
  std::size_t writtenLength;
};

// Puts the bytes between those that stand there, and waits until they show.
Answer Set(Device& device, const Setting& setting) {
  const Bytes& bytes = setting.bytes;
  Answer answer = device.ReadBytes(kIdentity, basicinfo::kSize);
  if (!answer.done()) return answer;
  std::copy(bytes.begin(), bytes.end(), answer.data.begin() + setting.begin);
  answer =
      device.Write({.address = kIdentity + setting.written,
                    .data = Part(answer.data, setting.written, setting.writtenLength),
                    .shown_at = kIdentity + setting.begin,
                    .shown_length = static_cast<std::uint16_t>(bytes.size()),
                    .shows = [&bytes](auto shown) { return std::ranges::equal(shown, bytes); }});
  if (!answer.done() && !answer.data.empty()) {
    answer.text = "written, but after " + std::to_string(kSettleTime.count()) +
                  " seconds it reads " + HexText(answer.data);
  }
  return answer;
}

// What the words ask for; a wrong one is said.
struct Wanted {
  Bytes serial;
  Bytes mac;
  std::string fault;
};

Wanted Understood(const Words& words) {
  Wanted wanted{ParseSerial(words.serial), ParseMac(words.mac), ""};
  if (words.serial.empty() && words.mac.empty()) {
    wanted.fault = "give --serial or --mac";
  } else if (!words.serial.empty() && wanted.serial.empty()) {
    wanted.fault = "--serial is 16 hexadecimal digits, not all of them 0";
  } else if (!words.mac.empty() && wanted.mac.empty()) {
    wanted.fault =
        "--mac is six pairs of hexadecimal digits as 02:11:22:33:44:55, not all 0, the first one "
        "even";
  }
  return wanted;
}

Exit Change(const Context& context, const Words& words) {
  const Wanted wanted = Understood(words);
  if (!wanted.fault.empty()) return context.Fail(Exit::kWrongUse, wanted.fault);
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  Answer answer;
  std::vector<std::string> lines;
  nlohmann::json object;
  if (!wanted.serial.empty()) {
    // The device takes a serial number out of a write of the whole area, and nothing else of it.
    answer = Set(*device, {basicinfo::kSerial, wanted.serial, 0, basicinfo::kSize});
    object["serial"] = HexText(wanted.serial);
    lines.push_back("serial number is " + HexText(wanted.serial));
  }
  if (!wanted.mac.empty() && answer.done()) {
    // The byte in front of the address stays.
    answer = Set(*device, {basicinfo::kMac + 1, wanted.mac, basicinfo::kMac, basicinfo::kMacBytes});
    object["mac"] = MacText(wanted.mac);
    lines.push_back("MAC address is " + MacText(wanted.mac) + " from the next boot on");
  }
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(lines.front() + (lines.size() > 1 ? "\n" + lines.back() : ""), object);
  return Exit::kDone;
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--serial", words->serial, "Serial number, 16 hexadecimal digits")
      ->type_name("SERIAL");
  app.add_option("--mac", words->mac, "MAC address, as 02:11:22:33:44:55")->type_name("MAC");
  return [words](Context& context) { return Change(context, *words); };
}

constexpr Command kShow{"show", "Show serial number, model and MAC address",
                        "  quivordctl identity show\n",
                        [](CLI::App& /*app*/) -> Run { return Show; }};
constexpr Command kSet{
    "set", "Set serial number, MAC address or both",
    "  quivordctl identity set --serial 13030d0000000042\n"
    "  quivordctl identity set --mac 02:11:22:33:44:55\n"
    "The model can't be set here: it is the environment's key device_modelid, and what a client\n"
    "writes into its place doesn't outlive a start.\n",
    DeclareSet};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kShow, &kSet};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kIdentityCommand{
    "identity",
    "Show serial number, model and MAC address, or set them",
    "  quivordctl identity\n"
    "  quivordctl identity set --serial 13030d0000000042\n",
    Declare,
};

}  // namespace ctl
