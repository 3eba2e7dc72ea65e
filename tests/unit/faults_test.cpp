// What clients' reads and writes say when the hardware or the store fails under them. A read gives
// no data; a write goes on with all that it does.
#include <gtest/gtest.h>

#include "board/faults.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/rows.h"
#include "support/trace.h"

namespace {

// Carries out "W address bytes" or "R address length", which gives data unless it `fails`. The
// number of writes to hardware and store.
int Writes(const std::string& request, bool fails = false) {
  const auto words = support::WordsOf(request);
  const auto address = static_cast<std::uint32_t>(std::stoul(words[1], nullptr, 16));
  support::Trace trace;
  if (words[0] == "R") {
    const auto length = static_cast<std::uint16_t>(std::stoul(words[2]));
    EXPECT_EQ(inprocess::Read(address, length).m_data.empty(), fails);
  } else {
    inprocess::Write(address, inprocess::Bytes(words[2].c_str()));
    inprocess::DrainQueue();
  }
  const std::string lines = trace.Take();
  return support::Count(lines, "flash W") + support::Count(lines, "fpga W") +
         support::Count(lines, "shell sync");
}

TEST(Faults, AreLoggedAndTheRestRuns) {
  device::Begin("flash fpga shell");
  device::PutImage(0x1EC, "80008000");
  device::Log log(0);
  // The request, what fails and how many of that pass before, and what is said at last.
  for (const auto& row : support::Rows(4, R"(
      W 01000001 01   | flash-write | 0 |
      W 01000001 01   | flash-write | 1 | Save feature para to flash failed! ret = -1
      W 01000001 01   | flash-write | 4 | Save number para to flash failed! ret = -1
      W 01000003 0010005101 | fpga-write | 0
        | WriteTestPointCommand ===write to page program failed. driverRet = -1
      W 02000045 ab   | fpga-write  | 0 | FPGA Status Up<<<<<<<<<<<<<<<<<<<
      W 02000045 ab   | flash-write | 0 | DoWriteFeatureInfo ========= WriteDataToFlash failed !
      W 0200009d a5   | flash-write | 0
        | DoWriteFeatureInfo ===Set 0x0200_009d to 165, save PbufMorSMode to flash failed !
      W 02300000 07   | flash-write | 0
        | WriteToBackupInfo ===Write backup info to flash failed. ret = -1
      W 02810000 01   | flash-write | 0
        | WriteToShortcutConfigScreen ===write to page program failed. driverRet = -1
      W 03000000 0102 | fpga-write  | 0
        | WriteToPosNetPort ===Write FPGA Position Info failed! ret = -1
      W 05000000 07   | flash-write | 0
        | WriteToSoftwareTable ===Write to Page Program Failed. DriverRet = -1
      W 3d 00aabbccddeeff | env-open | 0
        | WriteHwBasicInfomation ===When set ethaddr_set flag, open env failed !
      R 02000000 512  | fpga-read   | 0
        | Read from FPGA BasicPara failed when reading feature information!
      R 02300000 1    | flash-read  | 0 | ReadFromBackupInfo ===Read backup info flash failed. ret = -1
      R 02810000 3    | flash-read  | 0
        | ReadFromShortcutConfigScreen ===Read flash failed! ret = -1
      R 03000000 4    | fpga-read   | 0
        | ReadFromPosNetPort ===Read FPGA Posi Info failed! ret = -1
      R 05000000 1    | flash-read  | 0
        | ReadFromSoftwareTable ===Read Bytes From Flash Failed. DriverRet = -1
    )")) {
    SCOPED_TRACE(row[0] + ", " + row[1] + " " + row[2]);
    Writes(row[0]);
    const int usual = Writes(row[0]);
    log.Take();
    const board::Fault fault = *board::FaultByName(row[1]);
    board::SetFaultCount(board::Fault::kSkip, std::stoi(row[2]));
    board::SetFaultCount(fault, 3);  // tries
    EXPECT_EQ(Writes(row[0], true), usual + (row[1].ends_with("-write") ? 2 : 0));
    board::SetFaultCount(fault, 0);
    const std::string said = log.Take();
    EXPECT_TRUE(support::Trimmed(said.substr(0, said.find_last_not_of('\n') + 1)).ends_with(row[3]))
        << said;
  }
}

}  // namespace
