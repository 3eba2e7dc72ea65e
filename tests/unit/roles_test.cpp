// Master and backup: the role of the device and the roles of its ports.
#include <gtest/gtest.h>

#include <sstream>

#include "support/device.h"
#include "support/trace.h"

namespace {

using device::Global;

constexpr std::uint32_t kGroups[] = {0x18, 0x98, 0x100, 0x104};  // four ports each

// What spreading a role byte over the ports writes.
std::string Spread(const std::string& value) {
  std::ostringstream lines;
  for (std::uint32_t i = 0; i < 4; ++i) {
    for (const std::uint32_t group : kGroups) {
      lines << "fpga W 0x" << std::hex << group + i << " " << value << "\n";
    }
  }
  const std::string four = value + value + value + value;
  lines << "flash W 0xa3b118 " << four << "\nflash W 0xa3b198 " << four << "\nflash W 0xa3b200 "
        << four << four << "\n";
  return lines.str();
}

TEST(Roles, SpreadOverAllPortsInImageFpgaAndFlash) {
  device::Begin("fpga flash");
  for (const auto& [state, value] : {std::pair{1, "80"}, {0, "00"}, {0xA5, "80"}}) {
    support::Trace trace;
    Global().SendMasterOrBackup(static_cast<std::uint8_t>(state));
    EXPECT_EQ(trace.Take(), Spread(value));
    for (const std::uint32_t group : kGroups) {
      EXPECT_EQ(device::Image(group, 4), std::string(value) + value + value + value);
    }
  }
}

TEST(Roles, WriteOfTheDeviceRoleSetsAllThatHangsOnIt) {
  struct Case {
    const char* value;
    const char* slave;
    const char* port;
  };
  for (const Case& c : {Case{"a5", "01", "80"}, {"5a", "00", "00"}, {"00", "00", "00"}}) {
    device::Begin("fpga flash");
    device::PutImage(0x1EC, "80008000");
    device::PutFlash(0xC95000, "11111111");
    Global().NormalBackupStatus = 1;
    support::Trace trace;
    device::WriteFeature(0x9D, c.value);
    EXPECT_EQ(trace.Take(), std::string("fpga W 0x9d ") + c.value + "\nflash W 0xa60010 " +
                                c.slave + "\n" + Spread(c.port) + "flash W 0xa3b19d " + c.value +
                                "\nflash W 0xc95000 00000000\nflash W 0xa3b100 x512\n");
    EXPECT_EQ(Global().PbufMorSMode, c.slave[1] - '0');
    EXPECT_EQ(Global().NormalBackupStatus, 0);
    device::WriteFeature(0x9D, "a500");
    EXPECT_EQ(trace.Take(), "fpga W 0x9d a500\nflash W 0xa3b100 x512\n") << "more than the byte";
  }
}

TEST(Roles, PortUpdatesWriteTheirPlaceAndNothingElse) {
  using ZEPH_MCUC::Data_Global;
  using Update = void (Data_Global::*)(std::uint8_t port, std::uint16_t value);
  constexpr Update kWords[] = {&Data_Global::PortWidthUpdate, &Data_Global::PortHeightUpdate,
                               &Data_Global::PortOffsetXUpdate, &Data_Global::PortOffsetYUpdate};
  constexpr std::uint32_t kWindows[] = {0x51, 0xB1, 0x131, 0x155};  // of four ports each
  device::Begin("fpga flash");
  support::Trace trace;
  for (std::uint8_t port = 0; port < 17; ++port) {
    for (std::uint32_t field = 0; field <= std::size(kWords); ++field) {
      std::array<std::uint8_t, 512> expected{};
      Global().SendParameterReg.write(0, expected);
      if (field == std::size(kWords)) {
        Global().PortMorSUpdate(port, 0x34);
        if (port < 16) expected[kGroups[port / 4] + port % 4] = 0x34;
      } else {
        (Global().*kWords[field])(port, 0x1234);
        if (port < (field == 3 ? 10 : 16)) {
          const std::uint32_t place = kWindows[port / 4] + 9 * (port % 4) + 2 * field;
          expected[place] = 0x34;
          expected[place + 1] = 0x12;
        }
      }
      EXPECT_EQ(device::Image(0, 512), device::Hex(expected)) << int{port} << " " << field;
    }
  }
  EXPECT_EQ(trace.Take(), "");
}

}  // namespace
