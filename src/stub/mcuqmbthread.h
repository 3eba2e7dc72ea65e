// The bus front end: takes messages from the bus, unwraps and checks them, hands requests on, and
// turns finished messages back into bytes. Owns the bus wait, the bus receive and the flag thread.
#pragma once

#include <platform/mbus.h>

#include <cstdint>
#include <vector>

#include "mcucmutex.h"
#include "mcucutil.h"
#include "stub/mcucmessagestruct.h"

namespace ZEPH_MCUC {

class McuQMBThread {
 public:
  // Serves and answers one request. Handed down at start.
  using RequestEntry = int32_t (*)(QMB_proto3rd*);
  // Whether the receive path is silent: every message is dropped unanswered. Handed down at start.
  using SilentEntry = bool (*)();

  McuQMBThread(RequestEntry request, SilentEntry silent);
  ~McuQMBThread() { Release(); }

  // Starts the threads in their order. 0, or the general failure code at the first that fails;
  // those already started stay.
  int32_t Init();
  int32_t CreateThread();
  void UnInit() { Release(); }
  // Asks all threads to end.
  void Release();

  // Sends the reply of a request; on the thread that served it. 0, or an encode or send failure.
  int32_t ReplyMsgNew(QMB_proto3rd* msg);

  // Sends a message that the daemon originates; any thread. Results as above.
  int32_t SendMsgNew(QMB_proto3rd* msg);

  // Does nothing and returns 0; `StubUtil::SendMsg` is the way out.
  int32_t SendMsg(const QMB_proto3rd& /*msg*/) { return 0; }

  // Pass a write on to other peers: the first sends `length` bytes behind `head` back to QMB where
  // the sender is OWD or KYE; the second sends the frame to all other peers seen so far that take
  // part. 0, a send failure, or an invalid message for null.
  int32_t syncWriteCmdToAppsNew(ihead_t* head, int32_t length);
  int32_t syncWriteCmdToApps(ihead_t* head, Flabel_t* label, const uint8_t* frame);

  // Decodes one frame, has it served and answered. `label->size` bytes stand at `frame`. 0, or an
  // invalid message where there is no frame; bus receive thread.
  int32_t dealDataBlockNew(const ihead_t* head, const Flabel_t* label, const uint8_t* frame);

  // --- The flag thread (flagthread.cpp) ---------------------------------------------------------

  // The thread's body: waits for the flag file, restores, reports, then polls until `Release`.
  void FlagMsg();
  // 0 once the FPGA is loaded.
  static int CheckFPGAOnline();
  // One pass of the polling loop; `FlagMsg` makes one every 200 ms. A program without the thread
  // may make passes of its own.
  static void PollingPass();
  static void OwdMbusConnHandler();
  static void CalculateSenderParaHandler();

  // The peers seen so far, each once, OWD first.
  std::vector<uint32_t> SeenPeers();

 private:
  static int32_t ipc_event_deal(mbus_sess_t* session, void* self, void* data, int32_t length);

  void MbusMsg();
  void RecvMsg();
  int32_t ipc_event_deal_th();
  int32_t DealMessage(mbus_msg_t* msg);
  void DealData(const uint8_t* data);
  void NotePeer(uint32_t uiid);

  // Fixed after construction.
  const RequestEntry m_request;
  const SilentEntry m_silent;

  pthread_t m_hMbusThread{};
  pthread_t m_hRecvThread{};
  pthread_t m_hFlagThread{};
  Relaxed<bool> m_bExitMbusThread{false};
  Relaxed<bool> m_bExitRecvThread{false};
  Relaxed<bool> m_bExitFlagThread{false};

  CMutexThreadRecursive m_uiidMutex;
  std::vector<uint32_t> m_vectorUIIDs MCUC_GUARDED_BY(m_uiidMutex);
};

}  // namespace ZEPH_MCUC
