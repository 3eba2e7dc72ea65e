// The flash stores: what a new board holds, bounds, power cuts and what they lose, the boot loader.
#include <gtest/gtest.h>
#include <platform/flash.h>
#include <platform/system.h>

#include <set>

#include "board/envstore.h"
#include "board/files.h"
#include "board/journal.h"
#include "board/power.h"
#include "board/stores.h"
#include "support/board_kit.h"

namespace board {
namespace {

namespace fs = std::filesystem;

using board_kit::Configure;
using board_kit::Named;
using board_kit::Put;
using board_kit::TraceLines;
using Bytes = std::vector<std::uint8_t>;

constexpr const char* kLive = "usr/zeph/etc/envcfg/brmpara";
constexpr const char* kFactory = "usr/zeph/etc/envcfg/brmpara_factory";
constexpr const char* kTmp = "usr/zeph/etc/envcfg/brmpara_factory_tmp";

std::string File(const char* name) { return ReadWhole(Named() / name).value_or("missing"); }

Bytes Read(std::uint32_t address, std::uint32_t length) {
  Bytes data(length, 0xEE);
  EXPECT_EQ(ReadDataFromFlashx(address, length, data.data()), 0);
  return data;
}

int Write(std::uint32_t address, const Bytes& data) {
  return WriteDataToFlashx(address, static_cast<std::uint32_t>(data.size()), data.data());
}

TEST(BoardFlash, NewStoresHoldADeviceOfOneCard) {
  ASSERT_EQ(Flash_Init(), 0);
  const std::string store = File(kLive);
  ASSERT_EQ(store.size(), 16U << 20);
  EXPECT_TRUE(store == File(kFactory));
  EXPECT_FALSE(fs::exists(Named() / kTmp));

  EXPECT_EQ(Read(0xA3B122, 0x0C), (Bytes{0, 0x20, 128, 0, 128, 0, 0, 0, 0, 0, 128, 0}));
  EXPECT_EQ(Read(0xA3B13F, 1), Bytes{0x28});
  for (const std::uint32_t window : {0x51U, 0x5AU, 0x6CU, 0xB1U, 0xCCU, 0x131U, 0x155U, 0x170U}) {
    EXPECT_EQ(Read(0xA3B100 + window, 9), (Bytes{128, 0, 128, 0, 0, 0, 0, 0, 0})) << window;
  }
  EXPECT_EQ(Read(0xA3B2EC, 5), (Bytes{128, 0, 128, 0, 0}));
  for (const std::uint32_t record : {0x00U, 0x20U, 0xE0U, 0x200U, 0x220U}) {
    EXPECT_EQ(Read(0xA5C000 + record, 3), (Bytes{1, 0, 0})) << record;
  }
  EXPECT_EQ(Read(0xA5C100, 0x100), Bytes(0x100, 0)) << "common part of the number table";
  EXPECT_EQ(Read(0xC20000, 16), (Bytes{128, 0, 0, 0, 128, 0, 0, 0, 128, 0, 0, 0, 128, 0, 0, 0}));
  EXPECT_EQ(Read(0xC20030, 5), (Bytes{0, 1, 1, 1, 0xFF}));
  EXPECT_EQ(Read(0xC20040, 16), (Bytes{1, 0x55, 0, 0, 0, 0, 128, 0, 128, 0, 1, 1, 0, 1, 0, 0xFF}));
  EXPECT_EQ(Read(0xB99015, 5), (Bytes{0, 1, 1, 1, 0}));
  EXPECT_EQ(Read(0x2400, 1), Bytes{0x28});
  EXPECT_EQ(Read(0x200030, 8), (Bytes{0x80, 7, 0x38, 4, 0x70, 0x17, 0, 0})) << "ninth input";
  const std::size_t written =
      512 + 0x20000 + 768 + 5 + 4096 + 0x1400 + 72 + 16 + 4 + 15;  // no 0xFF among them
  EXPECT_EQ(std::count(store.begin(), store.end(), '\xFF'), (16 << 20) - written);
}

TEST(BoardFlash, ThreeStoresAndTheirTrace) {
  Configure("trace = flash");
  Put(kFactory, std::string(kStoreSize, 'F'));
  ASSERT_EQ(Flash_Init(), 0);
  EXPECT_EQ(Read(0x123456, 2), (Bytes{'F', 'F'})) << "a new live store copies the factory's";
  const Bytes data = {0xAB, 0xCD, 0xEF};
  EXPECT_EQ(Write(0x10, data), 0);
  EXPECT_EQ(WriteDataToFactoryFlashx(0x20, 3, data.data()), 0);
  EXPECT_EQ(WriteDataToFactoryTmpFlashx(0x30, 3, data.data()), 0);
  SetFaultCount(Fault::kFlashWrite, 1);
  EXPECT_EQ(WriteDataToFactoryTmpFlashx(0x40, 3, data.data()), -1);
  EXPECT_EQ(File(kLive).substr(0xF, 5),
            "F\xAB\xCD\xEF"
            "F");
  EXPECT_EQ(File(kFactory).substr(0x1F, 5),
            "F\xAB\xCD\xEF"
            "F");
  EXPECT_EQ(File(kTmp), std::string(0x30, '\0') + "\xAB\xCD\xEF");
  Put(kLive, std::string(kStoreSize, 'X'));
  EXPECT_EQ(Read(0x10, 1), Bytes{'X'}) << "what an outside process writes is read next";
  const std::vector<std::string> wanted = {
      "flash R live 0x00123456 2 ok 4646",      "flash W live 0x00000010 3 ok abcdef",
      "flash W factory 0x00000020 3 ok abcdef", "flash W tmp 0x00000030 3 ok abcdef",
      "flash W tmp 0x00000040 3 fail -",        "flash R live 0x00000010 1 ok 58"};
  EXPECT_EQ(TraceLines(), wanted);
}

TEST(BoardFlash, StartMendsAShortStoreAndRefusesAWrongOne) {
  Put(kLive, "short");
  ASSERT_EQ(Flash_Init(), 0);
  EXPECT_TRUE(File(kLive) == "short" + std::string(kStoreSize - 5, '\xFF'));
  fs::remove(Named() / kLive);
  fs::create_directory(Named() / kLive);
  std::uint8_t byte = 7;
  EXPECT_EQ(Flash_Init(), -1);
  EXPECT_EQ(ReadDataFromFlashx(0, 1, &byte), -1);
  EXPECT_EQ(WriteDataToFactoryFlashx(0, 1, &byte), -1);
  EXPECT_EQ(byte, 7);
}

TEST(BoardFlashDeathTest, CutTearsTheCountedWriteAndEndsTheProcess) {
  Configure("trace = flash");
  ASSERT_EQ(Flash_Init(), 0);
  SetFaultCount(Fault::kFlashCut, 3);
  SetFaultCount(Fault::kFlashWrite, 1);
  const auto writes = [] {
    Write(0x100, {1});  // fails and counts as no write
    Write(0x100, {2, 2});
    WriteDataToFactoryFlashx(0x100, 1, Bytes{3}.data());
    Write(0x200, {4, 4, 4, 4, 4});
    exit(0);
  };
  EXPECT_EXIT(writes(), testing::ExitedWithCode(75), "");
  EXPECT_EQ(FaultCount(Fault::kFlashCut), 0);
  EXPECT_EQ(Read(0x100, 2), (Bytes{2, 2}));
  EXPECT_EQ(Read(0x200, 5), (Bytes{4, 4, 0xFF, 0xFF, 0xFF}));
  const auto lines = TraceLines();
  ASSERT_GE(lines.size(), 4U);
  EXPECT_EQ(lines[0], "flash W live 0x00000100 1 fail -");
  EXPECT_EQ(lines[3], "flash W live 0x00000200 5 fail 0404");
  EXPECT_EQ(Write(0x200, {5}), 0) << "the cut is over";
}

// Writes before and after a sync, then a cut in the fourth; what the live store holds at 0x100.
std::string AfterLoss(int seed) {
  Put(kLive, std::string(kStoreSize, '.'));
  ForgetWrites();
  SetFaultCount(Fault::kFlashLoss, 0);
  Write(0x100, {'o', 'l', 'd', 's'});
  EXPECT_EQ(platform::RunShell("sync"), 0);
  Write(0x100, {'A', 'A'});
  const auto rest = [seed] {
    Write(0x101, {'B', 'B'});
    SetFaultCount(Fault::kFlashLoss, seed);
    SetFaultCount(Fault::kFlashCut, 1);
    Write(0x102, {'C', 'C'});
    exit(0);
  };
  EXPECT_EXIT(rest(), testing::ExitedWithCode(75), "");
  const Bytes now = Read(0x0FF, 6);
  return {now.begin(), now.end()};
}

TEST(BoardFlashDeathTest, LossUndoesSomeWritesSinceTheLastSync) {
  EXPECT_EQ(AfterLoss(0), ".ABCs.");
  // Each subset of AA at 0, BB at 1 and the torn C at 2, in their order, over what was synced.
  const std::set<std::string> possible = {".olds.", ".AAds.", ".oBBs.", ".ABBs.",
                                          ".olCs.", ".AACs.", ".oBCs.", ".ABCs."};
  std::set<std::string> seen;
  for (int seed = 1; seed <= 24; ++seed) {
    const auto left = AfterLoss(seed);
    EXPECT_TRUE(possible.contains(left)) << seed << ": " << left;
    seen.insert(left);
  }
  EXPECT_GE(seen.size(), 5U);
  EXPECT_EQ(AfterLoss(7), AfterLoss(7)) << "a seed replays";
}

TEST(BoardFlash, RebootTakesTheTemporaryStoreOnlyWhereItIsWhole) {
  const struct {
    std::size_t tmp_size;
    const char* returnfactory;
    char live;  // what the live store is full of afterwards
    const char* asked;
  } kCases[] = {{kStoreSize, "1", 'T', "0"},
                {kStoreSize, "0", 'L', "0"},
                {kStoreSize - 1, "1", 'F', "0"},
                {0, "1", 'F', "0"}};
  for (const auto& c : kCases) {
    Put(kLive, std::string(kStoreSize, 'L'));
    Put(kFactory, std::string(kStoreSize, 'F'));
    Put(kTmp, std::string(c.tmp_size, 'T'));
    if (c.tmp_size == 0) fs::remove(Named() / kTmp);
    WriteEnv("returnfactory", c.returnfactory);
    WriteEnv("factory_enable", c.returnfactory);
    WriteEnv("firstboot", "1");
    ASSERT_EQ(Reboot(), 0);
    EXPECT_TRUE(File(kLive) == std::string(kStoreSize, c.live)) << c.live;
    EXPECT_TRUE(File(kFactory) == std::string(kStoreSize, 'F'));
    EXPECT_EQ(fs::exists(Named() / kTmp), c.live != 'T' && c.tmp_size > 0) << "a rename";
    EXPECT_EQ(ReadEnv("returnfactory"), "0");
    EXPECT_EQ(ReadEnv("factory_enable"), "0");
    EXPECT_EQ(ReadEnv("firstboot"), "1");
  }
}

}  // namespace
}  // namespace board
