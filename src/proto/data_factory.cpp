// The factory reset proper: a patched copy of the factory image, which becomes the live store at
// the reboot that follows.
#include <platform/envcfg.h>
#include <platform/network.h>
#include <platform/system.h>

#include <memory>
#include <new>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_feature.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_reset.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kDefaultIp[] = "192.168.0.10";
constexpr char kDefaultMask[] = "255.255.255.0";
constexpr char kDefaultGateway[] = "192.168.0.1";
constexpr int kSettle_ms = 5;
constexpr char kFileNameList[] = "/usr/zeph/etc/owd/cabCfg/AllCabCfgFileName";
constexpr int kNamedFile = 255;  // stands for a file by its full path
constexpr int kFileNumbers = 32;

// A region that may be kept, and its bytes; null where there was no memory for them.
struct Kept {
  uint32_t address;
  uint32_t length;
  const char* noMemory;
  const char* notRead;  // null: a failed read is not worth a line
  std::unique_ptr<uint8_t[]> bytes;
};

void Allocate(Kept* kept) {
  kept->bytes.reset(new (std::nothrow) uint8_t[kept->length]());
  if (kept->bytes == nullptr) MCUC_LOG(kLogError, kept->noMemory);
}

void Read(Kept* kept) {
  if (kept->bytes == nullptr) return;
  const int32_t result =
      DriverUtil::getInstance()->ReadBytesFromFlash(kept->address, kept->length, kept->bytes.get());
  if (result != 0 && kept->notRead != nullptr) MCUC_LOG(kLogError, kept->notRead);
}

void WriteCopy(uint32_t address, std::span<const uint8_t> bytes) {
  // The reset goes on whatever fails.
  DriverUtil::getInstance()->WriteDataToFactoryTmpFlash(
      address, static_cast<uint32_t>(bytes.size()), bytes.data());
}

void WriteCopy(const Kept& kept) {
  if (kept.bytes != nullptr) WriteCopy(kept.address, {kept.bytes.get(), kept.length});
}

void CopyFactoryImage() {
  constexpr const char* kRemovals[] = {"rm -r /usr/brm100/bin/kye/bin/Configure/system.ini",
                                       "rm -r /root/.config/Zephyrix/Cormoran.ini"};
  const int status = platform::RunShell(
      "cp /usr/zeph/etc/envcfg/brmpara_factory /usr/zeph/etc/envcfg/brmpara_factory_tmp");
  if (status != 0) {
    MCUC_LOG(kLogError, "=== ReturnFactory ===cp of the factory image failed! status = " << status);
  }
  for (const char* command : kRemovals) platform::RunShell(command);
}

// Bytes that every reset sends to all cards, one register each.
void ResetCards() {
  struct CardWrite {
    uint32_t reg;
    uint8_t value;
  };
  constexpr CardWrite kWrites[] = {
      {0x02000001, 0x99}, {0x02000102, 0}, {0x02000101, 1}, {0x02000101, 0}, {0x02000100, 0}};
  for (const CardWrite& write : kWrites) {
    DriverUtil::getInstance()->SendCardPara(write.reg, 1, &write.value, RecvCard);
    Delay(kSettle_ms);
  }
}

// What every reset puts into the copy.
void PatchCopy(const CardSize& card, uint8_t changes, const Kept& light, uint8_t dhcp) {
  constexpr uint8_t kOneCard[] = {0, 1, 1, 1};
  constexpr uint32_t kShortcutCounts = 0x16;
  SharedBytes<8> size;
  size.setU32(0, card.width);
  size.setU32(4, card.height);
  const auto bytes = size.snapshot<8>(0);
  const auto next = static_cast<uint8_t>(changes + 1);
  WriteCopy(flash::kScreenSize, bytes);
  WriteCopy(flash::kScreenChanges, {&next, 1});
  WriteCopy(flash::kCardSize, bytes);
  WriteCopy(flash::kSmartLed, kOneCard);
  WriteCopy(flash::kShortcut + kShortcutCounts, std::span(kOneCard).subspan(1));
  WriteCopy(light);
  WriteCopy(flash::kDhcpFlag, {&dhcp, 1});
}

void LogStoredSizes(Data_Global* data) {
  uint32_t size[2];
  data->Read_ScreenSize_FromFlash(size);
  data->Read_CardSize_FromFlash(size);
}

uint8_t ReadByte(uint32_t address, const char* failure) {
  uint8_t value = 0;
  if (DriverUtil::getInstance()->ReadBytesFromFlash(address, 1, &value) != 0) {
    MCUC_LOG(kLogError, failure);
  }
  return value;
}

}  // namespace

int Data_Global::ReturnFactory(uint8_t type) {
  MCUC_LOG(kLogInfo, "=============== Begin return factory, the type = " << type);
  Kept kept[] = {
      {flash::kScene, 46080, "=== malloc moirad_scene_para err! ", nullptr, nullptr},
      {flash::kWarmUp, 768, "=== malloc rename_buff err! ",
       "=== DevNameFileAddr ===Read from flash failed when reading DevNameFile ! ", nullptr},
      {flash::kCardFiles, 0x100000, "=== malloc rvFile_buff err! ",
       "=== RVConfigFileAddr ===Read from flash failed when reading RvFile ! ", nullptr},
  };
  Kept light{flash::kBrightness, 4096, "=== malloc AutoLightPara err! ", nullptr, nullptr};
  for (Kept& region : kept) Allocate(&region);
  Allocate(&light);
  const ResetRule& rule = ResetRuleOf(type);
  uint8_t dhcp = 0;
  if (rule.defaultNetwork) {
    const bool set = SetIPVersion() == 0;
    MCUC_LOG(set ? kLogInfo : kLogError,
             (set ? "Set IP successfully! " : "=== ReturnFactory ===Set IP failed! "));
  } else if (rule.keepsDhcp) {
    MCUC_LOG(kLogInfo, "read DHCP Para!!");
    dhcp = ReadByte(flash::kDhcpFlag, "=== ReturnFactory ===Read from flash failed, DHCP flag");
    for (Kept& region : kept) Read(&region);
  }
  CopyFactoryImage();
  GetRecvCardSize_EnvNew();  // without a card that answers, its default serves
  const CardSize card{ReceiveCardWidth, ReceiveCardHeight};  // whatever is asked for meanwhile
  const uint8_t changes =
      ReadByte(flash::kScreenChanges, "=== ReturnFactory ===Read from flash failed, screen count");
  LogStoredSizes(this);
  platform::RunShell("sync");
  Delay(kSettle_ms);
  ResetCards();
  PatchCopy(card, changes, light, dhcp);
  MCUC_LOG(kLogInfo,
           "============================= Finish return factory =============================");
  if (rule.keepsFiles) {
    for (const Kept& region : kept) WriteCopy(region);
    MCUC_LOG(kLogInfo,
             "============================= Rname & FvFile Delate success! "
             "=============================");
  } else {
    DriverUtil::getInstance()->RemoveRvFile(kFileNameList, kNamedFile);
    DriverUtil::getInstance()->RemoveOtherRvFile(0, kFileNumbers);
  }
  platform::RunShell("envcfg set boot_screen 0");
  platform::RunShell("sync");
  DriverUtil::getInstance()->FPGAC5_WriteOneWord(0, 0, feature::kOutput, 0);
  MCUC_LOG(kLogInfo, "-----Send FPGA 0x0000_01de << 0x00 FPGA Out Close----");
  RebootRF = EN_REBOOT_ING;
  MCUC_LOG(kLogInfo, "============================= Finish return factory :" << RebootRF);
  return 0;
}

int Data_Global::SetIPVersion() {
  struct Setting {
    const char* key;
    const char* value;
    const char* failure;
  };
  constexpr Setting kSettings[] = {
      {"gatewayip", kDefaultGateway, "=== SetIPVersion ===Set IP, but set gatewayip failed! "},
      {"ipaddr", kDefaultIp, "=== SetIPVersion ===Set IP, but set ipaddr failed! "}};
  if (envcfg_openenv() != 0) {
    envcfg_closeenv();
    MCUC_LOG(kLogError, "=== SetIPVersion ===Set IP, but openenv failed! ");
    return -1;
  }
  for (const Setting& setting : kSettings) {
    if (envcfg_setenv(setting.key, setting.value) != 0) MCUC_LOG(kLogError, setting.failure);
  }
  envcfg_closeenv();
  if (const int result = ifcfg_set_eth_mode(0); result != 0) {
    MCUC_LOG(kLogError, "set static status:" << result);
  }
  const int result = ifcfg_set_curr_ip(kDefaultIp, kDefaultMask, kDefaultGateway);
  if (result != 0) MCUC_LOG(kLogError, "set curip error:" << result);
  return result;
}

}  // namespace ZEPH_MCUC
