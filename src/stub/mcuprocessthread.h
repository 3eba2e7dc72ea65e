// The work queue: what takes too long for the bus receive thread waits here and runs on a thread of
// its own, one job at a time, in order.
#pragma once

#include <list>
#include <memory>

#include "mcucmutex.h"
#include "mcucutil.h"
#include "stub/mcuprocessdatablock.h"

namespace ZEPH_MCUC {

class McuProcessThread {
 public:
  // Carries out one block; its result is dropped. Handed down at start.
  using JobEntry = int32_t (*)(MCUProcessDataBlock*);

  explicit McuProcessThread(JobEntry job) : m_job(job) {}
  ~McuProcessThread() { Release(); }

  // Starts the thread. 0, or the general failure code.
  int32_t Init();
  void Release() { m_bExitMcuProcessThread = true; }

  // Appends `block`, which is the queue's from now on. At most 32 blocks wait; with no room the
  // caller waits, as it does while a job runs. Any thread but the work thread.
  void addMessageToList(MCUProcessDataBlock* block);

  // The thread's body: takes blocks until `Release`.
  void doProcess();

  // Runs the first block, if there is one; false where the list is empty. `doProcess` calls it; a
  // program without the thread may call it in its place.
  bool RunFirst();

 private:
  const JobEntry m_job;
  pthread_t m_hMcuProcessThread{};
  Relaxed<bool> m_bExitMcuProcessThread{false};
  Relaxed<uint32_t> m_waiting{0};  // blocks in the list, to be asked without the lock

  // Held through a job as well, so a second write waits in `addMessageToList` until the job ends.
  CMutexThreadRecursive m_processLstMenux;
  std::list<std::unique_ptr<MCUProcessDataBlock>> m_messageList MCUC_GUARDED_BY(m_processLstMenux);
};

}  // namespace ZEPH_MCUC
