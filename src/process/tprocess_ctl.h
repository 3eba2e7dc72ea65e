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

 private:
  static constexpr std::size_t kRows = 200;

  Tprocess_ctl();

  Fprocess_cmd process_root[kRows];
  std::map<uint32_t, Fprocess_cmdMap> m_mapProcess;  // fixed after `initialize`
  CMutexThreadRecursive m_mutex;                     // one handler at a time
};

}  // namespace ZEPH_MCUC
