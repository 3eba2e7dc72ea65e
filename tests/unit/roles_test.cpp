// Master and backup: the role of the device and the roles of its ports.
#include <gtest/gtest.h>

#include <sstream>

#include "board/faults.h"
#include "support/device.h"
#include "support/trace.h"

namespace {

using board::Fault;
using board::SetFaultCount;
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
  }
}

TEST(Roles, LongerWriteOverTheRoleIsPlain) {
  device::Begin("fpga flash");
  device::PutImage(0x1EC, "80008000");
  Global().NormalBackupStatus = 1;
  support::Trace trace;
  device::WriteFeature(0x9D, "a500");
  EXPECT_EQ(trace.Take(), "fpga W 0x9d a500\nflash W 0xa3b100 x512\n");
  EXPECT_EQ(Global().NormalBackupStatus, 1);
}

TEST(Roles, FailedStoreOfTheRoleIsLoggedAndTheRestRuns) {
  struct Case {
    int passing;  // flash writes in front of the one that fails
    const char* log;
  };
  constexpr Case kCases[] = {
      {0,
       "Error === DoWriteFeatureInfo ===Set 0x0200_009d to 165, save PbufMorSMode to flash "
       "failed !\n"},
      {5,
       "Error === DoWriteFeatureInfo =========Set  Device <Slave> 0x0200_009d to 0xA5, clear "
       "0x05065000 flash failed !\n"},
      {6, "Error === DoWriteFeatureInfo ========= WriteDataToFlash failed !\n"},
  };
  device::Begin("flash");
  device::PutImage(0x1EC, "80008000");
  device::Log log(0);
  support::Trace trace;
  for (const Case& c : kCases) {
    SetFaultCount(Fault::kSkip, c.passing);
    SetFaultCount(Fault::kFlashWrite, 3);
    device::WriteFeature(0x9D, "a5");
    EXPECT_EQ(log.Take(), c.log);
    EXPECT_EQ(support::Count(trace.Take(), "flash W"), 7 + 2);
  }
}

TEST(Roles, PortUpdatesWriteTheirPlaceAndNothingElse) {
  using ZEPH_MCUC::Data_Global;
  struct Case {
    void (Data_Global::*update)(std::uint8_t port, std::uint16_t value);
    std::uint32_t places[16];  // 0 for none
  };
  constexpr Case kCases[] = {
      {&Data_Global::PortWidthUpdate,
       {0x51, 0x5A, 0x63, 0x6C, 0xB1, 0xBA, 0xC3, 0xCC, 0x131, 0x13A, 0x143, 0x14C, 0x155, 0x15E,
        0x167, 0x170}},
      {&Data_Global::PortHeightUpdate,
       {0x53, 0x5C, 0x65, 0x6E, 0xB3, 0xBC, 0xC5, 0xCE, 0x133, 0x13C, 0x145, 0x14E, 0x157, 0x160,
        0x169, 0x172}},
      {&Data_Global::PortOffsetXUpdate,
       {0x55, 0x5E, 0x67, 0x70, 0xB5, 0xBE, 0xC7, 0xD0, 0x135, 0x13E, 0x147, 0x150, 0x159, 0x162,
        0x16B, 0x174}},
      {&Data_Global::PortOffsetYUpdate,
       {0x57, 0x60, 0x69, 0x72, 0xB7, 0xC0, 0xC9, 0xD2, 0x137, 0x140, 0, 0, 0, 0, 0, 0}},
      {nullptr,  // the role, one byte
       {0x18, 0x19, 0x1A, 0x1B, 0x98, 0x99, 0x9A, 0x9B, 0x100, 0x101, 0x102, 0x103, 0x104, 0x105,
        0x106, 0x107}},
  };
  device::Begin("fpga flash");
  support::Trace trace;
  for (const Case& c : kCases) {
    for (std::uint8_t port = 0; port < 17; ++port) {
      std::array<std::uint8_t, 512> expected{};
      Global().SendParameterReg.write(0, expected);
      const std::uint32_t place = port < 16 ? c.places[port] : 0;
      if (place != 0) expected[place] = 0x34;
      if (place != 0 && c.update != nullptr) expected[place + 1] = 0x12;
      if (c.update != nullptr) {
        (Global().*c.update)(port, 0x1234);
      } else {
        Global().PortMorSUpdate(port, 0x34);
      }
      EXPECT_EQ(device::Image(0, 512), device::Hex(expected)) << int{port};
    }
  }
  EXPECT_EQ(trace.Take(), "");
}

}  // namespace
