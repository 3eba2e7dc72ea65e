#include "proto/tshl_ctl.h"

#include "mcuctrace.h"
#include "proto/addr_backupinforegister.h"
#include "proto/addr_cabinetrotationregister.h"
#include "proto/addr_cardprogmaspaceregister.h"
#include "proto/addr_cmdregister.h"
#include "proto/addr_coordinatescanboardregister.h"
#include "proto/addr_edidspaceregister.h"
#include "proto/addr_featureregister.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/addr_hcinteractionregister.h"
#include "proto/addr_hwbasicinforegister.h"
#include "proto/addr_intelligentbrightnessregister.h"
#include "proto/addr_numberfuncardportregister.h"
#include "proto/addr_plugincardinforegister.h"
#include "proto/addr_rgbgammaregister.h"
#include "proto/addr_rvconfigfilespace.h"
#include "proto/addr_screeninfoechoregister.h"
#include "proto/addr_screenpatterngenregister.h"
#include "proto/addr_shortcutconfigscreenregister.h"
#include "proto/addr_softwaretableregister.h"
#include "proto/addr_testprinfregister.h"

namespace ZEPH_MCUC {
namespace {

struct TopEntry {
  const SpaceNames* names;
  RowFunction command;
  SpaceOperation print;
  void (*create)();
};

template <class Space, const SpaceNames& Names>
constexpr TopEntry Entry() {
  return {&Names, Space::Ssh_cmd, Space::Ssh_print, [] { Space::getInstance(); }};
}

// The spaces in the order of the top table.
constexpr TopEntry kEntries[] = {
    Entry<Addr_HwBasicInfoRegister, kHwBasicInfoSpace>(),
    Entry<Addr_PluginCardInfoRegister, kPluginCardInfoSpace>(),
    Entry<Addr_CMDRegister, kCommandSpace>(),
    Entry<Addr_FeatureRegister, kFeatureSpace>(),
    Entry<Addr_ScreenInfoEchoRegister, kScreenInfoEchoSpace>(),
    Entry<Addr_HCInteractionRegister, kHCInteractionSpace>(),
    Entry<Addr_BackupInfoRegister, kBackupInfoSpace>(),
    Entry<Addr_IntelligentBrightnessRegister, kIntelligentBrightnessSpace>(),
    Entry<Addr_CabinetRotationRegister, kCabinetRotationSpace>(),
    Entry<Addr_ShortcutConfigScreenRegister, kShortcutConfigScreenSpace>(),
    Entry<Addr_CoordinateScanBoardRegister, kCoordinateScanBoardSpace>(),
    Entry<Addr_NumberFunCardPortRegister, kNumberFunCardPortSpace>(),
    Entry<Addr_SoftwareTableRegister, kSoftwareTableSpace>(),
    Entry<Addr_EDIDSpaceRegister, kEDIDSpace>(),
    Entry<Addr_HardWareBrightnessAdjust, kBrightnessSpace>(),
    Entry<Addr_TestPrinfRegister, kTestPrinfSpace>(),
    Entry<Addr_RGBGammaRegister, kRGBGammaSpace>(),
    Entry<Addr_ScreenPatternGenregister, kScreenPatternGenSpace>(),
    Entry<Addr_RVConfigFileSpace, kRVConfigFileSpace>(),
    Entry<Addr_CardProgmaSpaceRegister, kCardProgmaSpace>(),
};

}  // namespace

Tshl_ctl* Tshl_ctl::getInstance() {
  static auto* const instance = new Tshl_ctl;
  return instance;
}

Tshl_ctl::Tshl_ctl() {
  std::size_t at = 0;
  for (const TopEntry& entry : kEntries) {
    entry.create();
    for (const TopRow& name : entry.names->top) {
      if (name.cmdStr == nullptr) continue;
      Fshl_cmd& row = cmd_root[at++];
      row.RegisterAddr = name.key;
      row.cmd_str = name.cmdStr;
      row.cmd_exp = name.cmdExp;
      row.cmdType = PROTO_RW;
      row.called_fun = entry.command;
      row.print_fun = entry.print;
    }
  }
}

bool Tshl_ctl::initialize() {
  for (uint32_t i = 0; cmd_root[i].cmd_str != nullptr; ++i) {
    m_mapProtoShl[cmd_root[i].RegisterAddr] = {i, &cmd_root[i]};
  }
  return true;
}

int32_t Tshl_ctl::Ssh_StartSendCard(QMB_proto3rd* msg) {
  if (msg == nullptr) {
    MCUC_LOG(kLogError, "=== Ssh_StartSendCard ===Ssh_StartSendCard: The proto is NULL! return.");
    return JSHL_invalidCMD;
  }
  const auto found = m_mapProtoShl.find(TopTableKey(msg->proto.m_uiRegisterUnitAddress));
  if (found == m_mapProtoShl.end()) {
    MCUC_LOG(kLogError, "=== Ssh_StartSendCard ===Ssh_StartSendCard: Invalid register address!");
    return JSHL_invalidCMD;
  }
  Fshl_cmd* row = found->second.cmd;
  return row->called_fun == nullptr ? JSHL_invalidCMD : row->called_fun(msg, row, 0);
}

int32_t Tshl_ctl::Ssh_cmdOffset(QMB_proto3rd* msg) {
  if (msg == nullptr) return JSHL_invalidCMD;
  const auto found = m_mapProtoShl.find(msg->proto.m_uiRegisterUnitAddress & 0xFF000000);
  if (found == m_mapProtoShl.end() || found->second.cmd->print_fun == nullptr) {
    return JSHL_invalidCMD;
  }
  return found->second.cmd->print_fun(msg);
}

void Tshl_ctl::Ssh_cmdAll() {
  for (const auto& [key, entry] : m_mapProtoShl) {
    MCUC_LOG(kLogInfo, entry.NO << " 0x" << CTrace::hex << key << " " << entry.cmd->cmd_str << " : "
                                << entry.cmd->cmd_exp);
  }
}

}  // namespace ZEPH_MCUC
