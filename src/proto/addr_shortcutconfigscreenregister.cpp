#include "proto/addr_shortcutconfigscreenregister.h"

#include <array>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_shortcut.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kCompactRead = 0x26;  // bytes from offset 0: the record with the factory layout
constexpr std::size_t kQueuedRecord = 32;

uint32_t FlashAddress(uint32_t offset) { return flash::kShortcut + offset; }

// The factory layout and where it shows in a compact read.
void ShowFactoryLayout(std::vector<uint8_t>* record) {
  constexpr uint32_t kPlaces[] = {shortcut::kMode, shortcut::kRows, shortcut::kColumns,
                                  shortcut::kBoxNumber};
  std::array<uint8_t, 4> layout{};
  if (DriverUtil::getInstance()->ReadBytesFromFlash(flash::kSmartLed, layout.size(),
                                                    layout.data()) != 0) {
    MCUC_LOG(
        kLogError,
        "=== ReadFromShortcutConfigScreen ===Read ShortCutStoreForKYE from  Flash failed !!! ");
  }
  for (std::size_t i = 0; i < layout.size(); ++i) (*record)[kPlaces[i]] = layout[i];
}

JSHL_Type_e Store(const QMB_proto3rd& msg, uint32_t offset) {
  const auto& data = msg.proto.m_data;
  const int32_t result = DriverUtil::getInstance()->WriteDataToFlash(
      FlashAddress(offset), static_cast<uint32_t>(data.size()), data.data());
  if (result == 0) return JSHL_OK;
  MCUC_LOG(
      kLogError,
      "=== WriteToShortcutConfigScreen ===write to page program failed. driverRet = " << result);
  return JSHL_invalidCMD;
}

// A burst of writes asks the card for its size once.
void AskForCardSize() {
  Data_Global* global = Data_Global::getInstance();
  if (global->ShortCfgReadRvStatus != 0) return;
  global->ShortCfgReadRvStatus = 1;
  global->GetRecvCardSize_EnvNew();  // without an answer the size known before serves
  global->SendRVCardWHtoOWD();
}

JSHL_Type_e RequestSmart(const QMB_proto3rd& msg, uint32_t offset, JSHL_Type_e stored) {
  const JSHL_Type_e again = Store(msg, offset);
  if (again != JSHL_OK) stored = again;
  std::array<uint8_t, kQueuedRecord> record{};
  DriverUtil::getInstance()->ReadBytesFromFlash(FlashAddress(0), kSmartRecord, record.data());
  const SmartConfig wall = SmartConfigOf(record);
  if (wall.rows == 0 || wall.columns == 0 || wall.boxNumber == 0) {
    MCUC_LOG(kLogError, "=== WriteToShortcutConfigScreen ===Check Para stage: Para invalid! Row = "
                            << wall.rows << " Colume = " << wall.columns
                            << " Box Number = " << (wall.boxNumber & 0xFF));
    return JSHL_invalidCMD;
  }
  AskForCardSize();
  DriverUtil::getInstance()->WriteDataToFlash(FlashAddress(0), record.size(), record.data());
  const JSHL_Type_e queued = space::QueueRecord(msg, CalculateParaOfSenderKey, record);
  return queued == JSHL_OK ? stored : queued;
}

}  // namespace

std::span<const RowFunction> Addr_ShortcutConfigScreenRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoShortcutConfigScreen};
  return kRows;
}

JSHL_Type_e Addr_ShortcutConfigScreenRegister::DoShortcutConfigScreen(QMB_proto3rd* msg,
                                                                      Fshl_cmd* /*row*/,
                                                                      int /*flag*/) {
  return space::Dispatch(msg, ReadFromShortcutConfigScreen, WriteToShortcutConfigScreen);
}

JSHL_Type_e Addr_ShortcutConfigScreenRegister::ReadFromShortcutConfigScreen(QMB_proto3rd* msg) {
  const uint32_t offset = space::Offset(kShortcutConfigScreenSpace, *msg);
  std::vector<uint8_t> record(msg->proto.m_usValidDataLength);
  const int32_t result = DriverUtil::getInstance()->ReadBytesFromFlash(
      FlashAddress(offset), static_cast<uint32_t>(record.size()), record.data());
  const bool compact = offset == 0 && record.size() == kCompactRead;
  if (result != 0) {
    MCUC_LOG(kLogError, "=== ReadFromShortcutConfigScreen ===Read flash failed! ret = " << result);
    if (!compact) return JSHL_TYPE_NG;
  }
  if (offset == 0) record[shortcut::kStatus] = Data_Global::getInstance()->LEDConfigStatus;
  if (compact) ShowFactoryLayout(&record);
  msg->proto.m_data = std::move(record);
  return JSHL_OK;
}

JSHL_Type_e Addr_ShortcutConfigScreenRegister::WriteToShortcutConfigScreen(QMB_proto3rd* msg) {
  const auto& data = msg->proto.m_data;
  if (data.empty()) return JSHL_OK;
  const uint32_t offset = space::Offset(kShortcutConfigScreenSpace, *msg);
  if (!space::FlashTakes(*msg, FlashOwner::kShortcut, FlashAddress(offset),
                         "WriteToShortcutConfigScreen")) {
    return JSHL_invalidAddrLen;
  }
  const bool marked = data[0] == shortcut::kSubmit;
  const bool submit = marked && (offset & 0xFF) == shortcut::kStatus;
  JSHL_Type_e result = marked ? JSHL_OK : Store(*msg, offset);
  if (offset >= shortcut::kFirst && offset <= shortcut::kLast) {
    return RequestSmart(*msg, offset, result);
  }
  if (submit) {
    constexpr uint8_t kSignal[] = {1};
    const JSHL_Type_e queued = space::QueueRecord(*msg, AdvCalcParaOfSenderKey, kSignal);
    if (queued != JSHL_OK) result = queued;
  }
  return result;
}

}  // namespace ZEPH_MCUC
