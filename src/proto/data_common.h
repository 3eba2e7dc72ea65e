// `Data_Global` and `Data_Preset`: the parameter image, in which nearly all that the daemon knows
// about the device lives. Each array is the exact image of a region of the FPGA or of flash; a
// multi-byte value is little-endian. The bus receive, work and flag threads read and write the
// arrays freely: each byte is one plain access, and a value of several may be seen half changed.
#pragma once

#include <array>
#include <cstdint>

#include "mcucsingleton.h"
#include "mcucutil.h"
#include "proto/calc_shortcut.h"
#include "proto/data_common_tables.h"

namespace ZEPH_MCUC {

// Progress of a factory reset.
enum _en_reboot_type : uint8_t {
  EN_NOT_REBOOT = 0,
  EN_REBOOT_ING = 1,            // done, waiting for the reboot
  EN_REBOOT_WAIT_RET_PACK = 2,  // running
  EN_REBOOT_WAIT_SFT_DO = 3,    // asked for
  EN_REBOOT_NUM = 4,
};

inline constexpr uint16_t kDefaultCardSize = 128;

class Data_Global : public Singleton<Data_Global> {
 public:
  vu8 NormalBackupStatus;  // 1 in normal operation, 0 after a role write or a boot in a role
  vu8 PbufMorSMode;        // 0 master, 1 slave
  vu8 LEDConfigStatus;
  vu8 RWFPGATestflag;                 // 1 runs the FPGA self-test
  vu32 CalculateParaHandlerCnt;       // smart configurations that wait for the calculation
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

  vu8 RebootRF;                      // an _en_reboot_type
  vu8 ResetMode;                     // type of the factory reset
  vu8 FpgaOnlineFlag;                // 1 when the FPGA has loaded
  vu8 LocalAddr;                     // controller sort number
  vu8 sync_hwtime_flag;              // 1 after a client set the clock
  Relaxed<bool> FpgaParaLoadFinish;  // the boot restore has reached the FPGA
  vu8 ShortCfgReadRvStatus;  // 1 while a screen configuration has read the card size already
  vu16 GigaPhyLinkSta;       // link bits of the copper ports, bit n is port n
  vu8 OptModuleLinkSta;
  vu16 ReceiveCardWidth{kDefaultCardSize};  // pixels of one receiving card, until one was read
  vu16 ReceiveCardHeight{kDefaultCardSize};
  vu8 _gCorroentHighSpeed;  // 1 in high-speed correction mode
  vu8 LinkStateChanged;     // passes of the loop since a link changed

  // The tag of a store that has been saved to, and of stored tables.
  static constexpr std::array<uint8_t, 4> IsNewFlashTag = {0x39, 0xF6, 0xA5, 0x5A};

  // Whether a factory reset is far enough that every message is dropped unanswered.
  bool ReceivePathSilent() const {
    const uint8_t state = RebootRF;
    return state == EN_REBOOT_ING || state == EN_REBOOT_WAIT_RET_PACK;
  }
};

class Data_Preset : public Singleton<Data_Preset> {
 public:
  SharedBytes<392> BasicHardWareReg;  // hardware basic information, flash 0x1000
};

}  // namespace ZEPH_MCUC
