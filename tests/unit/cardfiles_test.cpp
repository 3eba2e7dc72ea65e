// Configuration files for the receiving cards: what a client's writes leave in flash and on disk,
// and what reaches the cards.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "board/board.h"
#include "board/faults.h"
#include "board/files.h"
#include "driverutil.h"
#include "process/tprocess.h"
#include "proto/calc_cardfiles.h"
#include "support/board_kit.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/loop.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using device::Global;
using Data = std::vector<std::uint8_t>;

constexpr std::uint32_t kSpace = 0x0F000000;
constexpr std::uint32_t kFlash = 0xE00000;

void Append(Data& bytes, std::initializer_list<std::uint32_t> values, int width) {
  for (const std::uint32_t value : values) {
    for (int i = 0; i < width; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
  }
}

Data Header(int count, std::initializer_list<std::uint32_t> offsets, int enable = 1) {
  Data header = {static_cast<std::uint8_t>(enable), static_cast<std::uint8_t>(count)};
  for (const std::uint32_t offset : offsets) {
    header.resize(header.size() == 2 ? 36 : header.size() + 28);
    Append(header, {offset}, 4);
  }
  return header;
}

struct Pack {
  std::uint32_t reg;
  std::uint32_t delay_ms;
  std::uint32_t length;
};

// A file of packs whose data are 1, 2, 3 and so on.
Data FileOf(const std::vector<Pack>& packs, std::size_t cutOff = 0) {
  Data file(32);
  file[0] = static_cast<std::uint8_t>(packs.size());
  file[1] = static_cast<std::uint8_t>(packs.size() >> 8);
  for (const Pack& pack : packs) {
    Append(file, {pack.reg}, 4);
    Append(file, {pack.delay_ms, pack.length}, 2);
    for (std::uint32_t i = 1; i <= pack.length; ++i) file.push_back(static_cast<std::uint8_t>(i));
  }
  file.resize(file.size() - cutOff);
  return file;
}

// --- Upload
// ----------------------------------------------------------------------------------------

class Upload : public testing::Test {
 protected:
  Upload() { device::Begin("flash bus"); }

  // One write, carried out.
  static void Put(std::uint32_t offset, const Data& data) {
    EXPECT_EQ(inprocess::Write(kSpace + offset, data).m_ucAck, 0);
    inprocess::DrainQueue();
  }
  static void Put(std::uint32_t offset, const char* hex) { Put(offset, inprocess::Bytes(hex)); }

  static std::filesystem::path Path(const std::string& name) {
    return board_kit::Named() / "usr/zeph/etc/owd/cabCfg" / name;
  }
  static std::filesystem::path Path(int number) {
    return Path("RvCfgFile_" + std::to_string(number) + ".rcfgx");
  }

  // A file's bytes; "none" where there is none.
  static std::string Content(const std::filesystem::path& path) {
    const auto bytes = board::ReadWhole(path);
    if (!bytes.has_value()) return "none";
    return bytes->empty() ? "" : board::Hex(bytes->data(), bytes->size());
  }
  static std::string Content(int number) { return Content(Path(number)); }
};

TEST_F(Upload, PiecesBecomeFilesOnDiskAndAnImageInFlash) {
  Put(0x2000, "99");  // without a header it belongs nowhere
  EXPECT_EQ(Content(0), "none");
  EXPECT_EQ(device::Flash(kFlash + 0x2000, 1), "99");
  Put(0, Header(2, {0x3000, 0x2000}));
  Put(0x800, "414243");
  Put(0x1000, "44");
  Put(0x2000, "a0a1a2a3");
  Put(0x2004, "a4a5");
  Put(0x3000, "b0");
  EXPECT_EQ(Content(1), "a0a1a2a3a4a5");
  EXPECT_EQ(Content(0), "b0");
  EXPECT_EQ(Content(Path("AllCabCfgFileName")).substr(0, 6), "414243");
  EXPECT_EQ(Content(Path("AllCabCfgFileName")).size(), 2U * 0x801);
  Put(0x2001, "ff");  // in the middle: patched in place
  EXPECT_EQ(Content(1), "a0ffa2a3a4a5");
  Put(0x2000, "c0");  // its first byte: begun anew
  EXPECT_EQ(Content(1), "c0");
  Put(0x1FFF, "d0");  // in front of all files
  EXPECT_EQ(Content(1), "c0");
  EXPECT_EQ(device::Flash(kFlash + 0x1FFF, 4), "d0c0ffa2");
  EXPECT_EQ(device::Flash(kFlash, 2), "0102");
  EXPECT_EQ(device::Hex(inprocess::Read(kSpace + 0x2000, 3).m_data), "c0ffa2");
}

TEST_F(Upload, AnotherHeaderRemovesWhatLiesBehindItsCount) {
  struct Case {
    const char* name;
    Data header;
    int left;  // files 0 to this one, of 0 to 31
    bool names;
  };
  const Case kCases[] = {
      {"first", Header(3, {0x2000, 0x3000, 0x4000}), 3, false},
      {"the same again", Header(3, {0x2000, 0x3000, 0x4000}), 32, true},
      {"the same count at other places", Header(3, {0x5000, 0x6000, 0x7000}), 32, true},
      {"another first byte", Header(3, {0x2000, 0x3000, 0x4000}, 2), 3, false},
      {"none", Header(0, {}), 0, false},
      {"refused for its count", Header(17, {}), 32, true},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    for (int i = 0; i < 32; ++i)
      board_kit::Put(std::filesystem::relative(Path(i), board_kit::Named()), "x");
    board_kit::Put(std::filesystem::relative(Path("AllCabCfgFileName"), board_kit::Named()), "x");
    Put(0, c.header);
    int left = 0;
    while (left < 32 && std::filesystem::exists(Path(left))) ++left;
    EXPECT_EQ(left, c.left);
    for (int i = left; i < 32; ++i) EXPECT_FALSE(std::filesystem::exists(Path(i)));
    EXPECT_EQ(std::filesystem::exists(Path("AllCabCfgFileName")), c.names);
    EXPECT_EQ(device::Flash(kFlash, 2), device::Hex(std::span(c.header).first(2)));
  }
}

TEST_F(Upload, WhatIsRefusedIsLoggedAndLeavesTableAndDisk) {
  Put(0, Header(1, {0x2000}));
  device::Log log(0);
  Put(0, Data(1024, 17));
  EXPECT_EQ(support::Count(log.Take(), "Error === Sprocess_RVConfigFileSpace ===header refused"),
            1);
  Put(0x2000, "aa");
  EXPECT_EQ(Content(0), "aa");
  board::SetFaultCount(board::Fault::kFlashWrite, 6);
  Put(0, Header(1, {0x3000}));  // what flash doesn't take goes neither into the table
  Put(0x2001, "bb");            // nor onto the disk
  EXPECT_EQ(support::Count(log.Take(), "Error === Sprocess_RVConfigFileSpace ===write flash"), 2);
  Put(0x2002, "cc");
  EXPECT_EQ(Content(0), "aa00cc");
}

TEST_F(Upload, OtherRegistersOfTheSpace) {
  struct Case {
    const char* name;
    std::uint32_t offset;
    const char* data;
    const char* trace;
  };
  constexpr Case kCases[] = {
      {"event", 0xF00000, "07", "owd 0x0ff00000 01\n"},
      {"the other event", 0xF00001, "00", "owd 0x0ff00001 01\n"},
      {"two bytes are no event", 0xF00000, "0101", ""},
      {"control", 0xF00002, "01", ""},
      {"the last control", 0xF0011F, "00", ""},
      {"names of devices", 0x800000, "4142", "flash W 0xd14000 4142\n"},
      {"the last of them", 0x800FFF, "43", "flash W 0xd14fff 43\n"},
      {"nobody sends", 0xF00100, "02", ""},
  };
  support::Trace trace;
  for (const Case& c : kCases) {
    Put(c.offset, c.data);
    EXPECT_EQ(trace.Take(), c.trace) << c.name;
  }
  EXPECT_EQ(device::Hex(inprocess::Read(kSpace + 0x800000, 2).m_data), "4142");
}

TEST_F(Upload, WritesBeyondTheirPlaceAreNotQueued) {
  for (const std::uint32_t offset :
       {0x800FFFU, 0x801000U, 0x1FFFFFU, 0x7FFFFFU, 0xF00120U, 0xFFFFFFU}) {
    EXPECT_EQ(inprocess::Write(kSpace + offset, Data(2)).m_ucAck, 0);
    EXPECT_EQ(inprocess::DrainQueue(), 0) << std::hex << offset;
  }
  EXPECT_EQ(inprocess::Write(kSpace + 0x2000, Data(2049)).m_ucAck, 4);
  board::SetFaultCount(board::Fault::kFlashRead, 3);
  const auto reply = inprocess::Read(kSpace + 0x2000, 4);
  EXPECT_EQ(reply.m_ucAck, 0);
  EXPECT_TRUE(reply.m_data.empty());
}

// --- Replay
// ----------------------------------------------------------------------------------------

// Packets to all cards as register and length; their data count on within a pack.
std::string Packets(const std::string& lines) {
  std::istringstream text(lines);
  std::string packets;
  for (std::string line; std::getline(text, line);) {
    std::istringstream words(line);
    std::string kind, direction, type, port, board, reg, length;
    words >> kind >> direction >> type >> port >> board >> reg >> length;
    if (kind != "card") continue;
    EXPECT_EQ(direction + type + port + board, "W125565535") << line;
    packets.append(reg).append(" ").append(length).append("\n");
  }
  return packets;
}

struct Sent {
  const char* name;
  std::vector<Pack> packs;
  const char* packets;
  int pauses_ms;
};

const Sent kSent[] = {
    {"512 bytes", {{0x02000001, 0, 512}}, "0x02000001 512\n", 15},
    {"513 bytes", {{0x05000000, 0, 513}}, "0x05000000 512\n0x05000200 1\n", 25},
    {"1024 bytes", {{0x05000000, 0, 1024}}, "0x05000000 512\n0x05000200 512\n", 35},
    {"no bytes, and a delay", {{7, 300, 0}, {8, 0, 1}}, "0x00000007 0\n0x00000008 1\n", 330},
    {"4096 bytes",
     {{0, 65535, 4096}},
     "0x00000000 512\n0x00000200 512\n0x00000400 512\n0x00000600 512\n0x00000800 512\n"
     "0x00000a00 512\n0x00000c00 512\n0x00000e00 512\n",
     80 + 15 + 65535},
    {"4097 bytes end the run", {{1, 0, 1}, {2, 0, 4097}, {3, 0, 1}}, "0x00000001 1\n", 15},
};

TEST(Replay, SendsPacksInPacketsWithTheirPauses) {
  device::Begin("card");
  platform::KeepTime();
  support::Trace trace;
  for (const Sent& sent : kSent) {
    SCOPED_TRACE(sent.name);
    const Data file = FileOf(sent.packs);
    board_kit::Put("usr/zeph/etc/owd/cabCfg/RvCfgFile_2.rcfgx", {file.begin(), file.end()});
    device::PutFlash(kFlash + 36 + 32 * 5, "00200000");
    board_kit::StoreFlash(kFlash + 0x2000, file);
    const auto replay = [&](auto send) {
      const std::int64_t begin = loop::BoardTime_us();
      send();
      const std::string lines = trace.Take();
      EXPECT_EQ(Packets(lines), sent.packets);
      if (sent.packs[0].length >= 4) {
        EXPECT_NE(lines.find(" 0 01020304"), std::string::npos) << "the file's bytes";
      }
      EXPECT_EQ((loop::BoardTime_us() - begin) / 1000, sent.pauses_ms);
    };
    replay([] {
      inprocess::Write(kSpace + 0xF00102, inprocess::Bytes("01"));
      inprocess::DrainQueue();
    });
    replay([] {
      char number = 5;
      Tprocess::Sprocess_SendRVConfigFile(1, &number);
    });
  }
}

TEST(Replay, MissingOrHugeFileAndPlacesOutsideTheImageSendNothing) {
  device::Begin("card flash");
  device::Log log(0);
  DriverUtil::getInstance()->LoadRvCfgToRecvCard(31);
  EXPECT_EQ(
      log.Take(),
      "Error ======Read File: /usr/zeph/etc/owd/cabCfg/RvCfgFile_31.rcfgx File Not exist!======\n");
  const std::string large = "usr/zeph/etc/owd/cabCfg/RvCfgFile_30.rcfgx";
  board_kit::Put(large, "");
  std::filesystem::resize_file(board_kit::Named() / large, std::uintmax_t{1} << 40);
  DriverUtil::getInstance()->LoadRvCfgToRecvCard(30);
  EXPECT_EQ(log.Take(), "Error ======Read File: /" + large + " File too large!======\n");
  const Data file = FileOf({{1, 0, 4}});
  board_kit::StoreFlash(0x1000, file);                      // where an offset that wraps would lead
  board_kit::StoreFlash(0xF00000, file);                    // right behind the image
  board_kit::StoreFlash(0xEFFFD8, FileOf({{1, 0, 4}}, 4));  // whose data would lie behind it
  for (const char* offset : {"001020ff", "00001000", "d8ff0f00", "ffffffff"}) {
    device::PutFlash(kFlash + 36, offset);
    support::Trace trace;
    char number = 0;
    Tprocess::Sprocess_SendRVConfigFile(1, &number);
    EXPECT_EQ(Packets(trace.Take()), "") << offset;
    EXPECT_EQ(
        log.Take(),
        "Error === ReadRVConfigFileSpace ===Read from flash failed when reading RVConfigFile ! \n");
  }
}

// A file of the other form: total length, then packages of 96 bytes and their data.
Data Packages(const std::vector<Pack>& packs) {
  Data file;
  for (const Pack& pack : packs) {
    Data package(64);
    Append(package, {96 + pack.length}, 4);
    Append(package, {pack.delay_ms == 0 ? 0U : 1U}, 2);
    Append(package, {pack.reg, pack.length}, 4);
    Append(package, {pack.delay_ms}, 2);
    package.resize(96 + pack.length, 0x5A);
    file.insert(file.end(), package.begin(), package.end());
  }
  Data total;
  Append(total, {static_cast<std::uint32_t>(file.size())}, 4);
  std::copy(total.begin(), total.end(), file.begin() + 4);
  return file;
}

TEST(Replay, PackageFiles) {
  Data cutOff = Packages({{1, 0, 4}});
  cutOff[4] = 200;  // says that there is more
  struct Case {
    const char* name;
    Data file;
    int result;
    const char* packets;
    int pauses_ms;
  };
  const Case kCases[] = {
      {"two", Packages({{1, 0, 4}, {2, 40, 600}}), 0,
       "0x00000001 4\n0x00000002 512\n0x00000202 88\n", 15 + 10 + 15 + 40},
      {"too much data", Packages({{1, 0, 4097}}), -1, "", 0},
      {"cut off", cutOff, -1, "0x00000001 4\n", 15},
  };
  device::Begin("card");
  platform::KeepTime();
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    board_kit::Put("tmp/package", {c.file.begin(), c.file.end()});
    support::Trace trace;
    const std::int64_t begin = loop::BoardTime_us();
    EXPECT_EQ(Global().LoadRecvCardFile("/tmp/package"), c.result);
    EXPECT_EQ(Packets(trace.Take()), c.packets);
    EXPECT_EQ((loop::BoardTime_us() - begin) / 1000, c.pauses_ms);
  }
  EXPECT_EQ(Global().LoadRecvCardFile("/tmp/nothing"), -1);
}

}  // namespace
