// The flash stores: where they lie, power cuts and what they lose, the boot loader.
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
