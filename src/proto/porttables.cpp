#include "proto/porttables.h"
#include "driverutil.h"
#include "mcucmutex.h"

namespace ZEPH_MCUC {
namespace {

// Held for the transfer of one range at a time.
constinit CMutexThread g_tableBus;

// Where a byte of the number table lies on the bus.
uint32_t NumberBus(uint32_t offset) {
  for (const NumberBlock& block : kNumberBlocks) {
    if (offset < block.offset + block.length) return block.bus + offset - block.offset;
  }
  return 0;
}

}  // namespace

int32_t WritePositions(uint32_t offset, std::span<const uint8_t> bytes) {
  const CMutexGuardT guard(g_tableBus);
  PortsTopoPara.write(offset, bytes);
  return DriverUtil::getInstance()->FPGAC5_WriteDataBlock(
      0, 0, kPositionBus + offset, static_cast<uint32_t>(bytes.size()), bytes.data());
}

int32_t RepeatPositions(std::span<uint8_t> buffer) {
  const CMutexGuardT guard(g_tableBus);
  PortsTopoPara.read(0, buffer);
  return DriverUtil::getInstance()->FPGAC5_WriteDataBlock(
      0, 0, kPositionBus, static_cast<uint32_t>(buffer.size()), buffer.data());
}

int32_t RefreshPositions(uint32_t offset, uint32_t length) {
  std::array<uint8_t, kPositionSize> bytes;
  const CMutexGuardT guard(g_tableBus);
  const int32_t result = DriverUtil::getInstance()->FPGAC5_ReadDataBlock(
      0, 0, kPositionBus + offset, length, bytes.data());
  if (result >= 0) PortsTopoPara.write(offset, {bytes.data(), length});
  return result;
}

int32_t RefreshNumbers(const NumberBlock& block, uint32_t length) {
  std::array<uint8_t, kNumberSize> bytes;
  const CMutexGuardT guard(g_tableBus);
  const int32_t result =
      DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, block.bus, length, bytes.data());
  if (result >= 0) NumberPartPara.write(block.offset, {bytes.data(), length});
  return result;
}

int32_t WriteNumbers(uint32_t offset, std::span<const uint8_t> bytes, const NumberBlock& block,
                     uint32_t length) {
  std::array<uint8_t, kNumberSize> sent;
  const CMutexGuardT guard(g_tableBus);
  NumberPartPara.write(offset, bytes);
  NumberPartPara.read(block.offset, {sent.data(), length});
  return DriverUtil::getInstance()->FPGAC5_WriteDataBlock(0, 0, block.bus, length, sent.data());
}

void WriteCardCounts(std::span<const uint16_t, kTablePorts> counts) {
  const CMutexGuardT guard(g_tableBus);
  for (std::size_t port = 0; port < kTablePorts; ++port) {
    const uint32_t offset = NumberRecordOffset(port);
    NumberPartPara.setU16(offset, counts[port]);
    for (uint32_t i = 0; i < 2; ++i) {
      // What fails is logged below; the layout goes on.
      DriverUtil::getInstance()->FPGAC5_WriteOneWord(0, 0, NumberBus(offset + i),
                                                     NumberPartPara[offset + i]);
    }
  }
}

}  // namespace ZEPH_MCUC
