#include "proto/addr_rgbgammaregister.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_rgbgamma.h"

namespace ZEPH_MCUC {
namespace {

JSHL_Type_e Checked(const char* name, int32_t result, QMB_proto3rd* msg) {
  if (result == 0) return JSHL_OK;
  MCUC_LOG(kLogError,
           "=== Read_" << name << "Info ===Read " << name << " Info failed! ret = " << result);
  msg->proto.m_data.clear();
  return JSHL_invalidCMD;
}

}  // namespace

std::span<const RowFunction> Addr_RGBGammaRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoRGBGammatable};
  return kRows;
}

JSHL_Type_e Addr_RGBGammaRegister::DoRGBGammatable(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                   int /*flag*/) {
  return space::Dispatch(msg, ReadRGBGammatable, WriteRGBGammatable);
}

JSHL_Type_e Addr_RGBGammaRegister::ReadRGBGammatable(QMB_proto3rd* msg) {
  const uint32_t reg = msg->proto.m_uiRegisterUnitAddress;
  const uint32_t length = msg->proto.m_usValidDataLength;
  auto& data = msg->proto.m_data;
  data.assign(length, 0);
  DriverUtil* driver = DriverUtil::getInstance();
  if (const auto* table = rgbgamma::FindTable(reg); table != nullptr) {
    const uint32_t bus = rgbgamma::ReadBus(*table, reg);
    return Checked(table->name, driver->FPGAC5_ReadDataBlock(0, 0, bus, length, data.data()), msg);
  }
  if (const auto* value = rgbgamma::FindValue(reg, length); value != nullptr) {
    return Checked(value->name, driver->ReadBytesFromFlash(value->flash, 1, data.data()), msg);
  }
  return JSHL_OK;
}

JSHL_Type_e Addr_RGBGammaRegister::WriteRGBGammatable(QMB_proto3rd* msg) {
  return space::QueueWrite(msg, SenderRGBGammaKey, "WriterRGBGammaInfomation");
}

}  // namespace ZEPH_MCUC
