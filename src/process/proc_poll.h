// `Proc_Poll`: the brightness plans' share of the polling loop.
#pragma once

#include <cstdint>

#include "mcucsingleton.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

class Proc_Poll : public Singleton<Proc_Poll> {
 public:
  // One pass of the loop, every 200 ms; flag thread. The first one loads what is stored. All
  // periods count passes: what is called a second here is five of them.
  static void AutoBrightnessadjust();

  // The warm-up setting that a client made last, 0 before; any thread. Nothing starts one yet.
  static vu8& ChangeParaForKeepWarmUpMode() {
    return Data_Global::getInstance()->ChangeParaForKeepWarmUpMode;
  }
  static vu8& ParaForKeepWarmUpModeTimeData() {
    return Data_Global::getInstance()->ParaForKeepWarmUpModeTimeData;
  }

 private:
  static void TickSecond();

  // The flag thread's.
  static uint32_t m_TimesCnt;  // passes, from 2 to 100 once it has come round
  static bool m_firstUp;
};

}  // namespace ZEPH_MCUC
