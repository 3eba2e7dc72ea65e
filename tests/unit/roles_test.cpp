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

}  // namespace
