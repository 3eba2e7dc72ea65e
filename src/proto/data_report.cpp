// Frames that the daemon sends unasked.
#include <platform/mbus.h>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"
#include "proto/report_names.h"
#include "stub/stubutil.h"

namespace ZEPH_MCUC {
namespace {

// Sends `length` bytes as the value of `reg` to the task `peer`.
void Send(uint32_t peer, uint32_t reg, const uint8_t* data, uint16_t length) {
  const uint8_t slot = cardsel_bit_self();
  QMB_proto3rd msg;
  msg.seqNum = -1;
  msg.processID = TaskId(slot, task::kQmb);
  msg.ipcHeader.uiid = TaskId(slot, peer);
  msg.ipcHeader.largeLabel = LABEL_MSG;
  msg.ipcHeader.smallLabel = LABEL_MSG_LOCAL;
  msg.proto.m_usHeader = PROTOCOL_HEADER_TAG_RESPONSE;
  msg.proto.m_ucCode = JSHL_PROTOREAD;  // so that the frame carries its data
  msg.proto.m_uiRegisterUnitAddress = reg;
  msg.proto.m_usValidDataLength = length;
  msg.proto.m_data.assign(data, data + length);
  StubUtil::getInstance()->SendMsg(std::move(msg));  // it logs; a lost report is not repeated
}

void SendCardSize(const Data_Global& data, uint32_t peer) {
  uint8_t size[4];
  DWQ_ENCWD(size, data.ReceiveCardWidth);
  DWQ_ENCWD(size + 2, data.ReceiveCardHeight);
  Send(peer, report::kCardSize, size, sizeof(size));
}

// The roles at FPGA address `address`, which go into the image as well.
void SendRoles(Data_Global* data, uint32_t address, uint16_t length) {
  std::array<uint8_t, 8> bytes{};
  if (data->RefreshFromFeatureBus(address, length) >= 0) {
    bytes = data->SendParameterReg.snapshot<8>(address);
  }
  Send(task::kOwd, feature::kBase + address, bytes.data(), length);
}

}  // namespace

void Data_Global::SendDatetoOWD(uint32_t reg, const uint8_t* data, uint16_t length) {
  MCUC_LOG(kLogInfo, "Send data to OWD, the reg address = " << CTrace::hex << reg);
  Send(task::kOwd, reg, data, length);
}

void Data_Global::SendDatetoMoirad(uint32_t reg, const uint8_t* data, uint16_t length) {
  Send(task::kMoirad, reg, data, length);
}

void Data_Global::SendFlag_quivordload() {
  constexpr uint8_t kReady = 0x02;
  MCUC_LOG(kLogError,
           "Send quivord load flag to OWD, the reg address = " << CTrace::hex << report::kReady);
  Send(task::kOwd, report::kReady, &kReady, 1);
}

void Data_Global::SendRebootMsgtoOWD(const uint8_t* data, uint16_t length) {
  MCUC_LOG(kLogInfo,
           "Send Reboot info to OWD, the reg address = " << CTrace::hex << report::kReset);
  Send(task::kOwd, report::kReset, data, length);
}

void Data_Global::SendRVCardWHtoOWD() { SendCardSize(*this, task::kOwd); }
void Data_Global::SendCardSizetoKye() { SendCardSize(*this, task::kKye); }

void Data_Global::SendTimetoKye() {
  const auto time = DriverUtil::getInstance()->ReadTimes();
  Send(task::kKye, report::kTime, time.data(), time.size());
}

void Data_Global::SendBandWidthInfo() {
  constexpr uint8_t kBandwidth[] = {0xFF, 0xFF};
  Send(task::kOwd, report::kBandwidth, kBandwidth, sizeof(kBandwidth));
}

void Data_Global::SendStatusToOWD(uint32_t address, uint16_t length) {
  std::array<uint8_t, 8> bytes{};
  DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, address, length, bytes.data());
  Send(task::kOwd, feature::kBase + address, bytes.data(), length);
}

void Data_Global::SendFiberLinkInfo() { SendStatusToOWD(feature::kFiberLink, 1); }
void Data_Global::Send9DtoOWD() { SendStatusToOWD(feature::kRole, 1); }
void Data_Global::SendRedundtoOWD1_4() { SendStatusToOWD(feature::kRedundancy, 1); }
void Data_Global::SendRedundtoOWD5_8() { SendStatusToOWD(feature::kRedundancy4, 1); }
void Data_Global::SendRedundtoOWD9_16() { SendStatusToOWD(feature::kRedundancy8, 2); }

void Data_Global::SendMStoOWD1_4() { SendRoles(this, 0x18, 4); }
void Data_Global::SendMStoOWD5_8() { SendRoles(this, 0x98, 4); }
void Data_Global::SendMStoOWD9_16() { SendRoles(this, 0x100, 8); }

void Data_Global::SendC8toKye() {
  MCUC_LOG(kLogInfo, "Send C8 flag to Kye, the reg address = " << CTrace::hex << report::kShortcut);
  Send(task::kKye, report::kShortcut, &kConfiguredBySoftware, 1);
}

void Data_Global::SendRedundStatustoOWD() {
  constexpr uint32_t kGroups[] = {0x18, 0x98, 0x100};
  constexpr uint16_t kGroupBytes = 4;
  std::array<uint8_t, 12> now{};
  for (std::size_t i = 0; i < std::size(kGroups); ++i) {
    DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, kGroups[i], kGroupBytes,
                                                    now.data() + i * kGroupBytes);
  }
  if (now != SendRedundStatustoOWD_buff.snapshot<12>(0)) {
    MCUC_LOG(kLogInfo, "redundancy roles changed");
    for (std::size_t i = 0; i < std::size(kGroups); ++i) {
      SendDatetoOWD(feature::kBase + kGroups[i], now.data() + i * kGroupBytes, kGroupBytes);
    }
  }
  SendRedundStatustoOWD_buff.write(0, now);
}

}  // namespace ZEPH_MCUC
