// Faults and power cuts at every access of the operations that change what a device remembers.
// A new operation joins as a row.
#include <gtest/gtest.h>

#include <cstdlib>

#include "board/envstore.h"
#include "process/tprocess_ctl.h"
#include "proto/calc_curves.h"
#include "proto/data_common_tables.h"
#include "stub/mcuqmbthread.h"
#include "support/board_kit.h"
#include "support/brightness_bytes.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/sweep.h"

namespace {

using sweep::Operation;

constexpr sweep::Region kChanges = {.address = 0xD17000, .length = 1, .free = true};

// What `saves` saves write, and more. The image may be written in between as well: `image` times in
// all.
std::vector<sweep::Region> Saved(std::vector<sweep::Region> regions, int saves = 1, int image = 1) {
  const sweep::Region saved[] = {{0xA3B100, 512, image},
                                 {0xA61000, 512, saves},
                                 {0xB88000, 4},
                                 {0xA3C000, 40960, saves},
                                 {0xA5C000, 768, saves}};
  regions.insert(regions.end(), std::begin(saved), std::end(saved));
  return regions;
}

void Write(std::uint32_t address, const char* hex) {
  inprocess::Write(address, inprocess::Bytes(hex));
  inprocess::DrainQueue();
}

// The effects of a write that reach FPGA, flash, bus and shell, one after the other.
void WriteFeatures() {
  for (const auto& [offset, hex] : {std::pair{0x24, "8002e001"},
                                    {0x1EC, "8002e001"},
                                    {0x45, "5a"},
                                    {0x4A, "07"},
                                    {0x74, "01"},
                                    {0x1D8, "01"},
                                    {0x1DA, "02"},
                                    {0x1F8, "a5"},
                                    {0x9C, "1122"},
                                    {0xD4, "01"}}) {
    device::WriteFeature(static_cast<std::uint32_t>(offset), hex);
  }
}

// Changes what only a save stores, and asks for the save.
void ChangeAndSave() {
  device::Global().ScreenParaReg.write(0, inprocess::Bytes("0155"));
  device::PutImage(0x1F9, "a1a2a3");  // bytes that the FPGA doesn't hold
  ZEPH_MCUC::ParaTable[7] = 0x1234;
  Write(0x03000FFE, "11223344");
  Write(0x03100040, "556677");
  Write(0x01000001, "01");
}

// A smart configuration, and two passes of the loop's debounce behind it.
void ConfigureWall() {
  Write(0x02810010, "00000000000004030500");
  for (int pass = 0; pass < 2; ++pass) ZEPH_MCUC::McuQMBThread::CalculateSenderParaHandler();
}

// A plan's table under mode byte 0, which stores it, then its own mode byte, which starts it.
void UploadPlan(std::initializer_list<std::pair<std::size_t, std::uint8_t>> bytes,
                const char* mode) {
  std::vector<std::uint8_t> table(512);
  for (const auto& [at, value] : bytes) table[at] = value;
  inprocess::Write(0x0A000000, table);
  inprocess::DrainQueue();
  Write(0x0A000000, mode);
}

void UploadList() {
  UploadPlan({{1, 2}, {0x20, 0x08}, {0x21, 0x20}, {0x80, 3}, {0x81, 3}, {0xA0, 200}, {0xA1, 20}},
             "5b");
}

void UploadSensor() {
  UploadPlan({{1, 1}, {5, 0xE8}, {6, 0x03}, {9, 255}, {10, 10}, {11, 10}}, "7d");
}

// The mode byte alone rewrites the first 0x1000 bytes page by page, and comes also where the table
// before it was lost.
std::vector<sweep::Region> PlanRegions() {
  std::vector<sweep::Region> regions = {{0xB8B000, 1, 2}, {0xB8B001, 0xFF, 2}};
  for (std::uint32_t at = 0x100; at < 0x1000; at += 0x100) {
    regions.push_back({0xB8B000 + at, 0x100, at < 0x200 ? 2 : 1});
  }
  return regions;
}

// A mix in one piece, which is complete and starts at once.
void UploadMix() {
  const brightness_bytes::Mix mix{.nodes = {{6, 0, false, 0x7F, 30}, {18, 0, true, 0x7F, 0}},
                                  .sensors = {{0, 0, 0, 1}},
                                  .map = {{100, 20}, {1000, 90}},
                                  .fallback = 50};
  inprocess::Write(0x0A000000, mix.Bytes());
  inprocess::DrainQueue();
}

void StoreNoHdr() { device::PutFlash(0xC21000, "00000000000000000000"); }

// A gamma set by pieces, which loads it too.
void UploadGamma() {
  const ZEPH_MCUC::GammaTable table = ZEPH_MCUC::PowerTable(2.2, 10);
  for (const std::uint32_t colour : {0x0E002000, 0x0E102000, 0x0E202000}) {
    for (std::uint32_t at = 0; at < table.size(); at += 1024) {
      inprocess::Write(colour + at, std::span(table).subspan(at, 1024));
      inprocess::DrainQueue();
    }
  }
}

// A piece may be lost by itself: the next ones come all the same.
std::vector<sweep::Region> GammaRegions() {
  std::vector<sweep::Region> regions = {{0xD00000, 4}, {0xD01000, 4}, {0xD02000, 4}};
  for (std::uint32_t at = 0; at < 0x2000; at += 1024) {
    for (const std::uint32_t table : {0xD03000, 0xD05000, 0xD07000}) {
      regions.push_back({table + at, 1024});
    }
  }
  return regions;
}

// A factory reset up to where the reboot would come.
void Reset(const char* type) {
  Write(0x01000002, type);
  ZEPH_MCUC::Tprocess_ctl::getInstance()->RebootAfterRF();
}

// Card files that an upload replaces or removes, and a client's settings that a reset removes.
void UseFiles() {
  for (const char* const name :
       {"usr/zeph/etc/owd/cabCfg/AllCabCfgFileName", "usr/zeph/etc/owd/cabCfg/RvCfgFile_1.rcfgx",
        "usr/zeph/etc/owd/cabCfg/RvCfgFile_9.rcfgx", "root/.config/Zephyrix/Cormoran.ini",
        "usr/brm100/bin/kye/bin/Configure/system.ini"}) {
    board_kit::Put(name, "of old");
  }
}

// Model, serial number and MAC address.
void WriteIdentity() {
  Write(0x00000002, "2b1a");
  Write(0x00000000, std::string(512, '7').c_str());
  Write(0x0000003D, "00021122334455");
}

// Two configuration files, of which one goes to the cards.
void UploadAndReplay() {
  std::string header = "0102";
  header.resize(72, '0');
  header += "00200000" + std::string(56, '0') + "00300000";
  const std::string file = "01" + std::string(62, '0') +
                           "0100000200000100"
                           "99";
  Write(0x0F000000, header.c_str());
  Write(0x0F000800, "616200");
  Write(0x0F002000, file.c_str());
  Write(0x0F002029, "a1a2a3");
  Write(0x0F003000, file.c_str());
  Write(0x0FF00100, "01");
}

// A client's EDID for 1280 by 720 at 60 Hz, of which the preferred timing counts; the input boards
// are looked for first.
void WriteEdid() {
  inprocess::Read(0x08000000, 1);
  std::vector<std::uint8_t> image(128);
  const auto timing = inprocess::Bytes("01 1D 00 72 51 D0 1E 20");
  std::copy(timing.begin(), timing.end(), image.begin() + 54);
  inprocess::Write(0x08000000, image);
  inprocess::DrainQueue();
}

const Operation kOperations[] = {
    {.name = "feature",
     .prepare = [] { device::PutFlash(0x2400, "28"); },
     .act = WriteFeatures,
     .regions = {{0xA3B100, 512, 12}, {0xC20000, 8, 3}, kChanges}},
    {.name = "role",
     .prepare = [] { device::PutFlash(0xC95000, "11111111"); },
     .act = [] { device::WriteFeature(0x9D, "a5"); },
     .regions = {{0xA3B100, 512, 5}, {0xA60010, 1}, {0xC95000, 4}}},
    {.name = "save", .prepare = [] {}, .act = ChangeAndSave, .regions = Saved({{0xC20040, 2}})},
    {.name = "restore",
     .prepare =
         [] {
           device::PutFlash(0xD17000, "05");
           device::PutFlash(0xA3B100 + 0x1F0, "9cffffff3200000002");
         },
     .act =
         [] {
           device::Restore(false);
           device::Restore(true);
         },
     .regions = {{0xD17000, 1}},
     .online = false},
    {.name = "firstboot",
     .prepare = [] { device::PutFlash(0xC20000, "60000000600000006000000060000000"); },
     .act =
         [] {
           board::WriteEnv("firstboot", "1");
           device::Restore(true);
         },
     .regions = Saved({{0xC20000, 8}, kChanges, {0xC20040, 15}}),
     // Without the stored size a card of 128 by 128 is taken, and remains: in the screen's
     // records and in the page from its own size up to the ports' windows. A first boot that isn't
     // seen is a start like any other, which sends more of the page.
     .lasting = {{.runs = {"forever:flash-read"},
                  .store = {{0xC20000, 8}, {0xC20040, 15}, {0xA3B124, 0x154}, {0xA3B2EC, 4}},
                  .cells = {{0x24, 0x154}, {0x1EC, 4}}},
                 {.runs = {"once:env-open:1", "forever:env-open"}, .cells = {{0x1EC, 4}}}},
     .online = false},
    {.name = "smart",
     .prepare = [] {},
     .act = ConfigureWall,
     .regions = Saved({{0xB99000, 0x20, 5}, {0xC20000, 8}, kChanges, {0xC20040, 15}}, 2, 3)},
    {.name = "advanced",
     .prepare = [] { device::PutFlash(0xB99050, "0005000000000203000000010000"); },
     .act = [] { Write(0x02810000, "b9"); },
     .regions = Saved({{0xB99000, 1}, {0xC20000, 8}, kChanges, {0xC20040, 15}}, 2, 5),
     .pageEnd = 0x1EC},
    {.name = "list", .prepare = [] {}, .act = UploadList, .regions = PlanRegions()},
    {.name = "sensor", .prepare = [] {}, .act = UploadSensor, .regions = PlanRegions()},
    {.name = "mix", .prepare = [] {}, .act = UploadMix, .regions = {{0xB8B000, 0x200}}},
    {.name = "hdr",
     .prepare = StoreNoHdr,
     .act = [] { Write(0x02200117, "58"); },
     .regions = {{0xC21000, 10}}},
    {.name = "hlg",
     .prepare = StoreNoHdr,
     .act = [] { Write(0x02200117, "78"); },
     .regions = {{0xC21000, 10}}},
    {.name = "sdr",
     .prepare = StoreNoHdr,
     .act =
         [] {
           Write(0x02200117, "58");
           Write(0x02200117, "00");
         },
     .regions = {{0xC21000, 10, 2}}},
    {.name = "gamma", .prepare = [] {}, .act = UploadGamma, .regions = GammaRegions()},
    // A reset prepares a store beside the live one, which stays as it is until the reboot.
    {.name = "reset", .prepare = UseFiles, .act = [] { Reset("00"); }, .regions = {}},
    {.name = "resetnetwork", .prepare = UseFiles, .act = [] { Reset("01"); }, .regions = {}},
    {.name = "resetkeeping", .prepare = UseFiles, .act = [] { Reset("02"); }, .regions = {}},
    {.name = "resetall", .prepare = UseFiles, .act = [] { Reset("03"); }, .regions = {}},
    {.name = "identity",
     .prepare = [] { device::PutFlash(0x1000, std::string(512, '1').c_str()); },
     .act = WriteIdentity,
     .regions = {{0x1002, 2, 3}, {0x1016, 8, 3}, {0x103D, 7, 3}},
     // The area is written as it was read: what can't be read is lost.
     .lasting = {{.runs = {"once:flash-read:1", "once:flash-read:2", "once:flash-read:3",
                           "forever:flash-read"},
                  .store = {{0x1000, 2}, {0x1004, 0x12}, {0x101E, 0x1F}, {0x1044, 0xBC}}}}},
    {.name = "edid", .prepare = [] {}, .act = WriteEdid, .regions = {{0x200000, 72}}},
    {.name = "cardfiles",
     .prepare = UseFiles,
     .act = UploadAndReplay,
     .regions = {{0xE00000, 72}, {0xE00800, 3}, {0xE02000, 41}, {0xE02029, 3}, {0xE03000, 41}}},
};

class Sweep : public testing::TestWithParam<Operation> {};

TEST_P(Sweep, LeavesOldOrNewAndADaemonThatServes) {
  const char* const only = std::getenv("QUIVORD_SWEEP");  // a run, or "all"
  const bool all = only != nullptr && std::string(only) == "all";
  for (const std::string& failure :
       sweep::Run(GetParam(), {only == nullptr || all ? "" : only, !all})) {
    ADD_FAILURE() << failure;
  }
}

INSTANTIATE_TEST_SUITE_P(, Sweep, testing::ValuesIn(kOperations),
                         [](const auto& test) { return test.param.name; });

}  // namespace
