// The glue object: starts the threads, holds them, and joins transport to what lies above it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "mcucmutex.h"
#include "stub/fpgareportthread.h"
#include "stub/mcucmessagestruct.h"
#include "stub/mcuprocessthread.h"
#include "stub/mcuqmbthread.h"

namespace ZEPH_MCUC {

class StubUtil {
 public:
  // Serves one request for a kind of device; its result is only logged about.
  using RequestEntry = int32_t (*)(QMB_proto3rd*);

  // What lies above transport and is called from it. `request` is indexed by device type; null
  // where no device of the kind is served.
  struct Wiring {
    std::array<RequestEntry, 5> request{};
    McuProcessThread::JobEntry job = nullptr;
    McuQMBThread::SilentEntry silent = nullptr;
    FpgaReportThread::TestEntry selfTestOn = nullptr;
  };

  static StubUtil* getInstance();

  // The start sequence. False at the first thread object that can't start; those behind it stay
  // out.
  bool initialize();

  // Hands down what transport calls, and makes the queue and the front end, without their threads.
  // `initialize` does it first; a program that runs no threads may do it alone.
  void wire(const Wiring& wiring);

  // Serves one request and sends its one reply; bus receive thread. The entry point's result.
  int32_t onDataRecvFromQMBNew(QMB_proto3rd* msg);

  // Sends a message that the daemon originates; any thread.
  int32_t SendMsg(QMB_proto3rd msg);

  // Appends `block` to the work queue, which owns it from now on; waits where there is no room.
  void addMessageToList(MCUProcessDataBlock* block);

  // Writes `version` into the environment store as this program's.
  void SetQuivordVersion(const char* version);
  // Takes the root file system's version for it. 0, or -1 where the store can't be opened.
  int SetEnvQuivordVerToRootfs();

  McuProcessThread* processThread() { return m_McuProcessThreadPtr.get(); }

 private:
  bool creatQMBComm();
  bool creatProcess();
  bool creatFpgaReport();
  bool checkSelfDeviceRequestNew(QMB_proto3rd* msg);

  CMutexThread m_stubMenux;  // one request at a time
  Wiring m_wiring;           // fixed once the threads run
  std::shared_ptr<McuQMBThread> m_McuQMBThreadPtr;
  std::shared_ptr<McuProcessThread> m_McuProcessThreadPtr;
  std::shared_ptr<FpgaReportThread> m_FpgaReportThreadPtr;
  uint8_t m_DeviceSequseID = 0;  // this device's address in the third protocol
};

}  // namespace ZEPH_MCUC
