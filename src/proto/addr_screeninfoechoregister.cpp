#include "proto/addr_screeninfoechoregister.h"

#include <algorithm>

#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr std::size_t kCardSize = 6;  // width and height of the receiving card, 16 bits each

void TakeCardSize(Data_Global* data) {
  uint16_t width = kDefaultCardSize;
  uint16_t height = kDefaultCardSize;
  if (data->GetRecvCardSize_EnvNew() == 0) {
    width = data->ReceiveCardWidth;
    height = data->ReceiveCardHeight;
  }
  data->ScreenParaReg.setU16(kCardSize, width);
  data->ScreenParaReg.setU16(kCardSize + 2, height);
}

}  // namespace

std::span<const RowFunction> Addr_ScreenInfoEchoRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoScreenInfoEcho};
  return kRows;
}

JSHL_Type_e Addr_ScreenInfoEchoRegister::DoScreenInfoEcho(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                          int /*flag*/) {
  return space::Dispatch(msg, ReadFromScreenInfoEcho, WriteToScreenInfoEcho);
}

JSHL_Type_e Addr_ScreenInfoEchoRegister::ReadFromScreenInfoEcho(QMB_proto3rd* msg) {
  Data_Global* data = Data_Global::getInstance();
  TakeCardSize(data);
  const std::size_t offset = msg->proto.m_uiRegisterUnitAddress & 0xFF;
  const std::size_t length =
      std::min<std::size_t>(msg->proto.m_usValidDataLength, data->ScreenParaReg.size() - offset);
  msg->proto.m_data.resize(length);
  data->ScreenParaReg.read(offset, msg->proto.m_data);
  return JSHL_OK;
}

JSHL_Type_e Addr_ScreenInfoEchoRegister::WriteToScreenInfoEcho(QMB_proto3rd* msg) {
  return space::QueueWrite(msg, DoScreenInfoEchoKey, "WriteScreenInfofomation");
}

}  // namespace ZEPH_MCUC
