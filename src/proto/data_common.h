// `Data_Global` and `Data_Preset`: the parameter image, in which nearly all that the daemon knows
// about the device lives. Each array is the exact image of a region of the FPGA or of flash; a
// multi-byte value is little-endian. The bus receive, work and flag threads read and write the
// arrays freely: each byte is one plain access, and a value of several may be seen half changed.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "mcucsingleton.h"
#include "mcucutil.h"
#include "proto/calc_shortcut.h"
#include "proto/data_common_layout.h"
#include "proto/data_common_tables.h"
#include "proto/mosaic_advanced.h"

namespace ZEPH_MCUC {

// Progress of a factory reset.
enum _en_reboot_type : uint8_t {
  EN_NOT_REBOOT = 0,
  EN_REBOOT_ING = 1,            // done, waiting for the reboot
  EN_REBOOT_WAIT_RET_PACK = 2,  // running
  EN_REBOOT_WAIT_SFT_DO = 3,    // asked for
  EN_REBOOT_NUM = 4,
};

// What `RestoreDataFromFlash` brings back.
enum RestoreSource : uint8_t { kRestoreBasicInfo = 0, kRestoreFeature = 1 };

// What `SaveParaToFlash` stores.
enum SaveSelector : uint8_t { kSaveBasicInfo = 0, kSaveAll = 1 };

inline constexpr uint16_t kDefaultCardSize = 128;

// Globals of the boot restore: the size found at a first boot, and 1 during that boot.
inline constinit Relaxed<uint32_t> RecvCardSize_befor[2];
inline constinit vu8 factory_flag;

class Data_Global : public Singleton<Data_Global> {
 public:
  vu8 NormalBackupStatus;  // 1 in normal operation, 0 after a role write or a boot in a role
  vu8 PbufMorSMode;        // 0 master, 1 slave
  vu8 LEDConfigStatus;
  vu8 RWFPGATestflag;  // 1 runs the FPGA self-test
  // Smart configurations that wait to be laid out; `McuQMBThread::CalculateSenderParaHandler` does.
  vu32 CalculateParaHandlerCnt;
  SharedBytes<32> TmpCalcScreenPara;  // RAM copy of the head of the shortcut area
  SharedBytes<512>
      SendParameterReg;            // image of the feature registers; below 0x1F0 also of the FPGA
  SharedBytes<392> ScreenParaReg;  // screen parameters; the first 15 bytes are stored
  SharedBytes<512> HardwareScreenGenReg;  // pattern generator

  // What was last reported to the service daemon.
  SharedBytes<16> SendRedundStatustoOWD_buff;
  SharedBytes<4> SendRedundtoOWD_buff;
  SharedBytes<4> SendNetLinktoOWD_buff;
  SharedBytes<1> fiberlink_buff;
  SharedBytes<1> fiberRedund_buff;
  SharedBytes<1> fiberCopyStatus_buff;
  SharedBytes<2> FiberToNetStatus_buff;
  SharedBytes<2> Fiber1BelowLinkStatus_buff;  // bit n is port n behind fiber 1
  SharedBytes<2> Fiber2BelowLinkStatus_buff;
  SharedBytes<6> SendOptRedundtoOWD_buff;

  vu8 RebootRF;                       // an _en_reboot_type
  vu8 ResetMode;                      // type of the factory reset
  vu8 FpgaOnlineFlag;                 // 1 when the FPGA has loaded
  vu8 LocalAddr;                      // controller sort number
  vu8 sync_hwtime_flag;               // 1 after a client set the clock
  Relaxed<bool> OptToNetEnableOnce;   // a client asked for all reports afresh
  Relaxed<bool> mbus_connect_status;  // the service daemon has been seen on the bus
  Relaxed<bool> FpgaParaLoadFinish;   // the boot restore has reached the FPGA
  vu8 ShortCfgReadRvStatus;  // 1 while a screen configuration has read the card size already
  vu16 GigaPhyLinkSta;       // link bits of the copper ports, bit n is port n
  vu8 OptModuleLinkSta;
  vu16 ReceiveCardWidth{kDefaultCardSize};  // pixels of one receiving card, until one was read
  vu16 ReceiveCardHeight{kDefaultCardSize};
  vu8 _gCorroentHighSpeed;          // 1 in high-speed correction mode
  vu8 LinkStateChanged;             // passes of the loop since a link changed
  vu8 ChangeParaForKeepWarmUpMode;  // the warm-up setting, for whoever starts one
  vu8 ParaForKeepWarmUpModeTimeData;

  // The tag of a store that has been saved to, and of stored tables.
  static constexpr std::array<uint8_t, 4> IsNewFlashTag = {0x39, 0xF6, 0xA5, 0x5A};

  // --- Feature image and FPGA in step (data_featurebus.cpp); any thread -------------------------

  // Puts `bytes` into the image at `offset` and onto the FPGA bus, in one step for whoever
  // refreshes the image. 0, or -1 where the bus failed; the image then has them all the same.
  int32_t WriteFeatureBus(uint32_t offset, std::span<const uint8_t> bytes);
  // Takes `length` bytes of the image from the FPGA. 0; -1 on failure, and the image is as before.
  // What is taken from one that has not loaded yet is for reads alone: see `KeepOwnImage`.
  int32_t RefreshFromFeatureBus(uint32_t offset, uint32_t length);
  // Drops what a refresh has taken from an FPGA that has not had the image yet, in front of all
  // that changes or stores the image: the stored settings would go otherwise.
  void KeepOwnImage() {
    const CMutexGuardT guard(m_featureBus);
    DropForeignBytes();
  }
  // Puts what a client writes into the image. Until the end of the write a refresh leaves these
  // bytes alone, since the FPGA doesn't hold them yet, or never does. Work thread.
  void BeginFeatureWrite(uint32_t offset, std::span<const uint8_t> bytes);
  void EndFeatureWrite();
  // Takes the device's role back, in the image alone. A refresh leaves that so until the FPGA is
  // given a role, by a block of the image or by a client.
  void EndRole();
  // Fills the image from what was stored. With the FPGA online the image is ahead of the FPGA from
  // here on until a block of it has gone there: a refresh in between reads and takes nothing.
  void LoadFeatureImage(std::span<const uint8_t, 512> image);
  // Sends all of the image that the FPGA holds, 472 bytes from 0x18 on. 0, or -1.
  int32_t SendFeatureImage();
  // Runs `change` on the image and sends what a layout touches of it, 0x1AE bytes from 0x18 on.
  template <class Change>
  void CommitFeatureImage(Change change) {
    const CMutexGuardT guard(m_featureBus);
    DropForeignBytes();
    change();
    // What fails is logged below; the image stays, so a later block brings the FPGA in line.
    static_cast<void>(SendImageBlock(0x1AE));
  }

  // --- Store (data_store*.cpp, the first reading in data_restore.cpp); any thread ----------------
  // None reports a failure but by the log, and a failed step never stops the next.

  // Stores what a single write does not: the images and tables, then "sync". `sel` as above; any
  // other value stores nothing.
  void SaveParaToFlash(uint8_t sel);
  // Marks the basic area as valid and stores its first 16 bytes.
  void SaveBasicParaToFlash();
  // Writes `Length` bytes in pages of 256, the rest last. The last write's result.
  int32_t CopyConstDataToFlash(uint32_t SpiAddress, const uint8_t* wrindata, uint32_t Length);
  // Reads `into.size()` bytes, 5120 at most, of the source `sel`; they stay where they can't be
  // read.
  void RestoreDataFromFlash(uint8_t sel, std::span<uint8_t> into);
  // Two values, width and height in pixels. 0 where both are stored and not 0, else -1; a card size
  // of 0 then reads as 128.
  int Read_ScreenSize_FromFlash(uint32_t* ScreenSize);
  int Read_CardSize_FromFlash(uint32_t* CardSize);
  // Stores the card size; 0, or -1.
  int Write_CardSize_toFlash();
  // Stores a new output size in pixels and counts the change.
  void ChangeOutScreenPara(uint32_t width, uint32_t heigh);
  // Leaves a line for a service engineer where the screen's width or height is 0.
  void DebugForScreenZero(uint16_t use_point, uint32_t addrs, const char* despString);

  // --- Ports (data_store_screen.cpp) ------------------------------------------------------------
  // Values of port 0 to 15 in the feature image, in pixels; offset Y for ports 0 to 9. Any other
  // port changes nothing. None touches the FPGA.

  void PortWidthUpdate(uint8_t port, uint16_t value);
  void PortHeightUpdate(uint8_t port, uint16_t value);
  void PortOffsetXUpdate(uint8_t port, uint16_t value);
  void PortOffsetYUpdate(uint8_t port, uint16_t value);
  void PortMorSUpdate(uint8_t port, uint8_t value);
  // Makes every port master (0) or backup, in image, FPGA and flash.
  void SendMasterOrBackup(uint8_t MasterSlaveState);

  // --- Layout (data_layout*.cpp) -----------------------------------------------------------------

  // Asks the first linked port's first card for its size, into `ReceiveCardWidth` and
  // `ReceiveCardHeight`. 0 where it answered with a size; else -1, and the size is 128 by 128 where
  // no link or no answer came, as before where the answer was 0. Any thread; waits for the card.
  int GetRecvCardSize_EnvNew();
  // Whether a wall lies within the limits of a device: 0, or an invalid message. Nothing is
  // changed.
  int32_t CheckParaOfSender(const SmartConfig& config);
  // Takes rows by columns of cards as the screen's size, into image, FPGA and flash; work thread.
  void CalculateParaGetSreenSize(const SmartConfig& config);
  // Lays the wall out on the ports: image, tables, FPGA and flash. A wall that can't be laid out is
  // logged, and the image as it stands is sent and saved. Flag thread, and at a first boot.
  void CalculateParaOfSenderInMosaicMode(const SmartConfig& config);
  // The same for ports placed one by one; work thread. The second asks for the card size and gives
  // 0, or 0x80005011 where the ports carry too many cabinets, and then nothing changes.
  void AdvCalcParaGetSreenSize(const AdvancedPorts& ports);
  int32_t AdvCalcParaOfSenderInMosaicMode(const AdvancedPorts& ports);
  // Fills the position table of `port` and writes it out; 0.
  uint8_t AdvCordinateCalc(std::size_t port, const AdvancedPort& record);

  // --- Boot restore (data_restore.cpp); start, flag and work thread ----------------------------

  // Flash into the arrays and, once the FPGA is online, the arrays into the FPGA.
  void RestoreFPGA();

  // --- Identity (data_identity.cpp) -------------------------------------------------------------

  // At start: makes flash and environment store agree on the serial number.
  void SNTransfer();
  // At a read, on the bus receive thread: the same check; `read_sn` takes the 8 bytes that the
  // environment holds, and keeps what it has where the environment holds none.
  void GetEnvSNPara(uint8_t* read_sn);
  // `read_id` takes the 2 bytes of the model, low byte first, where the environment names one.
  void GetEnvModelIDPara(uint8_t* read_id);
  // Hexadecimal text to (length + 1) / 2 bytes; 0.
  int ASCII2Hex(const uint8_t* code_char, int length, uint8_t* code_int);
  // At start: reads the basic area and renews its fixed bytes.
  void ReadHardwareInfo();

  // --- Configuration files of the cards (data_cardfiles.cpp); work thread -----------------------
  // Each sends the packs of one file to all cards, with the pauses that belong to it, and ends at
  // the first pack that is too long. `DriverUtil::LoadRvCfgToRecvCard` sends a file from disk.

  // A file of the image in flash; what would lie outside the image ends it. 0.
  int32_t LoadRvCfgFromFlash(uint8_t number);
  // A package file at device path `buff`, which has a form of its own. 0, or -1 where a package is
  // too long, doesn't move on, or can't be read.
  int LoadRecvCardFile(const char* buff);

  // --- Factory reset (data_factory.cpp); flag thread --------------------------------------------

  // Prepares the store that the device has after its next reboot; `type` says what is kept. 0.
  int ReturnFactory(uint8_t type);
  // Sets the default static address. 0, or the failure of the last step.
  int SetIPVersion();

  // --- Feature writes (data_feature.cpp); work thread -------------------------------------------

  // Everything that a write of `len` bytes at the feature register `addr` sets off.
  void DoWriteFeatureInfo(uint32_t addr, uint16_t len, const uint8_t* data);

  // --- Colour (data_colour.cpp); work thread ----------------------------------------------------
  // What the FPGA doesn't take is logged below and nothing else is done about it.

  // Loads the gamma tables of a mode into the FPGA and sets its switches: 0x58 is HDR10, 0x78 HLG,
  // both calculated from the `ParaTable` slots; any other is the default mode.
  void SendCardHDRProcess(uint8_t HDRType);
  // Loads the stored tables, of 12 bits for 0x78 and else of 10, with the built-in one for each
  // colour that has none. With another mode than the default in `PbufHDRType` nothing is loaded.
  void SendGammaToFpga(uint8_t deep_color_mode);
  // Calculates both colour matrices from the slots and loads them. `Mode` is 0.
  void PictureQualityProcess(uint8_t Mode);
  // Takes the screen's size and the phases into `gHardwareScreenGenReg`, sends it to the FPGA and
  // lets it take effect there. Blocks of no width or height are logged and nothing is sent.
  void ScreenPatternGenProcess(SharedBytes<512>* gHardwareScreenGenReg);

  // --- Reports (data_report.cpp); any thread ----------------------------------------------------
  // Each sends one frame at once; a failure is logged and the report is lost.

  void SendDatetoOWD(uint32_t reg, const uint8_t* data, uint16_t length);
  // The sending card is ready; once per process.
  void SendFlag_quivordload();
  void SendRebootMsgtoOWD(const uint8_t* data, uint16_t length);
  void SendRVCardWHtoOWD();
  void SendFiberLinkInfo();
  // Reports `length` bytes, 8 at most, that stand at FPGA address `address`; what can't be read
  // counts as zeros.
  void SendStatusToOWD(uint32_t address, uint16_t length);
  // Roles of ports 1 to 4, 5 to 8, 9 to 16, read from the FPGA into the image.
  void SendMStoOWD1_4();
  void SendMStoOWD5_8();
  void SendMStoOWD9_16();
  void SendC8toKye();
  // Further ones, which nothing sends yet: the role; redundancy of ports 1 to 4, 5 to 8, 9 to 16;
  // the bandwidth; card size and local time (as `DriverUtil::ReadTimes`) for the video application;
  // anything for the video daemon.
  void Send9DtoOWD();
  void SendRedundtoOWD1_4();
  void SendRedundtoOWD5_8();
  void SendRedundtoOWD9_16();
  void SendBandWidthInfo();
  void SendCardSizetoKye();
  void SendTimetoKye();
  void SendDatetoMoirad(uint32_t reg, const uint8_t* data, uint16_t length);
  // Reports the roles of all ports where they changed since the last pass; flag thread.
  void SendRedundStatustoOWD();

  // Whether a factory reset is far enough that every message is dropped unanswered.
  bool ReceivePathSilent() const {
    const uint8_t state = RebootRF;
    return state == EN_REBOOT_ING || state == EN_REBOOT_WAIT_RET_PACK;
  }

 private:
  void BootRecover();
  // Sends `length` bytes of the image, 472 at most, from 0x18 on. 0, or -1.
  int32_t SendImageBlock(uint32_t length) MCUC_REQUIRES(m_featureBus);

  // Whether a refresh leaves byte `at` of the image as it is.
  bool StaysInRefresh(uint32_t at) const MCUC_REQUIRES(m_featureBus);
  void DropForeignBytes() MCUC_REQUIRES(m_featureBus);

  // Orders what takes the feature image from the FPGA with what gives it to the FPGA, so that a
  // refresh never undoes a write that is on its way. Held for one bus transfer at a time.
  CMutexThread m_featureBus;
  bool m_imageAhead MCUC_GUARDED_BY(m_featureBus) = false;  // see `LoadFeatureImage`
  bool m_imageWaits MCUC_GUARDED_BY(m_featureBus) = false;  // for the FPGA to load
  // The image in front of what was taken from an FPGA that has not loaded yet, once some was.
  std::optional<std::array<uint8_t, 512>> m_ownImage MCUC_GUARDED_BY(m_featureBus);
  bool m_roleAhead MCUC_GUARDED_BY(m_featureBus) = false;   // see `EndRole`
  uint32_t m_writeBegin MCUC_GUARDED_BY(m_featureBus) = 0;  // see `BeginFeatureWrite`
  uint32_t m_writeEnd MCUC_GUARDED_BY(m_featureBus) = 0;
};

class Data_Preset : public Singleton<Data_Preset> {
 public:
  SharedBytes<392> BasicHardWareReg;  // hardware basic information, flash 0x1000
};

}  // namespace ZEPH_MCUC
