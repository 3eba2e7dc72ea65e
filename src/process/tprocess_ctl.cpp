#include "process/tprocess_ctl.h"

#include <iterator>

#include "mcuctrace.h"
#include "process/tprocess.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

struct Handler {
  _ValueChanged_Table key;
  int (*function)(int length, char* data);
};

// Every kind of work that has a row.
constexpr Handler kHandlers[] = {
    {HwBasicinfoKey, Tprocess::Sprocess_BasicData},
    {SaveSendCardParaKey, Tprocess::Sprocess_SaveSendCardPara},
    {ReturnFactorySetKey, Tprocess::Sprocess_ReturnFactorySet},
    {ReloadSenderFPGAKey, Tprocess::Sprocess_ReloadSendCardProgram},
    {DoFeatureInfoKey, Tprocess::Sprocess_DoFeatureInfo},
    {CorrectionKey, Tprocess::Sprocess_Correction},
    {DoScreenInfoEchoKey, Tprocess::Sprocess_DoScreenInfoEcho},
    {HDR10Key, Tprocess::Sprocess_HDR10},
    {HLGKey, Tprocess::Sprocess_HLG},
    {SenderTestPattenKey, Tprocess::Sprocess_SenderTestPatten},
    {PictureQualityCalKey, Tprocess::Sprocess_PictureQualityCal},
    {WarmUpKey, Tprocess::Sprocess_DisplayWarmUp},
    {DoBackupInfoKey, Tprocess::Sprocess_DoBackupInfo},
    {CalculateParaOfSenderKey, Tprocess::Sprocess_CalculateParaOfSender},
    {AdvCalcParaOfSenderKey, Tprocess::Sprocess_AdvCalcParaOfSender},
    {PositionNetPortKey, Tprocess::Sprocess_PositionNetPort},
    {DoNumberFunCardPortKey, Tprocess::Sprocess_DoNumberFunCardPort},
    {DoSoftwareTableKey, Tprocess::Sprocess_DoSoftwareTable},
    {DoEDIDSpaceKey, Tprocess::Sprocess_DoDoEDIDSpace},
    {ActiveReportingKey, Tprocess::Sprocess_ActiveReporting},
    {SenderRGBGammaKey, Tprocess::Sprocess_SenderRGBGamma},
    {doAdjustBrightnessKey, Tprocess::Sprocess_doAdjustBrightness},
    {SendCardMappingKey, Tprocess::Sprocess_doMappingForSender},
    {RVConfigFileSpaceKey, Tprocess::Sprocess_RVConfigFileSpace},
    {ScreenPatternGenKey, Tprocess::Sprocess_ScreenPatternGen},
    {SendtoScanCardKey, Tprocess::Sprocess_SendtoScanCard},
    {SendtoMultiCardKey, Tprocess::Sprocess_SendtoMultiCard},
    {SendtoDistributeKey, Tprocess::Sprocess_SendtoDistribute},
};
static_assert(std::size(kHandlers) == 28);

constexpr uint16_t kLargeLabel = 0x1C;
constexpr uint16_t kSmallLabel = 1;

}  // namespace

Tprocess_ctl* Tprocess_ctl::getInstance() {
  static auto* const instance = new Tprocess_ctl;
  return instance;
}

Tprocess_ctl::Tprocess_ctl() {
  Tprocess::getInstance();
  std::size_t at = 0;
  for (const Handler& handler : kHandlers) {
    process_root[at++] = {kLargeLabel, kSmallLabel, handler.key, "", handler.function};
  }
}

Relaxed<bool>& Tprocess_ctl::mbus_connect_status() {
  return Data_Global::getInstance()->mbus_connect_status;
}

Relaxed<bool>& Tprocess_ctl::OptToNetEnableOnce() {
  return Data_Global::getInstance()->OptToNetEnableOnce;
}

bool Tprocess_ctl::initialize() {
  for (uint32_t i = 0; process_root[i].cmd_str != nullptr; ++i) {
    m_mapProcess[static_cast<uint32_t>(process_root[i].process_key)] = {i, &process_root[i]};
  }
  return true;
}

int32_t Tprocess_ctl::onProcessDealwith(MCUProcessDataBlock* block) {
  const CMutexGuardT guard(m_mutex);
  const auto found = m_mapProcess.find(static_cast<uint32_t>(block->m_key));
  if (found == m_mapProcess.end()) return 0;
  if (found->second.cmd->called_fun == nullptr) {
    MCUC_LOG(kLogError, "=== onProcessDealwith ===no handler for key " << block->m_key);
    return 0;
  }
  found->second.cmd->called_fun(block->getDataLen(), block->getData());  // handlers log failures
  return 0;
}

}  // namespace ZEPH_MCUC
