// Every fault counter: its access fails and moves nothing while it counts, and `skip` lets it pass.
#include <gtest/gtest.h>
#include <platform/envcfg.h>
#include <platform/flash.h>
#include <platform/fpga.h>
#include <platform/info.h>
#include <platform/inputsource.h>
#include <platform/network.h>
#include <platform/recvcard.h>
#include <platform/system.h>

#include <array>

#include "board/files.h"
#include "support/board_kit.h"

namespace board {
namespace {

std::array<std::uint8_t, 256> g_bytes{1};

bool CardRead() {
  RECVCARD_MESG_T head{1, 0, 0, 0, 0, 0, 1, nullptr, 2};
  return ReadFPGAformRecvCard(1, &head, 0, g_bytes.data()) == 0;
}
bool CardWrite() {
  g_bytes[0] = 1;
  RECVCARD_MESG_T head{1, 0, 0, 1, 0, 0, 1, nullptr, 4};
  return WriteFPGAToRecvCard(1, &head, 0, g_bytes.data()) == 0;
}
bool EnvOpen() {
  const bool done = envcfg_openenv() == 0;
  envcfg_closeenv();
  return done;
}
bool EdidRead() {
  std::uint16_t length = g_bytes.size();
  return ll_input_get_edid(0x0010, g_bytes.data(), &length) == ll_ret_ok;
}
bool NetAddress() { return ifcfg_set_curr_ip("192.168.0.10", "255.255.255.0", "192.168.0.1") == 0; }
bool ClockChip() {
  std::array<std::uint32_t, 64> words{256, 1, 2};
  words[54] = 6;
  words[55] = 9;
  const int chip = platform::OpenDevice("/dev/i2cdev9", 2);
  const bool done = platform::ControlDevice(chip, 0xC10065A0, words.data()) == 0;
  platform::CloseDevice(chip);
  return done;
}

// Accesses that succeed on a new board but for a fault; each says whether it did.
struct Access {
  Fault fault;
  bool (*perform)();
};

constexpr Access kAccesses[] = {
    {Fault::kFpgaWrite, [] { return WriteFPGABlock(1, 0x500000, 1, g_bytes.data()) == 0; }},
    {Fault::kFpgaRead, [] { return ReadFPGABlock(1, 0x500000, 1, g_bytes.data()) == 0; }},
    {Fault::kFlashRead, [] { return ReadDataFromFlashx(0, 1, g_bytes.data()) == 0; }},
    {Fault::kFlashWrite, [] { return WriteDataToFlashx(0, 1, g_bytes.data()) == 0; }},
    {Fault::kFlashWrite, [] { return WriteDataToFactoryFlashx(0, 1, g_bytes.data()) == 0; }},
    {Fault::kFlashWrite, [] { return WriteDataToFactoryTmpFlashx(0, 1, g_bytes.data()) == 0; }},
    {Fault::kCardRead, CardRead},
    {Fault::kCardWrite, CardWrite},
    {Fault::kEnvOpen, EnvOpen},
    {Fault::kNet, [] { return ifcfg_set_eth_mode(0) == 0; }},
    {Fault::kNet, NetAddress},
    {Fault::kClockChip, ClockChip},
    {Fault::kEdidRead, EdidRead},
    {Fault::kEdidWrite, [] { return ll_input_set_edid(0x0010, g_bytes.data(), 256) == ll_ret_ok; }},
};

TEST(BoardFaults, EachFailsItsAccessesAndNoOthers) {
  for (const Access& access : kAccesses) {
    const auto index = static_cast<int>(access.fault);
    SetFaultCount(Fault::kSkip, 1);
    SetFaultCount(access.fault, 2);
    for (const Access& other : kAccesses) {
      if (other.fault == access.fault) continue;
      EXPECT_TRUE(other.perform()) << "beside fault " << index;
    }
    EXPECT_TRUE(access.perform()) << "skipped, fault " << index;
    EXPECT_FALSE(access.perform()) << index;
    EXPECT_FALSE(access.perform()) << index;
    EXPECT_TRUE(access.perform()) << "counted down, fault " << index;
    EXPECT_EQ(FaultCount(Fault::kSkip), 0);
    SetFaultCount(access.fault, -1);
    EXPECT_FALSE(access.perform()) << index;
    EXPECT_FALSE(access.perform()) << index;
    SetFaultCount(access.fault, 0);
    EXPECT_TRUE(access.perform()) << "cleared, fault " << index;
  }
}

TEST(BoardFaults, FailedWritesMoveNothing) {
  platform::Initialize();
  SetFaultCount(Fault::kFpgaWrite, -1);
  SetFaultCount(Fault::kFlashWrite, -1);
  SetFaultCount(Fault::kCardWrite, -1);
  for (const Access& access : kAccesses) {
    if (FaultCount(access.fault) < 0) {
      EXPECT_FALSE(access.perform());
    }
  }
  EXPECT_EQ((*ReadWhole(Folder() / "fpga/1.mem"))[0x500000], 0);
  EXPECT_EQ((*ReadWhole(Folder() / "usr/zeph/etc/envcfg/brmpara"))[0], '\xFF');
  EXPECT_FALSE(std::filesystem::exists(Folder() / "usr/zeph/etc/envcfg/brmpara_factory_tmp"));
}

}  // namespace
}  // namespace board
