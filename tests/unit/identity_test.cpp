// The device's identity between flash and the environment store: at start, at reads, at writes.
#include <gtest/gtest.h>

#include "board/envstore.h"
#include "board/faults.h"
#include "board/files.h"
#include "proto/calc_identity.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using board::Fault;
using board::SetFaultCount;
using device::Flash;
using device::Global;

constexpr std::uint32_t kArea = 0x1000;
constexpr std::uint32_t kSerial = 0x1016;
constexpr char kDefault[] = "13030d00ffffffff";
constexpr char kOld[] = "1122334455667788";  // what flash holds beforehand

void PutEnv(const char* key, const char* value) {
  board::ReplaceWhole(board::Folder() / "usr/zeph/etc/envcfg/env", "");
  if (value != nullptr) board::WriteEnv(key, value);
}

std::string Env(const char* key) { return board::ReadEnv(key).value_or("(none)"); }

TEST(Identity, HexToBytes) {
  struct Case {
    const char* text;
    int length;
    const char* bytes;
  };
  constexpr Case kCases[] = {
      {"1g", 2, "10"},          {"0fA9", 4, "0fa9"}, {"1234", 2, "10"}, {"12345", 5, "123450"},
      {"1234567", 6, "123450"}, {"xy:9", 4, "0009"}, {"7", 1, "70"},    {"", 0, ""}};
  for (const Case& c : kCases) {
    std::vector<std::uint8_t> bytes((static_cast<std::size_t>(c.length) + 1) / 2);
    Global().ASCII2Hex(reinterpret_cast<const std::uint8_t*>(c.text), c.length, bytes.data());
    EXPECT_EQ(device::Hex(bytes), c.bytes) << c.text;
  }
}

// --- The serial number --------------------------------------------------------------------------

struct Serial {
  const char* name;
  const char* env;         // null for none
  const char* afterStart;  // in the environment
  const char* afterRead;
  const char* flash;
  const char* read;  // what a read gives
  const char* log;
};

constexpr Serial kSerials[] = {
    {"none", nullptr, kDefault, "(none)", kDefault, kOld,
     "Error === SNTransfer ===The SN_ADDR at env is not exist, set the default SN_ADDR now. "},
    {"blank", "0000000000000000", kDefault, kDefault, kDefault, kOld,
     "Info The SN_ADDR at env is equal to SN_0, set the default SN_ADDR now."},
    {"nearly blank", "0000000000000001", "0000000000000001", "0000000000000001", "0000000000000001",
     "0000000000000001", "Info The SN_ADDR at env is not equal to SN_0, won't change it."},
    {"capitals", "A1B2C3D4E5F60718", "A1B2C3D4E5F60718", "A1B2C3D4E5F60718", "a1b2c3d4e5f60718",
     "a1b2c3d4e5f60718", "Info The SN_ADDR at env is not equal to SN_0, won't change it."},
    {"too short", "12", "12", "12", "1200000000000000", "1200000000000000",
     "Info The SN_ADDR at env is not equal to SN_0, won't change it."},
    {"no digits", "zz34567890abcdez", "zz34567890abcdez", "zz34567890abcdez", "0034567890abcde0",
     "0034567890abcde0", "Info The SN_ADDR at env is not equal to SN_0, won't change it."},
};

TEST(Identity, SerialNumberIsTheEnvironmentsAtStartAndAtReads) {
  device::Begin("none");
  device::Log log;
  for (const Serial& serial : kSerials) {
    SCOPED_TRACE(serial.name);
    PutEnv("device_sn", serial.env);
    device::PutFlash(kSerial, kOld);
    log.Take();
    Global().SNTransfer();
    EXPECT_EQ(Env("device_sn"), serial.afterStart);
    EXPECT_EQ(Flash(kSerial, 8), serial.flash);
    EXPECT_EQ(support::Count(log.Take(), serial.log), 1);

    PutEnv("device_sn", serial.env);
    device::PutFlash(kSerial, kOld);
    EXPECT_EQ(device::Hex(inprocess::Read(22, 8).m_data), serial.read);
    EXPECT_EQ(Env("device_sn"), serial.afterRead);
    EXPECT_EQ(Flash(kSerial, 8), serial.flash);
    EXPECT_EQ(support::Count(log.Take(), serial.log), 1);
  }
}

TEST(Identity, ClosedEnvironmentLeavesFlashAsItIs) {
  device::Begin("none");
  PutEnv("device_sn", "a1a2a3a4a5a6a7a8");
  device::PutFlash(kSerial, kOld);
  device::Log log(0);
  SetFaultCount(Fault::kEnvOpen, -1);
  Global().SNTransfer();
  EXPECT_EQ(log.Take(), "Error === SNTransfer ===Error when openning env!\n");
  EXPECT_EQ(device::Hex(inprocess::Read(22, 8).m_data), kOld);
  EXPECT_EQ(inprocess::Read(2, 2).m_data.size(), 2U);
  EXPECT_NE(log.Take().find("=== ModelID ===Error when openning env!"), std::string::npos);
  EXPECT_EQ(Flash(kSerial, 8), kOld);
}

// --- Reads
// ----------------------------------------------------------------------------------------

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
    bool model, serial;
    const char* data;  // null for the bytes of flash with what is replaced
  };
  constexpr Case kCases[] = {{0, 256, true, true, nullptr},  {2, 2, true, false, nullptr},
                             {2, 1, false, false, nullptr},  {3, 2, false, false, nullptr},
                             {0, 4, true, false, nullptr},   {22, 8, false, true, nullptr},
                             {22, 7, false, false, nullptr}, {23, 8, false, false, nullptr},
                             {21, 10, false, true, nullptr}, {250, 6, false, false, nullptr},
                             {250, 7, false, false, ""},     {256, 0, false, false, nullptr},
                             {257, 0, false, false, ""},     {0x1002, 2, false, false, ""}};
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.offset * 1000 + c.length);
    device::PutFlash(kArea, area.c_str());
    std::string expected = area;
    if (c.model) expected.replace(4, 4, "2b1a");
    if (c.serial) expected.replace(44, 16, "a1a2a3a4a5a6a7a8");
    const auto reply = inprocess::Read(c.offset, c.length);
    EXPECT_EQ(reply.m_ucAck, 0);
    EXPECT_EQ(
        device::Hex(reply.m_data),
        c.data != nullptr ? c.data : expected.substr(2 * c.offset, 2 * std::size_t{c.length}));
  }
  SetFaultCount(Fault::kFlashRead, 3);
  EXPECT_EQ(device::Hex(inprocess::Read(20, 12).m_data), "0000a1a2a3a4a5a6a7a80000")
      << "what can't be read goes out as zeros";
}

// --- Writes
// ---------------------------------------------------------------------------------------

struct Write {
  const char* name;
  std::uint32_t offset;
  std::string data;
  std::size_t changed;     // from here on
  std::string now;         // stands in flash
  const char* trace = "";  // between the read and the write of the area
};

const Write kWrites[] = {
    {"model", 2, "a1a2", 2, "a1a2"},
    {"model and more", 2, "a1a2a3", 0, ""},
    {"bytes 7 and 8", 7, "b1b2", 7, "b1b2"},
    {"bytes 10 and 11", 10, "c1c2", 10, "c1c2"},
    {"bytes 10 and 11, and more", 10, "c1c2c3c4", 10, "c1c2"},
    {"byte 10", 10, "c1", 10, "c1"},
    {"nobody's byte", 6, "d1d2", 0, ""},
    {"nearly all", 0, std::string(510, '7'), 0, ""},
    {"all", 0, std::string(512, '7'), 22, std::string(16, '7'),
     "env set device_sn 7777777777777777\n"},
    {"address", 0x3D, "00aabbccddeeff", 61, "00aabbccddeeff",
     "shell /usr/brm100/bin/fw_setenv ethaddr aa:bb:cc:dd:ee:ff\nenv set ethaddr_set 1\n"},
    {"address without its first byte", 0x3E, "aabbccddeeff", 0, ""},
};

TEST(Identity, WriteTakesWhatIsTheClientsAndNothingElse) {
  device::Begin("flash shell env");
  for (const Write& write : kWrites) {
    SCOPED_TRACE(write.name);
    std::string area(512, '1');
    device::PutFlash(kArea, area.c_str());
    support::Trace trace;
    EXPECT_EQ(inprocess::Write(write.offset, inprocess::Bytes(write.data.c_str())).m_ucAck, 0);
    EXPECT_EQ(trace.Take(), "");
    EXPECT_EQ(inprocess::DrainQueue(), 1);
    EXPECT_EQ(trace.Take(),
              std::string("flash R 0x1000 x256\n") + write.trace + "flash W 0x1000 x256\n");
    area.replace(2 * write.changed, write.now.size(), write.now);
    EXPECT_EQ(Flash(kArea, 256), area);
  }
  inprocess::Write(250, inprocess::Bytes("01020304050607"));
  inprocess::Write(2, {});
  EXPECT_EQ(inprocess::DrainQueue(), 0);
}

TEST(Identity, WriteGoesOnWithoutEnvironmentAndWithoutTheOldArea) {
  struct Case {
    Fault fault;
    const char* write;  // its data, at 0x3D or at 0
    std::string now;    // from byte 22 or 61 on
    const char* log;
  };
  const Case kCases[] = {
      {Fault::kEnvOpen, "00aabbccddeeff", "00aabbccddeeff11",
       "Error === WriteHwBasicInfomation ===When set ethaddr_set flag, open env failed !\n"},
      {Fault::kEnvOpen, nullptr, "777777777777777711",
       "Error === WriteHwBasicInfomation ===open env failed\n"},
      {Fault::kFlashRead, "00aabbccddeeff", "00aabbccddeeff00", ""},
  };
  device::Begin("none");
  device::Log log(0);
  for (const Case& c : kCases) {
    device::PutFlash(kArea, std::string(512, '1').c_str());
    const std::string data = c.write == nullptr ? std::string(512, '7') : c.write;
    inprocess::Write(c.write == nullptr ? 0 : 0x3D, inprocess::Bytes(data.c_str()));
    SetFaultCount(c.fault, 3);
    inprocess::DrainQueue();
    SetFaultCount(c.fault, 0);
    EXPECT_EQ(log.Take(), c.log);
    EXPECT_EQ(Flash(kArea + (c.write == nullptr ? 22 : 61), c.now.size() / 2), c.now);
  }
}

// --- Start
// ----------------------------------------------------------------------------------------

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
  auto& reg = Data_Preset::getInstance()->BasicHardWareReg;
  EXPECT_EQ(reg[30], 0);
  EXPECT_EQ(reg[31], 0x55);
  EXPECT_EQ(reg[61], 0x11);
}

}  // namespace
