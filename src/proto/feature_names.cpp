#include "proto/feature_names.h"

#include <array>
#include <utility>

#include "proto/calc_feature.h"

namespace ZEPH_MCUC {
namespace {

using namespace feature;
using enum FeatureForm;
using enum FeatureOwner;
using enum FeaturePlace;
using Choice = FeatureChoice;
using Register = FeatureRegister;

constexpr uint32_t kMostByte = 0xFF;
constexpr uint32_t kMostWord = 0xFFFF;
constexpr uint32_t kMostPixels = 3840;      // what a save takes for valid
constexpr uint32_t kMostPowerOnTime = 254;  // the same
constexpr uint32_t kLeastOvertime_s = 2;    // what a start takes from the stored image
constexpr uint32_t kMostOvertime_s = 0x77;

constexpr Choice kRoles[] = {{0, "master"},
                             {kRoleSlave, "slave"},
                             {kRoleBackup, "backup"},
                             {kNoRole, "none", Choice::kNever}};
constexpr Choice kOutputs[] = {{0, "closed"}, {kOutputOpen, "open"}};
constexpr Choice kBypasses[] = {{0, "off"}, {1, "on", kBypassOn}, {2, "service", Choice::kNever}};
constexpr Choice kSpeeds[] = {{0, "off"}, {1, "on"}};
constexpr Choice kTests[] = {{0, "end"}, {1, "start"}};
constexpr Choice kHdr[] = {{0x58, "loaded"}, {0xFF, "none"}};
constexpr Choice kFiberLinks[] = {{0xA0, "none"}};
constexpr Choice kSources[] = {{0, "none"}, {1, "waiting"}};
constexpr Choice kPortRoles[] = {{0, "master"}, {kPortBackup, "backup"}};

constexpr FeaturePortBits Links(uint8_t firstPort) { return {firstPort, 4, 1}; }
constexpr FeaturePortBits States(uint8_t firstPort) { return {firstPort, 4, 2}; }
constexpr FeaturePortBits kBelowFiber = {0, 8, 1};

// A number of pixels that clients write.
constexpr Register Pixels(FeatureName name, uint32_t offset, const char* meaning,
                          const char* effect, uint32_t most = kMostPixels) {
  return {.name = name,
          .offset = offset,
          .width = 2,
          .most = most,
          .unit = "px",
          .meaning = meaning,
          .effect = effect};
}

// A byte without a unit that clients write.
constexpr Register Byte(FeatureName name, uint32_t offset, const char* meaning,
                        const char* effect = "") {
  return {.name = name, .offset = offset, .most = kMostByte, .meaning = meaning, .effect = effect};
}

// A byte with named values that clients write.
constexpr Register Chosen(FeatureName name, uint32_t offset, std::span<const Choice> choices,
                          const char* meaning, const char* effect = "") {
  return {.name = name,
          .offset = offset,
          .form = kChoice,
          .choices = choices,
          .meaning = meaning,
          .effect = effect};
}

constexpr Register PortStatus(FeatureName name, uint32_t offset, uint32_t width,
                              FeaturePortBits bits, const char* meaning) {
  return {.name = name,
          .offset = offset,
          .width = width,
          .form = kPortBits,
          .owner = kHardware,
          .place = kCell,
          .portBits = bits,
          .meaning = meaning};
}

constexpr Register RawCells(FeatureName name, uint32_t offset, uint32_t width, FeatureOwner owner,
                            const char* meaning) {
  return {.name = name,
          .offset = offset,
          .width = width,
          .form = kBytes,
          .owner = owner,
          .place = kCell,
          .meaning = meaning};
}

constexpr Register ChosenCell(FeatureName name, uint32_t offset, FeatureOwner owner,
                              std::span<const Choice> choices, const char* meaning) {
  Register made = Chosen(name, offset, choices, meaning);
  made.owner = owner;
  made.place = kCell;
  return made;
}

constexpr Register SourceSize(FeatureName name, uint32_t offset, const char* meaning) {
  Register made = Pixels(name, offset, meaning, "", kMostWord);
  made.owner = kHardware;
  made.place = kCell;
  return made;
}

constexpr Register kDevice[] = {
    {.name = "time",
     .offset = kClock,
     .width = 6,
     .form = kTime,
     .meaning = "the device's clock",
     .effect = "system clock and hardware clock are set"},
    Chosen("role", kRole, kRoles,
           "what the device is to others; backup is a master that counts as backup from the next "
           "start on, and a wall's layout leaves none",
           "all ports take the role; the slave mark of the store is cleared"),
    // After a restore the daemon's copy says open where the FPGA is closed: the cell is asked.
    ChosenCell("output", kOutput, kClient, kOutputs, "FPGA output; a start closes it"),
    {.name = "power-on-time",
     .offset = kPowerOnTime,
     .most = kMostPowerOnTime,
     .meaning = "power-on time of the receiving cards",
     .effect = "35 less, 0 at least, becomes the key boot_screen of the environment store"},
    {.name = "uart-overtime",
     .offset = kUartOvertime,
     .least = kLeastOvertime_s,
     .most = kMostOvertime_s,
     .unit = "s",
     .meaning = "how long the serial link may be silent",
     .effect = "is not written to the FPGA; the brightness control takes it"},
    {.name = "input-mode",
     .offset = kInputMode,
     .form = kBytes,
     .meaning = "input mode; a start leaves 0x20, 0x21 and 0x10, and makes 0x20 of others"},
    Byte("low-delay", kLowDelay, "low delay flag",
         "refused in bypass unless genlock and 3D are off; passed on to the service daemon"),
    Byte("service-note", kMirrored, "a byte for the service daemon",
         "passed on to the service daemon"),
    Byte("correction", kCorrection, "correction byte", "passed on to the service daemon"),
    Chosen("high-speed", kHighSpeed, kSpeeds, "high-speed correction",
           "shortens the pause between packets of corrections"),
    Byte("edid-flag", kEdidFlag, "EDID flag"),
    Byte("interface-4k", k4K, "4K interface flag", "goes to the device info store, and is stored"),
    Byte("optical-mode", kOptPortMode, "mode of the optical ports", "is stored at once"),
    ChosenCell("hdr", kHdrSwitch, kDaemon, kHdr, "HDR table"),
    Chosen("test-mode", kTestFlag, kTests, "test of the FPGA",
           "the same byte is the high one of screen-height: write that again behind it"),
    Byte("report-afresh", kReportAfresh, "asks for all status reports",
         "the service daemon gets every status once more"),
    Byte("sync", kSync, "asks for the store to be written through", "runs sync"),
    RawCells("reset-mark", kResetMark, 1, kDaemon, "cleared when a factory reset reboots"),
};

constexpr const char* kRecomputes = "the screen size is worked out again";

constexpr Register kScreen[] = {
    Pixels("real-width", kRealWidth, "width of the input picture",
           "the screen size is cleared and worked out again"),
    Pixels("real-height", kRealHeight, "height of the input picture", kRecomputes),
    Pixels("set-width", kSetWidth, "width of the input picture as set by a client", kRecomputes),
    Pixels("offset-x", kOffsetX, "where the screen begins in the picture",
           "in bypass: the service daemon gets the offsets, the distances become 0"),
    Pixels("offset-y", kOffsetY, "where the screen begins in the picture",
           "in bypass: the service daemon gets the offsets, the distances become 0"),
    Pixels("screen-width", kScreenWidth, "width of the screen",
           "the screen size is stored, and the change counted", kMostWord),
    Pixels("screen-height", kScreenHeight, "height of the screen",
           "the screen size is stored, and the change counted", kMostWord),
    Chosen("bypass", kBypass, kBypasses,
           "switched on by offset-x and offset-y, or by the service daemon's offsets",
           "the screen shrinks by the offsets, the offsets become 0"),
    {.name = "bypass-offset",
     .offset = kBypassX,
     .width = 8,
     .form = kOffsets,
     .unit = "px",
     .meaning = "offsets x,y as the service daemon sees and sets them",
     .effect = "in bypass: offset-x, offset-y, screen size and distances follow"},
    RawCells("distance-x", kDistanceX, 2, kDaemon,
             "direction of the offset: 0xff 0xff for a positive bypass offset"),
    RawCells("distance-y", kDistanceY, 2, kDaemon,
             "direction of the offset: 0xff 0xff for a positive bypass offset"),
};

constexpr Register kStatus[] = {
    PortStatus("link-0-3", kNetLink, 1, Links(0), "ports with a copper link"),
    PortStatus("link-4-7", kNetLink4, 1, Links(4), "ports with a copper link"),
    PortStatus("link-8-15", kNetLink8, 2, Links(8), "ports with a copper link"),
    PortStatus("fiber-1-links", kBelowFiber1, 2, kBelowFiber, "ports with a link below fiber 1"),
    PortStatus("fiber-2-links", kBelowFiber2, 2, kBelowFiber, "ports with a link below fiber 2"),
    PortStatus("redundancy-0-3", kRedundancy, 1, States(0), "ports whose redundancy state is set"),
    PortStatus("redundancy-4-7", kRedundancy4, 1, States(4), "ports whose redundancy state is set"),
    PortStatus("redundancy-8-15", kRedundancy8, 2, States(8),
               "ports whose redundancy state is set"),
    ChosenCell("fiber-link", kFiberLink, kHardware, kFiberLinks, "link of the fibers"),
    RawCells("fiber-copy", kOptPortMode, 1, kHardware, "redundancy and copy of the fibers"),
    RawCells("fiber-to-net", kFiberToNet, 2, kHardware, "fiber to network"),
    RawCells("fiber-redundancy", kFiberRedundancy, 6, kHardware,
             "redundancy of the fibers, a byte a group of ports"),
    ChosenCell("source", kSourceWaiting, kHardware, kSources, "a new source size"),
    SourceSize("source-width", kSourceSize, "width of the source"),
    SourceSize("source-height", kSourceSize + 2, "height of the source"),
};

// A value that each port has.
struct PortValue {
  const char* suffix;
  uint16_t PortPlace::*offset;
  const char* meaning;
};
constexpr PortValue kPortValues[] = {
    {"width", &PortPlace::width, "width of the port's window"},
    {"height", &PortPlace::height, "height of the port's window"},
    {"offset-x", &PortPlace::offsetX, "where the port's window begins in the screen"},
    {"offset-y", &PortPlace::offsetY, "where the port's window begins in the screen"},
};

constexpr std::size_t kPorts = kPortPlaces.size();
constexpr std::size_t kValuesOfPort = 1 + std::size(kPortValues);

// "port-12-width" for port 12 and "width".
constexpr FeatureName PortName(std::size_t port, std::string_view suffix) {
  FeatureName name("port-");
  std::size_t at = 5;
  if (port >= 10) name.text[at++] = static_cast<char>('0' + port / 10);
  name.text[at++] = static_cast<char>('0' + port % 10);
  name.text[at++] = '-';
  for (const char letter : suffix) name.text[at++] = letter;
  return name;
}

constexpr Register PortRegister(std::size_t port, std::size_t value) {
  const PortPlace& place = kPortPlaces[port];
  if (value == 0) {
    return Chosen(PortName(port, "role"), place.role, kPortRoles, "role of the port");
  }
  const PortValue& row = kPortValues[value - 1];
  return Pixels(PortName(port, row.suffix), place.*row.offset, row.meaning, "");
}

template <std::size_t... Index>
constexpr std::array<Register, sizeof...(Index)> PortRegisters(std::index_sequence<Index...>) {
  return {PortRegister(Index / kValuesOfPort, Index % kValuesOfPort)...};
}

constexpr auto kOfPorts = PortRegisters(std::make_index_sequence<kPorts * kValuesOfPort>());

constexpr FeatureGroup kGroups[] = {
    {"Device", kDevice}, {"Screen", kScreen}, {"Status", kStatus}, {"Ports", kOfPorts}};

}  // namespace

std::span<const FeatureGroup> FeatureGroups() { return kGroups; }

const FeatureRegister* FindFeature(std::string_view name) {
  for (const FeatureGroup& group : kGroups) {
    for (const FeatureRegister& row : group.registers) {
      if (row.name == name) return &row;
    }
  }
  return nullptr;
}

const FeatureRegister* FindFeatureAt(FeaturePlace place, uint32_t offset) {
  const FeatureRegister* best = nullptr;
  for (const FeatureGroup& group : kGroups) {
    for (const FeatureRegister& row : group.registers) {
      if (row.place != place || offset < row.offset || offset - row.offset >= row.width) continue;
      if (row.offset == offset) return &row;
      if (best == nullptr || row.width < best->width) best = &row;
    }
  }
  return best;
}

const FeatureRegister* FindPortFeature(int port, std::string_view suffix) {
  constexpr std::size_t kLongestSuffix = FeatureName::kMost - std::string_view("port-15-").size();
  if (port < 0 || port >= static_cast<int>(kPorts) || suffix.size() > kLongestSuffix)
    return nullptr;
  return FindFeature(PortName(static_cast<std::size_t>(port), suffix));
}

}  // namespace ZEPH_MCUC
