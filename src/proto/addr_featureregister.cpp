#include "proto/addr_featureregister.h"

#include <platform/mbus.h>

#include "mcuctrace.h"
#include "process/basicpublicfunc.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

// A read is brought up to date from the FPGA when it starts below the first offset and reaches the
// second.
constexpr uint32_t kRefreshStart = 493;
constexpr uint32_t kRefreshReach = 497;

bool IsAlwaysZero(const ThirdProtoMCUCMsg& proto) {
  return (proto.m_uiRegisterUnitAddress & 0xFFF) == feature::kAlwaysZero &&
         proto.m_usValidDataLength == 1;
}

// The links behind the fibers show in the link bytes of the ports.
void OrLinkBits(Data_Global* data) {
  auto& reg = data->SendParameterReg;
  const uint8_t low = data->Fiber1BelowLinkStatus_buff[0] | data->Fiber2BelowLinkStatus_buff[0];
  const uint8_t high = data->Fiber1BelowLinkStatus_buff[1] | data->Fiber2BelowLinkStatus_buff[1];
  reg[0x1F] = reg[0x1F] | (low & 0x0F);
  reg[0x9F] = reg[0x9F] | (low >> 4);
  reg[0x126] = reg[0x126] | (high & 0x0F);
  reg[0x127] = reg[0x127] | (high >> 4);
}

// Bytes that a reply shows in place of what the image holds.
void ForceBytes(Data_Global* data) {
  constexpr std::array<uint8_t, 10> kSet = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                            0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  constexpr std::array<uint8_t, 4> kBehind = {0xFF, 0xFF, 0, 0};
  auto& reg = data->SendParameterReg;
  reg.write(1, kSet);
  reg.write(13, kBehind);
  auto time = reg.snapshot<BasicPublicFunc::kTimeBytes>(feature::kClock);
  BasicPublicFunc::getInstance()->GetHwTime(time);
  reg.write(feature::kClock, time);
}

uint16_t Word(const std::vector<uint8_t>& data, std::size_t at) { return DWQ_DECWD(&data[at]); }

// The service daemon keeps its own picture of the offsets: what another peer sets in bypass mode is
// passed on to it.
void ForwardOffsets(const QMB_proto3rd& msg) {
  Data_Global* global = Data_Global::getInstance();
  auto& reg = global->SendParameterReg;
  const uint32_t offset = msg.proto.m_uiRegisterUnitAddress - feature::kBase;
  const auto& data = msg.proto.m_data;
  uint16_t x = reg.u16(feature::kOffsetX);
  uint16_t y = reg.u16(feature::kOffsetY);
  if (offset == feature::kOffsetX && data.size() == 2) {
    x = Word(data, 0);
  } else if (offset == feature::kOffsetX && data.size() == 4) {
    x = Word(data, 0);
    y = Word(data, 2);
  } else if (offset == feature::kOffsetY && data.size() == 2) {
    y = Word(data, 0);
  } else {
    return;
  }
  MCUC_LOG(kLogInfo, "========================== quivord bypass mode dvi offset to owd X:"
                         << x << " Y:" << y);
  reg.setU32(feature::kBypassX, 0U - x);
  reg.setU32(feature::kBypassY, 0U - y);
  const auto offsets = reg.snapshot<8>(feature::kBypassX);
  global->SendDatetoOWD(feature::kBase + feature::kBypassX, offsets.data(), offsets.size());
}

}  // namespace

std::span<const RowFunction> Addr_FeatureRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoFeatureInfo};
  return kRows;
}

JSHL_Type_e Addr_FeatureRegister::DoFeatureInfo(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                int /*flag*/) {
  return space::Dispatch(msg, ReadFromFeatureInfo, WriteToFeatureInfo);
}

JSHL_Type_e Addr_FeatureRegister::ReadFromFeatureInfo(QMB_proto3rd* msg) {
  if (IsAlwaysZero(msg->proto)) {
    constexpr uint8_t kZero[] = {0};
    space::Reply(msg, kZero);
    MCUC_LOG(kLogInfo, "Sending 0x0200_004B information to DWQ when reading feature information.");
    return JSHL_OK;
  }
  if (!space::InRange(kFeatureSpace, *msg, feature::kSize, "ReadFromFeatureInfo")) {
    return JSHL_invalidAddrLen;
  }
  Data_Global* data = Data_Global::getInstance();
  const uint32_t offset = space::Offset(kFeatureSpace, *msg);
  const uint32_t length = msg->proto.m_usValidDataLength;
  if (offset + length >= kRefreshReach && offset < kRefreshStart &&
      data->RefreshFromFeatureBus(offset, feature::kBusEnd - offset) < 0) {
    MCUC_LOG(kLogError,
             "=== ReadFromFeatureInfo ===Read from FPGA BasicPara failed when reading feature "
             "information! ");
    return JSHL_invalidCMD;
  }
  OrLinkBits(data);
  ForceBytes(data);
  data->DebugForScreenZero(10, msg->proto.m_uiRegisterUnitAddress,
                           "ReadFromFeatureInfo, Read FPGA para!!");
  msg->proto.m_data.resize(length);
  data->SendParameterReg.read(offset, msg->proto.m_data);
  return JSHL_OK;
}

JSHL_Type_e Addr_FeatureRegister::WriteToFeatureInfo(QMB_proto3rd* msg) {
  if (!space::InRange(kFeatureSpace, *msg, feature::kSize, "WriteToFeatureInfo")) {
    return JSHL_invalidAddrLen;
  }
  const bool fromService = msg->ipcHeader.uiid == TaskId(cardsel_bit_self(), task::kOwd);
  if (Data_Global::getInstance()->SendParameterReg[feature::kBypass] != 0 && !fromService) {
    ForwardOffsets(*msg);
  }
  const JSHL_Type_e result = space::QueueWrite(msg, DoFeatureInfoKey, "WriteToFeatureInfo");
  msg->SyncWrite = 1;
  return result;
}

}  // namespace ZEPH_MCUC
