// The device's identity between flash and the environment store: at start, at reads, at writes.
#include <gtest/gtest.h>

#include <map>

#include "board/envstore.h"
#include "board/faults.h"
#include "board/files.h"
#include "proto/calc_identity.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Flash;
using device::Global;

constexpr std::uint32_t kArea = 0x1000;
constexpr std::uint32_t kSerial = 0x1016;
constexpr char kOld[] = "1122334455667788";  // what flash holds beforehand

void PutEnv(const char* key, const char* value) {
  board::ReplaceWhole(board::Folder() / "usr/zeph/etc/envcfg/env", "");
  if (value != nullptr) board::WriteEnv(key, value);
}

std::string Env(const char* key) { return board::ReadEnv(key).value_or("(none)"); }

TEST(Identity, SerialNumberIsTheEnvironmentsAtStartAndAtReads) {
  const std::map<std::string, const char*> logs = {
      {"none", "Error === SNTransfer ===The SN_ADDR at env is not exist, set the default SN_ADDR"},
      {"blank", "Info The SN_ADDR at env is equal to SN_0, set the default SN_ADDR now."},
      {"kept", "Info The SN_ADDR at env is not equal to SN_0, won't change it."}};
  device::Begin("none");
  device::Log log;
  // What the environment holds, whose word counts, the environment after a start and after a read,
  // flash after both, and what a read gives.
  for (const auto& row : support::Rows(6, R"(
      (none)           | none  | 13030d00ffffffff | (none)           | 13030d00ffffffff | 1122334455667788
      0000000000000000 | blank | 13030d00ffffffff | 13030d00ffffffff | 13030d00ffffffff | 1122334455667788
      0000000000000001 | kept  | 0000000000000001 | 0000000000000001 | 0000000000000001 | 0000000000000001
      A1B2C3D4E5F60718 | kept  | A1B2C3D4E5F60718 | A1B2C3D4E5F60718 | a1b2c3d4e5f60718 | a1b2c3d4e5f60718
      12               | kept  | 12               | 12               | 1200000000000000 | 1200000000000000
      zz34567890abcdez | kept  | zz34567890abcdez | zz34567890abcdez | 0034567890abcde0 | 0034567890abcde0
    )")) {
    SCOPED_TRACE(row[0]);
    for (const bool read : {false, true}) {
      PutEnv("device_sn", row[0] == "(none)" ? nullptr : row[0].c_str());
      device::PutFlash(kSerial, kOld);
      log.Take();
      if (read) {
        EXPECT_EQ(device::Hex(inprocess::Read(22, 8).m_data), row[5]);
      } else {
        Global().SNTransfer();
      }
      EXPECT_EQ(Env("device_sn"), row[read ? 3 : 2]);
      EXPECT_EQ(Flash(kSerial, 8), row[4]);
      EXPECT_EQ(support::Count(log.Take(), logs.at(row[1])), 1);
    }
  }
}

TEST(Identity, ReadReplacesSerialAndModelWhereItCoversThem) {
  device::Begin("none");
  std::string area;
  for (int i = 0; i < 256; ++i) {
    const auto byte = static_cast<std::uint8_t>(i);
    area += device::Hex({&byte, 1});
  }
  PutEnv("device_sn", "a1a2a3a4a5a6a7a8");
  board::WriteEnv("device_modelid", "1a2b");
  struct Case {
    std::uint32_t offset;
    std::uint16_t length;
    std::uint16_t given;  // bytes
    bool model, serial;   // replaced
  };
  constexpr Case kCases[] = {
      {0, 256, 256, true, true}, {2, 2, 2, true, false},    {2, 1, 1, false, false},
      {3, 2, 2, false, false},   {22, 8, 8, false, true},   {22, 7, 7, false, false},
      {23, 8, 8, false, false},  {21, 10, 10, false, true}, {250, 6, 6, false, false},
      {250, 7, 0, false, false}, {257, 0, 0, false, false}, {0x1002, 2, 0, false, false}};
  for (const Case& c : kCases) {
    device::PutFlash(kArea, area.c_str());
    std::string expected = area + std::string(0x4000, 'x');
    if (c.model) expected.replace(4, 4, "2b1a");
    if (c.serial) expected.replace(44, 16, "a1a2a3a4a5a6a7a8");
    const auto reply = inprocess::Read(c.offset, c.length);
    EXPECT_EQ(reply.m_ucAck, 0);
    EXPECT_EQ(device::Hex(reply.m_data), expected.substr(2 * c.offset, 2 * std::size_t{c.given}))
        << c.offset << " " << c.length;
  }
  SetFaultCount(Fault::kFlashRead, 3);
  EXPECT_EQ(device::Hex(inprocess::Read(20, 12).m_data), "0000a1a2a3a4a5a6a7a80000")
      << "what can't be read goes out as zeros";
}

TEST(Identity, WriteTakesWhatIsTheClientsAndNothingElse) {
  const std::string all(512, '7');
  device::Begin("flash shell env");
  // Where and what is written, where flash changes, to what, and what is reached in between.
  for (const auto& row : support::Rows(5, R"(
      2  | a1a2           | 2  | a1a2
      2  | a1a2a3
      7  | b1b2           | 7  | b1b2
      10 | c1c2           | 10 | c1c2
      10 | c1c2c3c4       | 10 | c1c2
      10 | c1             | 10 | c1
      6  | d1d2
      0  | )" + all.substr(2) + R"(
      0  | )" + all + R"( | 22 | 7777777777777777 | env set device_sn 7777777777777777
      61 | 00aabbccddeeff | 61 | 00aabbccddeeff
         | shell /usr/brm100/bin/fw_setenv ethaddr aa:bb:cc:dd:ee:ff; env set ethaddr_set 1
      61 | 00273b60242826 | 61 | 00273b60242826
         | shell /usr/brm100/bin/fw_setenv ethaddr 27:3b:60:24:28:26; env set ethaddr_set 1
      62 | aabbccddeeff
    )")) {
    SCOPED_TRACE(row[0] + " " + row[1]);
    std::string area(512, '1');
    device::PutFlash(kArea, area.c_str());
    support::Trace trace;
    const auto offset = static_cast<std::uint32_t>(std::stoul(row[0]));
    EXPECT_EQ(inprocess::Write(offset, inprocess::Bytes(row[1].c_str())).m_ucAck, 0);
    EXPECT_EQ(trace.Take(), "");
    EXPECT_EQ(inprocess::DrainQueue(), 1);
    EXPECT_EQ(trace.TakeLine(), "flash R 0x1000 x256; " + row[4] + (row[4].empty() ? "" : "; ") +
                                    "flash W 0x1000 x256");
    if (!row[2].empty()) area.replace(2 * std::stoul(row[2]), row[3].size(), row[3]);
    EXPECT_EQ(Flash(kArea, 256), area);
  }
  inprocess::Write(250, inprocess::Bytes("01020304050607"));
  inprocess::Write(2, {});
  EXPECT_EQ(inprocess::DrainQueue(), 0);
}

TEST(Identity, WriteGoesOnWithoutEnvironmentAndWithoutTheOldArea) {
  device::Begin("none");
  device::Log log(0);
  device::PutFlash(kArea, std::string(512, '1').c_str());
  inprocess::Write(0, inprocess::Bytes(std::string(512, '7').c_str()));
  SetFaultCount(Fault::kEnvOpen, 1);
  inprocess::DrainQueue();
  EXPECT_EQ(log.Take(), "Error === WriteHwBasicInfomation ===open env failed\n");
  EXPECT_EQ(Flash(kArea + 22, 9), "777777777777777711");
  inprocess::Write(0x3D, inprocess::Bytes("00aabbccddeeff"));
  SetFaultCount(Fault::kFlashRead, 3);
  inprocess::DrainQueue();
  EXPECT_EQ(Flash(kArea + 61, 8), "00aabbccddeeff00");
}

TEST(Identity, StartFixesTheFirstBytesAndLeavesTheRest) {
  device::Begin("flash");
  device::PutFlash(kArea, std::string(512, '1').c_str());
  support::Trace trace;
  Global().ReadHardwareInfo();
  EXPECT_EQ(trace.Take(), "flash R 0x1000 x256\nflash W 0x101f 55\nflash W 0x1000 x16\n");
  std::string area(512, '1');
  area.replace(4, 14, "14110200a80004");
  area.replace(62, 2, "55");
  EXPECT_EQ(Flash(kArea, 256), area);
  EXPECT_EQ(device::Hex(Data_Preset::getInstance()->BasicHardWareReg.snapshot<3>(29)), "110055");
}

}  // namespace
