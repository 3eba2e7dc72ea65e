#include "stub/stubutil.h"

#include "mcuctrace.h"

namespace ZEPH_MCUC {

StubUtil* StubUtil::getInstance() {
  static auto* const instance = new StubUtil;
  return instance;
}

void StubUtil::wire(const Wiring& wiring) {
  m_wiring = wiring;
  m_McuProcessThreadPtr = std::make_shared<McuProcessThread>(wiring.job);
  m_FpgaReportThreadPtr = std::make_shared<FpgaReportThread>(wiring.selfTestOn);
  m_McuQMBThreadPtr = std::make_shared<McuQMBThread>(
      [](QMB_proto3rd* msg) { return getInstance()->onDataRecvFromQMBNew(msg); }, wiring.silent);
}

bool StubUtil::creatProcess() {
  return m_McuProcessThreadPtr != nullptr && m_McuProcessThreadPtr->Init() == 0;
}

bool StubUtil::creatFpgaReport() {
  return m_FpgaReportThreadPtr != nullptr && m_FpgaReportThreadPtr->Init() == 0;
}

bool StubUtil::creatQMBComm() {
  return m_McuQMBThreadPtr != nullptr && m_McuQMBThreadPtr->Init() == 0;
}

// Says where the destination is another device. The frame is served all the same: the bus has
// already delivered it to this task.
bool StubUtil::checkSelfDeviceRequestNew(QMB_proto3rd* msg) {
  const uint8_t address = msg->proto.m_ucDestinationAddrerss;
  MCUC_LOG(kLogInfo, "addr = " << address << " sequse id = " << m_DeviceSequseID);
  if (address != m_DeviceSequseID) {
    MCUC_LOG(kLogError, "=== checkSelfDeviceRequest ===Not this KVX7000's Msg, addr = "
                            << address << " sequse id = " << m_DeviceSequseID);
  }
  return true;
}

int32_t StubUtil::onDataRecvFromQMBNew(QMB_proto3rd* msg) {
  const CMutexGuardT guard(m_stubMenux);
  checkSelfDeviceRequestNew(msg);
  int32_t result = -1;
  const uint8_t kind = msg->proto.m_ucDeviceType;
  if (msg->proto.m_ucAck == JSHL_OK && kind < m_wiring.request.size()) {
    if (const RequestEntry entry = m_wiring.request[kind]; entry != nullptr) result = entry(msg);
  }
  m_McuQMBThreadPtr->ReplyMsgNew(msg);  // it logs its failures; nobody repeats a reply
  return result;
}

int32_t StubUtil::SendMsg(QMB_proto3rd msg) {
  return m_McuQMBThreadPtr == nullptr ? kSendFailed : m_McuQMBThreadPtr->SendMsgNew(&msg);
}

void StubUtil::addMessageToList(MCUProcessDataBlock* block) {
  m_McuProcessThreadPtr->addMessageToList(block);
}

}  // namespace ZEPH_MCUC
