// Frames in and out: what is told apart from the threads that move them.
#include <algorithm>
#include <string>

#include "mcuctrace.h"
#include "stub/mcuqmbthread.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kDumpLine = 200;  // characters of hexadecimal text in one log line

// Logs bytes as hexadecimal text; nothing is formed where the level isn't logged.
void LogBytes(const char* what, const uint8_t* data, int32_t length) {
  if (!CTrace::Wanted(kLogInfo)) return;
  std::string text(static_cast<std::size_t>(length) * 3 + 1, '\0');
  text.resize(static_cast<std::size_t>(
      Bytes2String(data, length, text.data(), static_cast<int>(text.size()))));
  for (std::size_t at = 0; at < text.size(); at += kDumpLine) {
    MCUC_LOG(kLogInfo, what << text.substr(at, kDumpLine).c_str());
  }
}

// Encodes `msg` behind its envelope and sends it to `destination`. The two kinds of message differ
// in that and in the texts.
int32_t EncodeAndSend(QMB_proto3rd* msg, uint32_t destination, const char* name, const char* dump) {
  uint8_t buffer[kEnvelopeSize + TP_SEND_BUFFER_LENGTH];  // only what is sent is written
  const int32_t length = msg->proto.Encode(buffer + kEnvelopeSize, TP_SEND_BUFFER_LENGTH);
  if (length < frame::kShortest) {
    MCUC_LOG(kLogError, name << "Encode failed! return.");
    return kEncodeFailed;
  }
  msg->ipcHeader.result = msg->proto.m_ucAck;
  msg->ipcHeader.payloadLength = static_cast<uint32_t>(length);
  WriteEnvelope(msg->ipcHeader, buffer);
  const int32_t result =
      mbus_send(destination, buffer, static_cast<uint32_t>(length + kEnvelopeSize));
  if (result != 0) {
    MCUC_LOG(kLogError, name << "reply message Failed! ret = " << result);
    return kSendFailed;
  }
  LogBytes(dump, buffer, length + kEnvelopeSize);
  return 0;
}

}  // namespace

int32_t McuQMBThread::dealDataBlockNew(const ihead_t* head, const Flabel_t* label,
                                       const uint8_t* frame) {
  if (frame == nullptr) {
    MCUC_LOG(kLogError, "=== dealDataBlock ===Deal DataBlock: data block is null! return.");
    return kInvalidMessage;
  }
  uint8_t ack = JSHL_OK;
  const int32_t length = label->size;
  LogBytes("recv: ", frame, std::clamp(length, 0, TP_RECV_BUFFER_LENGTH));
  QMB_proto3rd msg;
  if (!MCUCMsg::Checkout(frame, length)) {
    ack = JSHL_CRCERR_Request;
    MCUC_LOG(kLogError, "=== dealDataBlock ===Deal DataBlock: Checkout Result is false! ");
  }
  if (const int32_t result = msg.proto.Decode(frame, length); result != 0) {
    MCUC_LOG(kLogError, "=== dealDataBlock ===Decode DataBlock Failed! Decode result = " << result);
    return 0;
  }
  if (ack == JSHL_OK && msg.proto.DataFallsShort()) ack = JSHL_invalidAddrLen;
  msg.proto.m_ucAck = ack;
  ipcHeaderInfo& header = msg.ipcHeader;
  header.uiid = head->ui_id;
  header.labelCount = static_cast<uint32_t>(head->lbl_cnt);
  header.size = static_cast<uint32_t>(head->size);
  header.result = static_cast<uint32_t>(head->result);
  header.detail = static_cast<uint32_t>(head->detail);
  header.smallLabel = label->label.small;
  header.largeLabel = label->label.large;
  m_request(&msg);
  NotePeer(header.uiid);
  return 0;
}

int32_t McuQMBThread::ReplyMsgNew(QMB_proto3rd* msg) {
  return EncodeAndSend(msg, TaskId(cardsel_bit_self(), task::kQmb),
                       "=== ReplyMsg ===ReplyMsg: ", "reply: ");
}

int32_t McuQMBThread::SendMsgNew(QMB_proto3rd* msg) {
  return EncodeAndSend(msg, msg->processID, "=== ===SendMsg: ", "send: ");
}

int32_t McuQMBThread::syncWriteCmdToAppsNew(ihead_t* head, int32_t length) {
  if (head == nullptr) return kInvalidMessage;
  const uint8_t slot = cardsel_bit_self();
  if (head->ui_id != TaskId(slot, task::kOwd) && head->ui_id != TaskId(slot, task::kKye)) {
    MCUC_LOG(kLogInfo, "syncWriteCmdToApps: not passed on, uiid = " << head->ui_id);
    return 0;
  }
  const int32_t result =
      mbus_send(TaskId(slot, task::kQmb), head, static_cast<uint32_t>(length + kEnvelopeSize));
  return result == 0 ? 0 : kSendFailed;
}

int32_t McuQMBThread::syncWriteCmdToApps(ihead_t* head, Flabel_t* label, const uint8_t* frame) {
  constexpr uint32_t kTaskMask = 0x00FFFFFF;
  constexpr uint32_t kSyncedTasks[] = {0x120000, 0x140000};
  if (head == nullptr || label == nullptr || frame == nullptr) return kInvalidMessage;
  if (label->size < 0 || label->size > TP_SEND_BUFFER_LENGTH) return kInvalidMessage;
  const uint8_t slot = cardsel_bit_self();
  std::vector<uint8_t> buffer(static_cast<std::size_t>(kEnvelopeSize + label->size));
  std::memcpy(buffer.data() + sizeof(ihead_t), label, sizeof(Flabel_t));
  std::copy_n(frame, label->size, buffer.begin() + kEnvelopeSize);
  int32_t result = 0;
  for (const uint32_t peer : SeenPeers()) {
    const bool synced = std::find(std::begin(kSyncedTasks), std::end(kSyncedTasks),
                                  peer & kTaskMask) != std::end(kSyncedTasks);
    if (peer == head->ui_id || !(synced || peer == TaskId(slot, task::kOwd))) continue;
    ihead_t copy = *head;
    copy.ui_id = peer;
    std::memcpy(buffer.data(), &copy, sizeof(copy));
    if (mbus_send(TaskId(slot, task::kQmb), buffer.data(), static_cast<uint32_t>(buffer.size())) !=
        0) {
      result = kSendFailed;
    }
  }
  return result;
}

}  // namespace ZEPH_MCUC
