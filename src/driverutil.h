// `DriverUtil`: the one gateway between the daemon and its hardware.
//
// A source a subject: the FPGA bus (driverutil.cpp), flash (driver_flash.cpp), time, clock chip and
// status probe (driver_clock.cpp). All operations may be called from any thread. A result of 0 or
// above is success unless an operation says more; failures are logged and never stop the daemon.
#pragma once

#include <cstddef>
#include <cstdint>

#include "mcucmutex.h"
#include "mcucutil.h"

namespace ZEPH_MCUC {

class DriverUtil {
 public:
  static DriverUtil* getInstance();

  // Opens the flash stores; true where they are ready. Called once, by `main`.
  bool initialize();
  // Does nothing; true.
  bool unInitialize() { return true; }

  // --- FPGA bus -------------------------------------------------------------------------------
  // An address names a byte-wide cell by its low 24 bits; data move as bytes, low byte first.
  // Each transfer is tried three times. Once the FPGA is known to be down every call fails at once.

  // One transfer of `length` bytes to or from FPGA 1, or to FPGA 0. 0, or -1 on failure.
  int32_t WriteFPGABusBlock(uint32_t addr, const uint8_t* data, uint32_t length);
  int32_t ReadFPGABusBlock(uint32_t addr, uint8_t* data, uint32_t length);
  int32_t Write_C4_FPGABusBlock(uint32_t addr, const uint8_t* data, uint32_t length);

  // One byte.
  int32_t WriteFPGABusOneWord(uint32_t addr, uint8_t data);
  int32_t ReadFPGABusOneWord(uint32_t addr, uint8_t* data);

  // The same with `dev` and `cmd`, which are ignored. The read gives the byte, 0 after a failure.
  int32_t FPGAC5_WriteOneWord(uint8_t dev, uint8_t cmd, uint32_t addr, uint8_t data);
  uint8_t FPGAC5_ReadOneWord(uint8_t dev, uint8_t cmd, uint32_t addr);

  // Any length, in transfers of at most 1024 bytes; the first failure ends it. -1 for no bytes.
  int32_t FPGAC5_WriteDataBlock(uint8_t dev, uint8_t cmd, uint32_t addr, uint32_t length,
                                const uint8_t* data);
  int32_t FPGAC5_ReadDataBlock(uint8_t dev, uint8_t cmd, uint32_t addr, uint32_t length,
                               uint8_t* data);

  // --- Flash ----------------------------------------------------------------------------------
  // An address is a byte of a store of 16 MiB; `data` holds `length` bytes. Each call is tried
  // three times and gives 0, or the platform's last failure; a failed read leaves `data` as it was.
  // `FlashNum` is ignored.

  int32_t ReadBytesFromFlash(uint32_t addr, uint32_t length, uint8_t* data);
  int32_t ReadBytesFromFlash(uint8_t FlashNum, uint32_t addr, uint32_t length, uint8_t* data);
  int32_t WriteDataToFlash(uint32_t addr, uint32_t length, const uint8_t* data);
  int32_t WriteDataToFlash(uint8_t FlashNum, uint32_t addr, uint32_t length, const uint8_t* data);
  // Writes `n` bytes, whatever pages they cross.
  int32_t PageProgram(uint8_t FlashNum, uint32_t addr, uint16_t n, const uint8_t* data);
  // The same on the factory store and on the copy that a factory reset prepares.
  int32_t WriteDataToFactoryFlash(uint8_t FlashNum, uint32_t addr, uint32_t length,
                                  const uint8_t* data);
  int32_t WriteDataToFactoryTmpFlash(uint32_t addr, uint32_t length, const uint8_t* data);
  // Writes 4096 zeros.
  int32_t Erase32kBlock(uint32_t StartAddress);

  // --- Time -----------------------------------------------------------------------------------

  // A field of the local time: 0 year since 2000, 1 month, 2 day, 3 hour, 4 minute, 5 second,
  // 6 weekday from 1 for Sunday; 0 for any other index.
  uint8_t ReadTime(uint8_t index);
  // Set fields of the clock and leave the others. `year` counts from 2000, `month` from 1. A clock
  // that may not be set stays; nothing tells the caller. `WriteWeekday` changes nothing.
  void WriteTime(uint8_t hours, uint8_t minutes, uint8_t seconds);
  void WriteDate(uint8_t year, uint8_t month, uint8_t date);
  void WriteWeekday(uint8_t day);

  // --- Status probe and clock chip ------------------------------------------------------------

  // Runs `cmd` and reads its first line as a number; no line reads as 0. -1 on failure.
  int ReadFpgaStatus(const char* cmd);

  // The first line that `cmd` prints, without its line end, into `result` of `size` bytes; 0. -1
  // where it can't be run or the line is empty. No line at all leaves `result` alone.
  static int run_command_return_string(const char* cmd, char* result, std::size_t size);

  // Cuts a text at its last line feed, then at its last carriage return.
  static void chomp(char* s);

  // Programs output 0 or 1 of the clock chip to `fre` Hz. 0, or -1 (0xFF) on failure.
  int8_t SetClock(uint8_t output, uint32_t fre);

 private:
  template <class Transfer>
  int32_t Retry(const char* failure, Transfer transfer);
  void ProbeAfterFailure(const char* failure);

  Relaxed<bool> FpgaDownFlg{false};    // the FPGA was found down; stays set until the process ends
  CMutexThreadRecursive m_mutex_read;  // bus block reads and card reads, one at a time
};

// Reads `length` bytes of FPGA `index` through the ioctl channel. The last request's result, or -1.
int ReadFPGABusBlock_tx(uint32_t addr, uint32_t length, uint8_t* data, uint8_t index);

}  // namespace ZEPH_MCUC
