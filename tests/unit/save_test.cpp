// From memory to flash: what a save writes, and in which order.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "process/tprocess.h"
#include "proto/porttables.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using device::Flash;
using device::Global;

void Save() {
  char value = 1;
  Tprocess::Sprocess_SaveSendCardPara(1, &value);
}

TEST(Save, WritesEachRegionInOrderAndTheTagOnce) {
  const std::string image =
      "flash W 0xc20040 0103; flash R 0xb88000 x4; flash W 0xa3b100 x512; "
      "flash W 0xa61000 x512; ";
  const std::string tables = "flash W 0xa3c000 x40960; flash W 0xa5c000 x768; shell sync";
  device::Begin("flash shell");
  Global().ScreenParaReg.write(0, inprocess::Bytes("010355"));
  support::Trace trace;
  Save();
  EXPECT_EQ(trace.TakeLine(), image + "flash W 0xb88000 39f6a55a; " + tables);
  Global().LEDConfigStatus = 200;
  Save();
  EXPECT_EQ(trace.TakeLine(), "flash W 0xb99000 c8; " + image + tables);
}

TEST(Save, StoresWhatIsInMemory) {
  device::Begin("none");
  Global().ScreenParaReg.write(0, inprocess::Bytes("0103556677"));
  device::PutImage(0x1F8, "0102");
  ParaTable[255] = 0x1234;
  ParaTable[256] = 0xFFFF;
  PortsTopoPara.write(kPositionSize - 2, inprocess::Bytes("abcd"));
  NumberPartPara.write(kNumberSize - 2, inprocess::Bytes("ef01"));
  device::PutFlash(0xC20042, "99");
  Save();
  EXPECT_EQ(Flash(0xC20040, 3), "010399") << "two bytes alone";
  EXPECT_EQ(Flash(0xA3B100 + 0x1F8, 2), "0102");
  EXPECT_EQ(Flash(0xA61000 + 508, 6), "00003412ffff") << "no word behind the 256th";
  EXPECT_EQ(Flash(0xA3C000 + kPositionSize - 2, 2), "abcd");
  EXPECT_EQ(Flash(0xA5C000 + kNumberSize - 2, 3), "ef01ff");
}

}  // namespace
