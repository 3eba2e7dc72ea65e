// The configuration-file space: what a write stores, on disk and in flash, and what it sends.
#include "driverutil.h"
#include "process/tprocess.h"
#include "process/tprocess_common.h"
#include "proto/calc_cardfiles.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kNameList[] = "/usr/zeph/etc/owd/cabCfg/AllCabCfgFileName";
constexpr int kNamedFile = 255;  // stands for a file by its full path
constexpr int kFileNumbers = 32;

// The present image's table, in memory only; the work thread alone touches it.
CardFileTable WriteRvFilePara;

bool IsControl(uint32_t reg) {
  return reg >= cardfiles::kControl && reg <= cardfiles::kControlLast;
}

void TellService(const PenetrateInfo& info) {
  constexpr uint8_t kOne = 1;
  Data_Global::getInstance()->SendDatetoOWD(info.Register, &kOne, 1);
}

// Stores what is no control; false, logged, where flash doesn't take it.
bool StoreInFlash(const PenetrateInfo& info) {
  if ((info.Register & cardfiles::kRenameBit) != 0) {
    MCUC_LOG(kLogInfo, ">>>>>>>>>>>>>>>>>Device ReName Space<<<<<<<<<<<<<");
  }
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(CardFileFlash(info.Register),
                                                                     info.length, info.data.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "=== Sprocess_RVConfigFileSpace ===write flash failed! ret = " << result);
  }
  return result == 0;
}

void TakeHeader(const PenetrateInfo& info) {
  const auto table = ReadCardFileHeader(info.data);
  if (!table.has_value()) {
    MCUC_LOG(kLogError, "=== Sprocess_RVConfigFileSpace ===header refused, length = "
                            << info.length << " files = " << (info.length > 1 ? info.data[1] : 0));
    return;
  }
  if (table->enable != WriteRvFilePara.enable || table->count != WriteRvFilePara.count) {
    DriverUtil::getInstance()->RemoveRvFile(kNameList, kNamedFile);
    DriverUtil::getInstance()->RemoveOtherRvFile(table->count, kFileNumbers);
  }
  WriteRvFilePara = *table;
}

void WriteFileData(const PenetrateInfo& info) {
  const auto entry = WriteRvFilePara.EntryOf(info.Register);
  MCUC_LOG(kLogInfo, "Get File Index:" << (entry.has_value() ? static_cast<int>(*entry) : -1)
                                       << " addr:0x " << CTrace::hex << info.Register);
  if (!entry.has_value()) return;
  const int number = WriteRvFilePara.index[*entry];
  const uint32_t at = info.Register - WriteRvFilePara.address[*entry];
  DriverUtil* driver = DriverUtil::getInstance();
  if (at == 0) driver->RemoveRvFile(nullptr, number);  // a new file starts empty
  driver->WriteRvFileToFalsh(nullptr, number, at, info.data.data(), info.length);
}

void SendFile(const PenetrateInfo& info) {
  MCUC_LOG(kLogInfo, ">>>>>>>>>>>>>>>>Send RvCfg File:" << info.data[0]);
  if (info.data[0] == 1) {
    DriverUtil::getInstance()->LoadRvCfgToRecvCard(info.Register - cardfiles::kSend);
  }
}

void ServeCardFiles(const PenetrateInfo& info) {
  const uint32_t reg = info.Register;
  const bool event =
      (reg == cardfiles::kControl || reg == cardfiles::kControl + 1) && info.length == 1;
  if (event) {
    TellService(info);
  } else if (IsControl(reg)) {
    MCUC_LOG(kLogInfo, ">>>>>>>>>>>>>>>>>Send RvCfg File Ctrl Space!<<<<<<<<<<<<<");
  } else if (!StoreInFlash(info)) {
    return;  // disk and table go no further than the image that a client reads back
  }
  if (reg >= cardfiles::kSend && reg <= cardfiles::kControlLast && info.length == 1) {
    SendFile(info);
  }
  if (reg >= cardfiles::kRename) return;
  if (reg == cardfiles::kBase) {
    TakeHeader(info);
  } else if (reg >= cardfiles::kNames && reg <= cardfiles::kNamesLast) {
    DriverUtil::getInstance()->WriteRvFileToFalsh(kNameList, kNamedFile, reg - cardfiles::kNames,
                                                  info.data.data(), info.length);
  } else {
    WriteFileData(info);
  }
}

}  // namespace

int Tprocess::Sprocess_RVConfigFileSpace(int /*lenth*/, char* data) {
  return RunPenetrateHandler("Sprocess_RVConfigFileSpace", data, ServeCardFiles);
}

int Tprocess::Sprocess_SendRVConfigFile(int lenth, char* data) {
  return RunHandler("Sprocess_SendRVConfigFile", data, [=] {
    if (lenth < 1) return;
    Data_Global::getInstance()->LoadRvCfgFromFlash(static_cast<uint8_t>(data[0]));
  });
}

}  // namespace ZEPH_MCUC
