#include "proto/addr_hardwarebrightnessadjust.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_flashmap.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

std::span<const RowFunction> Brightness::RowFunctions() {
  static constexpr RowFunction kRows[] = {doAdjustBrightness};
  return kRows;
}

JSHL_Type_e Brightness::doAdjustBrightness(QMB_proto3rd* msg, Fshl_cmd* /*row*/, int /*flag*/) {
  if (msg == nullptr) MCUC_LOG(kLogError, "=== doAdjustBrightness ===proto is null.");
  return space::Dispatch(msg, ReadFromBrightnessInfo, WriteToBrightnessInfo);
}

JSHL_Type_e Brightness::ReadFromBrightnessInfo(QMB_proto3rd* msg) {
  const uint32_t offset = space::Offset(kBrightnessSpace, *msg);
  const uint32_t length = msg->proto.m_usValidDataLength;
  std::vector<uint8_t> bytes(length);
  if (offset + length <= brightness::kImageSize) {
    ProgrammableTimeTableArray.read(offset, bytes);
  } else if (length > brightness::kImageSize) {
    return JSHL_TYPE_NG;
  } else if (!ReadArea(offset, bytes)) {
    MCUC_LOG(kLogError, "=== ReadFromBrightnessInfo ===Read flash failed! address = "
                            << CTrace::hex << msg->proto.m_uiRegisterUnitAddress);
    return JSHL_TYPE_NG;
  }
  msg->proto.m_data = std::move(bytes);
  return JSHL_OK;
}

JSHL_Type_e Brightness::WriteToBrightnessInfo(QMB_proto3rd* msg) {
  if (!space::InRange(kBrightnessSpace, *msg, brightness::kAreaSize, "WriteBrightnessInfomation")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, doAdjustBrightnessKey, "WriteBrightnessInfomation");
}

brightness::Moment Brightness::Now() {
  const auto time = DriverUtil::getInstance()->ReadTimes();
  return {time[0], time[1], time[2], time[3], time[4], time[5], time[6]};
}

brightness::Image Brightness::TheImage() {
  return ProgrammableTimeTableArray.snapshot<brightness::kImageSize>(0);
}

bool Brightness::ReadArea(uint32_t offset, std::span<uint8_t> into) {
  return DriverUtil::getInstance()->ReadBytesFromFlash(
             flash::kBrightness + offset, static_cast<uint32_t>(into.size()), into.data()) == 0;
}

void Brightness::LogAbsent(const char* table, brightness::TableState state) {
  MCUC_LOG(kLogError, "=== Brightness ===the " << table << " " << brightness::TextOf(state));
}

}  // namespace ZEPH_MCUC
