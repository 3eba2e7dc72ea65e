// A piece of deferred work: what a register write wants done, on its way to the work thread.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {

// What is to be done; the key of the handler table. The values are part of the system: keep them.
enum _ValueChanged_Table : int32_t {
  HwBasicinfoKey = 0,
  ControllerSortKey = 1,
  SaveSendCardParaKey = 2,
  ReturnFactorySetKey = 3,
  ReloadSenderFPGAKey = 4,
  DoFeatureInfoKey = 5,
  CorrectionKey = 6,
  DoScreenInfoEchoKey = 7,
  HDR10Key = 8,
  HLGKey = 9,
  SenderTestPattenKey = 10,
  PictureQualityCalKey = 11,
  WarmUpKey = 12,
  DoBackupInfoKey = 13,
  CalculateParaOfSenderKey = 14,
  AdvCalcParaOfSenderKey = 15,
  PositionNetPortKey = 16,
  DoNumberFunCardPortKey = 17,
  DoSoftwareTableKey = 18,
  DoEDIDSpaceKey = 19,
  ActiveReportingKey = 21,
  SenderRGBGammaKey = 22,
  doAdjustBrightnessKey = 23,
  RVConfigFileSpaceKey = 24,
  ScreenPatternGenKey = 25,
  SendtoScanCardKey = 26,
  SendtoMultiCardKey = 27,
  SendtoDistributeKey = 28,
  SendCardMappingKey = 29,
};

// Allocated by a register space, owned by the queue once appended, destroyed by the work thread.
class MCUProcessDataBlock {
 public:
  // Copies `length` bytes into the block; false, and nothing copied, where they don't fit.
  bool setData(const char* data, int32_t length) {
    if (data == nullptr || length < 0 || length > PROCESS_DATA_BLOCK_LENGTH) return false;
    std::copy_n(data, length, m_data);
    m_dataLen = length;
    return true;
  }
  char* getData() { return m_data; }
  int32_t getDataLen() const { return m_dataLen; }

  ipcHeaderInfo ipcHeader;  // of the request
  char m_data[PROCESS_DATA_BLOCK_LENGTH] = {};
  int32_t m_dataLen = 0;  // bytes used in `m_data`
  int32_t m_key = 0;      // a _ValueChanged_Table
  uint32_t m_result = 0;
};

// The usual content of a block: the register, the length and the bytes of a write.
namespace penetrate {
inline constexpr int32_t kRegister = 0;
inline constexpr int32_t kLength = 4;
inline constexpr int32_t kData = 6;
inline constexpr int32_t kMostData = PROCESS_DATA_BLOCK_LENGTH - kData;  // 65529
}  // namespace penetrate

struct PenetrateInfo {
  uint32_t Register = 0;
  uint16_t length = 0;
  std::span<const uint8_t> data;  // `length` bytes, at most as many as a block holds
};

// Writes register, length and bytes into `block`; false where they don't fit.
inline bool WritePenetrateInfo(uint32_t reg, std::span<const uint8_t> data,
                               MCUProcessDataBlock* block) {
  if (data.size() > static_cast<std::size_t>(penetrate::kMostData)) return false;
  auto* bytes = reinterpret_cast<uint8_t*>(block->m_data);
  DWQ_ENCDW(bytes + penetrate::kRegister, reg);
  DWQ_ENCWD(bytes + penetrate::kLength, static_cast<uint16_t>(data.size()));
  std::copy(data.begin(), data.end(), bytes + penetrate::kData);
  block->m_dataLen = static_cast<int32_t>(data.size()) + penetrate::kData;
  return true;
}

// Reads the content of a block at `data`, by the length that it states itself; it refers to the
// block's bytes.
inline PenetrateInfo ReadPenetrateInfo(const char* data) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(data);
  PenetrateInfo info;
  info.Register = DWQ_DECDW(bytes + penetrate::kRegister);
  info.length =
      std::min(DWQ_DECWD(bytes + penetrate::kLength), static_cast<uint16_t>(penetrate::kMostData));
  info.data = {bytes + penetrate::kData, info.length};
  return info;
}

}  // namespace ZEPH_MCUC
