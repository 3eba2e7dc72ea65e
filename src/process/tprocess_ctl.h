// `Tprocess_ctl`: which handler carries out which kind of deferred work, and the reports to the
// service daemon.
#pragma once

#include <cstdint>
#include <map>

#include "mcucmutex.h"
#include "mcucutil.h"
#include "stub/mcuprocessdatablock.h"

namespace ZEPH_MCUC {

// A row of the handler table; a null `cmd_str` ends the table.
struct Fprocess_cmd {
  uint16_t largelab = 0;
  uint16_t smalllab = 0;
  _ValueChanged_Table process_key = HwBasicinfoKey;
  const char* cmd_str = nullptr;
  int (*called_fun)(int length, char* data) = nullptr;
};

struct Fprocess_cmdMap {
  uint32_t NO = 0;
  Fprocess_cmd* cmd = nullptr;
};

class Tprocess_ctl {
 public:
  static Tprocess_ctl* getInstance();

  // Fills the map from key to handler; true. Once, before the first block is queued.
  bool initialize();

  // Runs the handler of `block`'s key; a key without a row is dropped. Always 0. Work thread.
  int32_t onProcessDealwith(MCUProcessDataBlock* block);

  // The service daemon has been seen on the bus; never goes back.
  static Relaxed<bool>& mbus_connect_status();
  // A client asked for all reports afresh.
  static Relaxed<bool>& OptToNetEnableOnce();

  // --- The loop's steps (flag thread) -----------------------------------------------------------

  // A factory reset's next step, where one is under way.
  void RebootAfterRF();

  // Change detectors: each polls a status in the FPGA, compares it with what was last reported and
  // reports a change. What can't be read counts as it reads, 0.
  void SendRedundtoOWD();
  void SendNetLinktoOWD();
  void SendFiberLinktoOWD();
  void SendFiberBelowLinkStatustoOWD();
  void SendFiberRedundtoOWD();
  void SendFiberToNetStatustoOWD();
  void SendFiberCopyStatustoOWD();
  void SendGenLockLinktoOWD();
  // Asks for the card size some passes after a link changed, and reports it.
  void SendRecvCardParaToOwdByLinkChange();

  // Fits the source into the preview window where its size has changed since the last update.
  void Monitorprcoess();

  // Single reports, each read from the FPGA and sent at once.
  void SendRedundtoOWD1_4();
  void SendRedundtoOWD5_8();
  void SendRedundtoOWD9_16();
  void SendNetLinktoOWD1_4();
  void SendNetLinktoOWD5_8();
  void SendNetLinktoOWD9_16();
  // The same, and nothing sends them yet. The last two name the same register.
  void SendMStoOWD1_4();
  void SendMStoOWD5_8();
  void SendMStoOWD9_16();
  void Send9DtoOWD();
  void SendBandWidthInfo();
  void SendFiberLinkInfo();
  void SendFiberRedundInfo();

 private:
  static constexpr std::size_t kRows = 200;

  Tprocess_ctl();

  Fprocess_cmd process_root[kRows];
  std::map<uint32_t, Fprocess_cmdMap> m_mapProcess;  // fixed after `initialize`
  CMutexThreadRecursive m_mutex;                     // one handler at a time
};

}  // namespace ZEPH_MCUC
