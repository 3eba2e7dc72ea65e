// `DriverUtil`: the one gateway between the daemon and its hardware.
//
// A source a subject: the FPGA bus (driverutil.cpp), flash (driver_flash.cpp), cards
// (driver_cards.cpp), their files (driver_cardfiles.cpp), time, clock chip and status probe
// (driver_clock.cpp). All operations may be called from any thread. A result of 0 or above is
// success unless an operation says more; failures are logged and never stop the daemon.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mcucmutex.h"
#include "mcucutil.h"

namespace ZEPH_MCUC {

// Kinds of device behind the ports.
enum CardType : uint8_t { RecvCard = 1, MultiCard = 2, Distribute = 3, Launcher3D = 4 };

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

  // --- Receiving cards ------------------------------------------------------------------------
  // One packet each, without a retry. `DevType` is a CardType; a port is 0 to 15, 0xFF for all, a
  // board 0xFFFF for all. Reads take turns with FPGA reads; a write takes no lock.

  // Reads `Num` bytes of the card's register into `ParaPtr`. 0; a broadcast gives 0 and zeros
  // without a packet; -2 where the port has no link; else the platform's result.
  int32_t ReadCardPara(uint32_t RegStartAddr, uint16_t PortAddr, uint16_t BoardAddr, uint16_t Num,
                       uint8_t* ParaPtr, uint8_t DevType);
  // The same for board 0.
  int32_t ReadCardPara(uint32_t RegStartAddr, uint16_t PortAddr, uint16_t Num, uint8_t* ParaPtr,
                       uint8_t DevType);
  // Writes `Num` bytes. The platform's result.
  int32_t SendCardPara(uint32_t RegStartAddr, uint8_t PortAddr, uint16_t BoardAddr, uint16_t Num,
                       const uint8_t* ParaPtr, uint8_t DevType);
  // The same to all boards of all ports; always 0.
  int32_t SendCardPara(uint32_t RegStartAddr, uint16_t Num, const uint8_t* RecPara,
                       uint8_t DevType);

  // --- Configuration files of the cards (driver_cardfiles.cpp); work thread ---------------------
  // A file goes by its number, 0 to 31, in one folder; a higher number stands for the full device
  // path in `file_name`.

  // Writes `length` bytes at `begin_addr`, creates the file and its folder, truncates nothing. 0,
  // or 1 where it won't open.
  int32_t WriteRvFileToFalsh(const char* file_name, int save_rv_num, uint32_t begin_addr,
                             const uint8_t* write_data, uint16_t length);
  // 0 where the file is gone afterwards or was no regular one, -1 where it can't be looked at.
  int RemoveRvFile(const char* file_name, int delate_num);
  // Removes the numbers from `begin_num` up to `max_num` - 1; 0.
  int RemoveOtherRvFile(int begin_num, int max_num);
  // Sends the packs of a numbered file to all cards, with the pauses that belong to them, up to the
  // first pack that is too long or that the file is too short for. 0, also where there is no file.
  // In proto/data_cardfiles.cpp, since it reads what a file holds.
  int32_t LoadRvCfgToRecvCard(uint32_t load_index);
  // All bytes of a numbered file; none, logged, where it isn't there, can't be read, or is larger
  // than the registers for files, 8 MiB.
  std::vector<uint8_t> ReadRvFile(uint32_t load_index);
  // Reads `length` bytes at `addr` of the file at device path `buff`. 0, or errno.
  int32_t ReadBytesFromrecvcard(uint8_t FlashNum, uint32_t addr, uint32_t length, uint8_t* data,
                                const char* buff);
  // Sends one pack to all cards: in one packet, an empty one too, or where it is longer than 512
  // bytes in pieces of that size with 10 ms behind each and the rest. Then waits 15 ms and
  // `delay_ms`.
  void SendCardPack(uint32_t reg, std::span<const uint8_t> data, uint16_t delay_ms);

  // Gives the link bits of the ports, one bit each: copper, behind fiber 1, behind fiber 2.
  struct LinkWords {
    uint16_t copper = 0;
    uint16_t fiber1 = 0;
    uint16_t fiber2 = 0;
  };
  using LinkSource = LinkWords (*)();
  // Handed down at start, before the first card read; without it no port has a link.
  void SetLinkSource(LinkSource source) { m_linkSource = source; }

  // --- Time -----------------------------------------------------------------------------------

  // A field of the local time: 0 year since 2000, 1 month, 2 day, 3 hour, 4 minute, 5 second,
  // 6 weekday from 1 for Sunday; 0 for any other index.
  uint8_t ReadTime(uint8_t index);
  // All of them, of one moment, in the order of their indexes.
  std::array<uint8_t, 7> ReadTimes();
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
  Relaxed<LinkSource> m_linkSource{nullptr};

  template <class Transfer>
  int32_t Retry(const char* failure, Transfer transfer);
  void ProbeAfterFailure(const char* failure);

  Relaxed<bool> FpgaDownFlg{false};    // the FPGA was found down; stays set until the process ends
  CMutexThreadRecursive m_mutex_read;  // bus block reads and card reads, one at a time
};

// Reads `length` bytes of FPGA `index` through the ioctl channel. The last request's result, or -1.
int ReadFPGABusBlock_tx(uint32_t addr, uint32_t length, uint8_t* data, uint8_t index);

}  // namespace ZEPH_MCUC
