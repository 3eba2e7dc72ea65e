#include "stub/mcuprocessthread.h"

#include <platform/system.h>

#include "mcuctrace.h"
#include "stub/stubutilthread.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kMostWaiting = 32;
constexpr uint64_t kPause_us = 100;

}  // namespace

int32_t McuProcessThread::Init() {
  const auto body = [](void* self) -> void* {
    static_cast<McuProcessThread*>(self)->doProcess();
    return nullptr;
  };
  return StartDetachedThread("McuProcessThread", "quivord-work", body, this, &m_hMcuProcessThread);
}

void McuProcessThread::addMessageToList(MCUProcessDataBlock* block) {
  std::unique_ptr<MCUProcessDataBlock> owned(block);
  while (true) {
    {
      const CMutexGuardT guard(m_processLstMenux);
      if (m_messageList.size() < kMostWaiting) {
        m_messageList.push_back(std::move(owned));
        m_waiting = static_cast<uint32_t>(m_messageList.size());
        return;
      }
    }
    platform::SleepMicroseconds(kPause_us);
  }
}

bool McuProcessThread::RunFirst() {
  if (m_waiting == 0) return false;
  const CMutexGuardT guard(m_processLstMenux);
  m_job(m_messageList.front().get());
  m_messageList.pop_front();
  m_waiting = static_cast<uint32_t>(m_messageList.size());
  platform::SleepMicroseconds(kPause_us);
  return true;
}

void McuProcessThread::doProcess() {
  MCUC_LOG(kLogDebug, "doProcess process thread begin:");
  PollPause pause;
  while (!m_bExitMcuProcessThread) {
    if (RunFirst()) pause.Found();
    pause.Wait();
  }
  MCUC_LOG(kLogDebug, "doProcess process thread exit.");
}

}  // namespace ZEPH_MCUC
