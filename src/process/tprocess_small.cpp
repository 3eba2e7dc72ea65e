// Handlers whose work is a call or a few bytes: identity, reset, mapping, the small stores.
#include <algorithm>

#include "driverutil.h"
#include "process/basicpublicfunc.h"
#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"

#include <platform/system.h>

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kMappingRegister = 0x01000088;
constexpr uint8_t kMappingOn = 5;
constexpr uint8_t kMappingOff = 0xFF;
constexpr uint32_t kEchoBytes = 32;  // of the screen parameters: those a client may change
constexpr uint32_t kSlaveMarkRegister = 0x05065000;

void WriteSoftwareTable(const PenetrateInfo& info) {
  Data_Global* global = Data_Global::getInstance();
  if (info.Register < kSlaveMarkRegister) global->LEDConfigStatus = kConfiguredBySoftware;
  const int32_t result =
      global->CopyConstDataToFlash(SoftwareFlash(info.Register), info.data.data(), info.length);
  if (result != 0) {
    MCUC_LOG(kLogError,
             "=== WriteToSoftwareTable ===Write to Page Program Failed. DriverRet = " << result);
  }
}

void WriteScreenInfo(const PenetrateInfo& info) {
  const uint32_t offset = info.Register & 0xFF;
  if (offset >= kEchoBytes) return;
  const std::size_t count = std::min<std::size_t>(info.length, kEchoBytes - offset);
  Data_Global::getInstance()->ScreenParaReg.write(offset, info.data.first(count));
}

void WriteBackupInfo(const PenetrateInfo& info) {
  const int32_t result = DriverUtil::getInstance()->PageProgram(1, BackupFlash(info.Register),
                                                                info.length, info.data.data());
  if (result != 0) {
    MCUC_LOG(kLogError,
             "=== WriteToBackupInfo ===Write backup info to flash failed. ret = " << result);
  }
  platform::RunShell("sync");
}

}  // namespace

int Tprocess::Sprocess_BasicData(int /*lenth*/, char* data) {
  if (data == nullptr) return RunHandler("Sprocess_BasicData", data, [] {});
  RunPenetrateHandler("Sprocess_BasicData", data, [](const PenetrateInfo& info) {
    BasicPublicFunc::getInstance()->SetHwBasicinfo(info.Register, info.data);
  });
  return 1;  // the one handler that says so; nobody reads it
}

int Tprocess::Sprocess_ReturnFactorySet(int lenth, char* data) {
  return RunHandler("Sprocess_ReturnFactorySet", data, [=] {
    if (lenth < 1) return;
    Data_Global* global = Data_Global::getInstance();
    global->ResetMode = static_cast<uint8_t>(data[0]);
    global->RebootRF = EN_REBOOT_WAIT_SFT_DO;  // last: the flag thread acts on it
  });
}

int Tprocess::Sprocess_doMappingForSender(int lenth, char* data) {
  return RunHandler("Sprocess_doMappingForSender", data, [=] {
    if (lenth < 1) return;
    const uint8_t TempMapEn = data[0] == 1 || data[0] == 5 ? kMappingOn : kMappingOff;
    DriverUtil::getInstance()->SendCardPara(kMappingRegister, 1, &TempMapEn, RecvCard);
  });
}

int Tprocess::Sprocess_DoSoftwareTable(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_DoSoftwareTable", data, WriteSoftwareTable);
}

int Tprocess::Sprocess_DoScreenInfoEcho(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_DoScreenInfoEcho", data, WriteScreenInfo);
}

int Tprocess::Sprocess_DoBackupInfo(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_DoBackupInfo", data, WriteBackupInfo);
}

}  // namespace ZEPH_MCUC
