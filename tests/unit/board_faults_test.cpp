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

// Accesses that succeed on a new board but for a fault; each returns whether it did.
bool FpgaWrite() {
  const std::uint8_t byte = 1;
  return WriteFPGABlock(1, 0x500000, 1, &byte) == 0;
}
bool FpgaRead() {
  std::uint8_t byte = 0;
  return ReadFPGABlock(1, 0x500000, 1, &byte) == 0;
}
bool FlashRead() {
  std::uint8_t byte = 0;
  return ReadDataFromFlashx(0, 1, &byte) == 0;
}
bool FlashWrite() {
  const std::uint8_t byte = 1;
  return WriteDataToFlashx(0, 1, &byte) == 0;
}
bool FactoryWrite() {
  const std::uint8_t byte = 1;
  return WriteDataToFactoryFlashx(0, 1, &byte) == 0;
}
bool TmpWrite() {
  const std::uint8_t byte = 1;
  return WriteDataToFactoryTmpFlashx(0, 1, &byte) == 0;
}
bool CardRead() {
  std::uint8_t byte = 0;
  RECVCARD_MESG_T head{1, 0, 0, 0, 0, 0, 1, nullptr, 2};
  return ReadFPGAformRecvCard(1, &head, 0, &byte) == 0;
}
bool CardWrite() {
  const std::uint8_t byte = 1;
  RECVCARD_MESG_T head{1, 0, 0, 1, 0, 0, 1, nullptr, 4};
  return WriteFPGAToRecvCard(1, &head, 0, &byte) == 0;
}
bool EnvOpen() {
  const bool done = envcfg_openenv() == 0;
  envcfg_closeenv();
  return done;
}
bool EdidRead() {
  std::array<std::uint8_t, 256> image{};
  std::uint16_t length = image.size();
  return ll_input_get_edid(0x0010, image.data(), &length) == ll_ret_ok;
}
bool EdidWrite() {
  const std::array<std::uint8_t, 256> image{};
  return ll_input_set_edid(0x0010, image.data(), image.size()) == ll_ret_ok;
}
bool NetMode() { return ifcfg_set_eth_mode(0) == 0; }
bool NetAddress() { return ifcfg_set_curr_ip("192.168.0.10", "255.255.255.0", "192.168.0.1") == 0; }
bool ClockChip() {
  std::array<std::uint32_t, 64> words{};
  for (const auto& [index, value] : {std::pair{0, 256U}, {1, 1U}, {2, 2U}, {54, 6U}, {55, 9U}}) {
    words[static_cast<std::size_t>(index)] = value;
  }
  const int chip = platform::OpenDevice("/dev/i2cdev9", 2);
  const bool done = platform::ControlDevice(chip, 0xC10065A0, words.data()) == 0;
  platform::CloseDevice(chip);
  return done;
}

struct Access {
  Fault fault;
  bool (*perform)();
};

constexpr Access kAccesses[] = {
    {Fault::kFpgaWrite, FpgaWrite},     {Fault::kFpgaRead, FpgaRead},
    {Fault::kFlashRead, FlashRead},     {Fault::kFlashWrite, FlashWrite},
    {Fault::kFlashWrite, FactoryWrite}, {Fault::kFlashWrite, TmpWrite},
    {Fault::kCardRead, CardRead},       {Fault::kCardWrite, CardWrite},
    {Fault::kEnvOpen, EnvOpen},         {Fault::kNet, NetMode},
    {Fault::kNet, NetAddress},          {Fault::kClockChip, ClockChip},
    {Fault::kEdidRead, EdidRead},       {Fault::kEdidWrite, EdidWrite},
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
  EXPECT_FALSE(FpgaWrite() || FlashWrite() || TmpWrite() || CardWrite());
  EXPECT_EQ((*ReadWhole(Folder() / "fpga/1.mem"))[0x500000], 0);
  EXPECT_EQ((*ReadWhole(Folder() / "usr/zeph/etc/envcfg/brmpara"))[0], '\xFF');
  EXPECT_FALSE(std::filesystem::exists(Folder() / "usr/zeph/etc/envcfg/brmpara_factory_tmp"));
}

TEST(BoardInfo, InfoStoreAndNetworkShowInTheTrace) {
  board_kit::Configure("trace = info net");
  const std::uint8_t byte = 0x5A;
  EXPECT_EQ(st_info_op(1, 0x020001D8, 1, &byte), 0);
  EXPECT_EQ(st_info_op(2, 0, 1, &byte), -1);
  EXPECT_EQ(ifcfg_set_eth_mode(0), 0);
  SetFaultCount(Fault::kNet, 1);
  EXPECT_FALSE(NetAddress());
  EXPECT_EQ(ifcfg_set_curr_ip("192.168.0.256", "255.255.255.0", "192.168.0.1"), -1);
  EXPECT_EQ(ifcfg_set_curr_ip(nullptr, "255.255.255.0", "192.168.0.1"), -1);
  const std::vector<std::string> wanted = {"info 1 0x020001d8 1 5a", "info 2 0x00000000 1 5a",
                                           "net mode 0",
                                           "net addr 192.168.0.10 255.255.255.0 192.168.0.1",
                                           "net addr 192.168.0.256 255.255.255.0 192.168.0.1"};
  EXPECT_EQ(board_kit::TraceLines(), wanted);
}

}  // namespace
}  // namespace board
