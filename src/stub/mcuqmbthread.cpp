#include "stub/mcuqmbthread.h"

#include <platform/system.h>

#include <algorithm>

#include "mcuctrace.h"
#include "stub/stubutilthread.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint64_t kAfterError_us = 5000;

template <void (McuQMBThread::*Body)()>
void* ThreadProc(void* self) {
  (static_cast<McuQMBThread*>(self)->*Body)();
  return nullptr;
}

void Release(mbus_msg_t* msg, void* data) {
  mbus_que_detach(msg, data);  // nothing can be done about a message that can't be released
}

}  // namespace

McuQMBThread::McuQMBThread(RequestEntry request, SilentEntry silent)
    : m_request(request), m_silent(silent), m_vectorUIIDs{TaskId(cardsel_bit_self(), task::kOwd)} {}

int32_t McuQMBThread::Init() {
  MCUC_LOG(kLogInfo, "McuQMBThread init");
  return CreateThread();
}

int32_t McuQMBThread::CreateThread() {
  struct Start {
    const char* name;
    void* (*body)(void*);
    pthread_t* thread;
  };
  const Start starts[] = {
      {"quivord-bus", ThreadProc<&McuQMBThread::MbusMsg>, &m_hMbusThread},
      {"quivord-recv", ThreadProc<&McuQMBThread::RecvMsg>, &m_hRecvThread},
      {"quivord-flag", ThreadProc<&McuQMBThread::FlagMsg>, &m_hFlagThread},
  };
  for (const Start& start : starts) {
    if (const int32_t result =
            StartDetachedThread("McuQMBThread", start.name, start.body, this, start.thread);
        result != 0) {
      return result;
    }
  }
  return 0;
}

void McuQMBThread::Release() {
  m_bExitMbusThread = true;
  m_bExitRecvThread = true;
  m_bExitFlagThread = true;
}

void McuQMBThread::MbusMsg() {
  while (!m_bExitMbusThread) mbus_loop_wait(this, ipc_event_deal);
}

// Runs on the bus wait thread: the message is only queued.
int32_t McuQMBThread::ipc_event_deal(mbus_sess_t* /*session*/, void* /*self*/, void* data,
                                     int32_t /*length*/) {
  auto* msg = static_cast<mbus_msg_t*>(data);
  if (msg == nullptr) {
    MCUC_LOG(kLogError, "=== ipc_event_deal ===Mbus, the data is null, return.");
    return kInvalidMessage;
  }
  const int32_t result = mbus_enq(&msg);
  if (result >= 0) return result;
  MCUC_LOG(kLogError, "=== ipc_event_deal ===Mbus, Data into queue invalid, return.");
  ZEPH_MCUC::Release(msg, nullptr);
  return kInvalidMessage;
}

void McuQMBThread::RecvMsg() {
  while (!m_bExitRecvThread) {
    ipc_event_deal_th();
    platform::SleepMicroseconds(kAfterError_us);
  }
}

// Serves message after message and comes back only with an error, or when the thread is to end.
int32_t McuQMBThread::ipc_event_deal_th() {
  PollPause pause;
  while (!m_bExitRecvThread) {
    mbus_msg_t* msg = nullptr;
    if (mbus_deq(&msg) < 0) {
      pause.Wait();
      continue;
    }
    pause.Found();
    if (const int32_t result = DealMessage(msg); result != 0) return result;
  }
  return 0;
}

int32_t McuQMBThread::DealMessage(mbus_msg_t* msg) {
  if (m_silent()) {
    MCUC_LOG(kLogError, "....... Device Reset To Factory ing...... , return.");
    if (msg != nullptr) ZEPH_MCUC::Release(msg, nullptr);
    return kInvalidMessage;
  }
  if (msg == nullptr) {
    MCUC_LOG(kLogError, "=== ipc_event_deal ===Recv, msg is invalid, return.");
    return kInvalidMessage;
  }
  void* data = mbus_que_attach(msg);
  if (data == nullptr) {
    MCUC_LOG(kLogError, "=== ipc_event_deal ===Recv, boday is invalid, return.");
    ZEPH_MCUC::Release(msg, nullptr);
    return kInvalidMessage;
  }
  DealData(static_cast<const uint8_t*>(data));
  ZEPH_MCUC::Release(msg, data);
  return 0;
}

void McuQMBThread::DealData(const uint8_t* data) {
  ihead_t head;
  Flabel_t label;
  std::memcpy(&head, data, sizeof(head));
  std::memcpy(&label, data + sizeof(head), sizeof(label));
  if (label.label.large != LABEL_MSG) return;
  switch (label.label.small) {
    case LABEL_MSG_LOCAL:
    case LABEL_MSG_NET:
      dealDataBlockNew(&head, &label, data + kEnvelopeSize);
      break;
    case LABEL_MSG_IO:
      MCUC_LOG(kLogInfo, "Mbus, data interrupt...");
      break;
    default:
      break;
  }
}

void McuQMBThread::NotePeer(uint32_t uiid) {
  const CMutexGuardT guard(m_uiidMutex);
  // A peer that asks now has mostly asked before, and lately: look from the end.
  if (std::find(m_vectorUIIDs.rbegin(), m_vectorUIIDs.rend(), uiid) != m_vectorUIIDs.rend()) return;
  m_vectorUIIDs.push_back(uiid);
  MCUC_LOG(kLogInfo, "recv new uiid = " << uiid << " size = " << m_vectorUIIDs.size());
}

std::vector<uint32_t> McuQMBThread::SeenPeers() {
  const CMutexGuardT guard(m_uiidMutex);
  return m_vectorUIIDs;
}

}  // namespace ZEPH_MCUC
