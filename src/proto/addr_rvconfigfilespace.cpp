#include "proto/addr_rvconfigfilespace.h"

#include "proto/calc_cardfiles.h"
#include "proto/calc_flashmap.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kNamesFailed[] =
    "=== ReadRVConfigFileSpace ===Read from flash failed when reading DevNameFile ! ";
constexpr char kFilesFailed[] =
    "=== ReadRVConfigFileSpace ===Read from flash failed when reading RVConfigFile ! ";

bool IsRename(uint32_t reg) { return (reg & cardfiles::kRenameBit) != 0; }

bool IsControl(uint32_t reg) {
  return reg >= cardfiles::kControl && reg <= cardfiles::kControlLast;
}

}  // namespace

std::span<const RowFunction> Addr_RVConfigFileSpace::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoRVConfigFileSpace};
  return kRows;
}

JSHL_Type_e Addr_RVConfigFileSpace::DoRVConfigFileSpace(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                        int /*flag*/) {
  return space::Dispatch(msg, ReadFromRVConfigFileSpace, WriteToRVConfigFileSpace);
}

JSHL_Type_e Addr_RVConfigFileSpace::ReadFromRVConfigFileSpace(QMB_proto3rd* msg) {
  const uint32_t reg = msg->proto.m_uiRegisterUnitAddress;
  const JSHL_Type_e result =
      space::ReplyFromFlash(msg, CardFileFlash(reg), IsRename(reg) ? kNamesFailed : kFilesFailed);
  return result == JSHL_OK ? JSHL_OK : JSHL_invalidCMD;
}

JSHL_Type_e Addr_RVConfigFileSpace::WriteToRVConfigFileSpace(QMB_proto3rd* msg) {
  const uint32_t reg = msg->proto.m_uiRegisterUnitAddress;
  const FlashOwner owner = IsRename(reg) ? FlashOwner::kDeviceNames : FlashOwner::kCardFiles;
  if (!IsControl(reg) &&
      !space::FlashTakes(*msg, owner, CardFileFlash(reg), "WriteToRVConfigFileSpace")) {
    return JSHL_invalidAddrLen;
  }
  return space::QueueWrite(msg, RVConfigFileSpaceKey, "WriteToRVConfigFileSpace");
}

}  // namespace ZEPH_MCUC
