// The device's identity: flash and environment store kept in step.
#include <platform/envcfg.h>

#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_identity.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr char kSerialKey[] = "device_sn";
constexpr char kModelKey[] = "device_modelid";
constexpr std::size_t kModelDigits = 4;

using Serial = std::array<uint8_t, kSerialBytes>;

void StoreSerial(const Serial& serial) {
  // A store that can't be written keeps what it has; the environment stays the authority.
  DriverUtil::getInstance()->WriteDataToFlash(flash::kSerialNumber, serial.size(), serial.data());
}

void SetDefaultInEnvironment() {
  if (envcfg_setenv(kSerialKey, SerialText(kDefaultSerial).c_str()) != 0) {
    MCUC_LOG(kLogError, "=== SNTransfer ===setenv faild");
  }
}

enum class OnMissing : uint8_t { kSetKey, kLeaveKey };

// Brings flash in line with the environment, which gets the default number where it holds none.
// `read` takes the number that the environment holds; null where nobody asks.
void AlignSerial(OnMissing missing, uint8_t* read) {
  MCUC_LOG(kLogInfo,
           "================================ Begin SN transfer ==============================");
  if (envcfg_openenv() != 0) {
    envcfg_closeenv();
    MCUC_LOG(kLogError, "=== SNTransfer ===Error when openning env!");
    return;
  }
  const char* text = envcfg_getenv(kSerialKey);
  if (text == nullptr) {
    MCUC_LOG(kLogError,
             "=== SNTransfer ===The SN_ADDR at env is not exist, set the default SN_ADDR now. ");
    if (missing == OnMissing::kSetKey) SetDefaultInEnvironment();
    StoreSerial(kDefaultSerial);
  } else if (IsBlankSerial(text)) {
    MCUC_LOG(kLogInfo, "The SN_ADDR at env is equal to SN_0, set the default SN_ADDR now.");
    SetDefaultInEnvironment();
    StoreSerial(kDefaultSerial);
  } else {
    MCUC_LOG(kLogInfo, "The SN_ADDR at env is not equal to SN_0, won't change it.");
    Serial serial{};
    HexToBytes(text, kSerialDigits, serial);
    StoreSerial(serial);
    if (read != nullptr) std::copy(serial.begin(), serial.end(), read);
  }
  envcfg_closeenv();
}

}  // namespace

void Data_Global::SNTransfer() { AlignSerial(OnMissing::kSetKey, nullptr); }

void Data_Global::GetEnvSNPara(uint8_t* read_sn) { AlignSerial(OnMissing::kLeaveKey, read_sn); }

void Data_Global::GetEnvModelIDPara(uint8_t* read_id) {
  if (envcfg_openenv() != 0) {
    envcfg_closeenv();
    MCUC_LOG(kLogError, "=== ModelID ===Error when openning env!");
    return;
  }
  if (const char* text = envcfg_getenv(kModelKey); text != nullptr) {
    std::array<uint8_t, 2> model{};
    HexToBytes(text, kModelDigits, model);
    read_id[0] = model[1];
    read_id[1] = model[0];
  }
  envcfg_closeenv();
}

int Data_Global::ASCII2Hex(const uint8_t* code_char, int length, uint8_t* code_int) {
  if (length <= 0) return 0;
  const auto count = static_cast<std::size_t>(length);
  HexToBytes({reinterpret_cast<const char*>(code_char), count}, count, {code_int, (count + 1) / 2});
  return 0;
}

void Data_Global::ReadHardwareInfo() {
  constexpr std::array<uint8_t, 7> kFixedBytes = {20, 17, 2, 0, 168, 0, 4};
  constexpr uint8_t kValidMark = 0x55;
  std::array<uint8_t, basicinfo::kSize> area{};
  RestoreDataFromFlash(kRestoreBasicInfo, area);
  auto& reg = Data_Preset::getInstance()->BasicHardWareReg;
  reg.write(0, area);
  reg.write(basicinfo::kFixed, kFixedBytes);
  reg[basicinfo::kBlank] = 0;
  reg[basicinfo::kValid] = kValidMark;
  SaveBasicParaToFlash();
}

}  // namespace ZEPH_MCUC
