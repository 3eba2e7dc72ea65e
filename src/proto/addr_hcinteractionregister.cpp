#include "proto/addr_hcinteractionregister.h"

#include <platform/envcfg.h>

#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_hc.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kBrightnessRegister = 0x02000001;  // of a card
constexpr uint32_t kFlashDistance = 0x015DF000;       // from a register to where it is stored

// What clients have set; the bus receive thread's.
hc::Parameters g_parameters;

// --- Reads: each function fills `into`, zeros, as long as the read ------------------------------

using Buffer = std::span<uint8_t>;

// Bytes that can't be read stay zeros.
void FillFromFlash(uint32_t address, Buffer into, const char* failure) {
  const int32_t result = DriverUtil::getInstance()->ReadBytesFromFlash(
      address, static_cast<uint32_t>(into.size()), into.data());
  if (result != 0) MCUC_LOG(kLogError, "=== ReadFromHCInteraction ===" << failure);
}

void FillSome(uint32_t /*address*/, Buffer into) {
  const hc::HDRParaData& hdr = g_parameters.hdr;
  into[0] = hdr.HDRType;
  DWQ_ENCWD(&into[1], hdr.fScreenPeakLight);
  into[3] = static_cast<uint8_t>(hdr.fambientLight);
}

void FillAll(uint32_t address, Buffer into) {
  FillFromFlash(address - kFlashDistance, into,
                "Can not Read Flash When Get the 25 Para From HCInteraction");
  FillSome(address, into);
  into[hc::kMinLum - hc::kHDRType] = g_parameters.hdr.pMinLum;
}

void FillClass(uint32_t /*address*/, Buffer into) { into[0] = g_parameters.hdr.HLGCalss; }

void FillMinLum(uint32_t /*address*/, Buffer into) { into[0] = g_parameters.hdr.pMinLum; }

void FillWarmUp(uint32_t /*address*/, Buffer into) {
  std::array<uint8_t, hc::kWarmUpRecordSize> record{};
  FillFromFlash(flash::kWarmUp, record,
                "Can not Read Flash When Get the KeepWarmUpModeInfo From HCInteraction");
  std::copy_n(record.begin() + hc::kWarmUpRecordSetting, into.size(), into.begin());
}

void FillColour(uint32_t /*address*/, Buffer into) {
  DWQ_ENCWD(&into[0], *PbufContrast);
  DWQ_ENCWD(&into[2], *PbufSaturation);
  DWQ_ENCWD(&into[4], *PbufHue);
}

void FillDevcomMode(uint32_t address, Buffer into) {
  FillFromFlash(address - kFlashDistance, into,
                "Can not Read Flash When Get the devcom_mode Para From HCInteraction");
}

constexpr uint32_t kNarrow = 0xFFF;
constexpr uint32_t kWide = 0xFFFF;
constexpr int kAnyLength = 0;

struct ReadRow {
  uint32_t mask;
  uint32_t offset;
  int length;
  void (*fill)(uint32_t address, Buffer into);
};
constexpr ReadRow kReads[] = {
    {kWide, hc::kDevcomMode, 1, FillDevcomMode},
    {kNarrow, hc::kHDRType, hc::kSomeParameters, FillSome},
    {kNarrow, hc::kHDRType, hc::kAllParameters, FillAll},
    {kNarrow, hc::kHLGClass, kAnyLength, FillClass},
    {kWide, hc::kWarmUp, hc::kWarmUpBytes, FillWarmUp},
    {kNarrow, hc::kMinLum, kAnyLength, FillMinLum},
    {kWide, hc::kColour, hc::kColourRead, FillColour},
};

// --- Writes -------------------------------------------------------------------------------------

// Of the first card of the first port, in percent; 0 where it doesn't answer.
uint8_t CardBrightness() {
  uint8_t RecBuf[1] = {0};
  const int32_t result =
      DriverUtil::getInstance()->ReadCardPara(kBrightnessRegister, 0, 1, RecBuf, RecvCard);
  return result == 0 ? hc::Percent(RecBuf[0]) : uint8_t{0};
}

JSHL_Type_e QueueHDR10(const QMB_proto3rd& msg) {
  hc::HDRParaData record = g_parameters.hdr;
  record.HLGCalss = hc::HDRParaData{}.HLGCalss;
  record.brightness = CardBrightness();
  return space::QueueRecord(msg, HDR10Key, hc::Encode(record));
}

JSHL_Type_e QueueHLG(const QMB_proto3rd& msg) {
  const hc::HDRParaData record{.HDRType = g_parameters.hdr.HDRType,
                               .HLGCalss = g_parameters.hdr.HLGCalss};
  return space::QueueRecord(msg, HLGKey, hc::Encode(record));
}

void SetDevcomMode(uint8_t mode) {
  const char* const value = mode == 0 ? "0" : mode == 1 ? "1" : "2";
  if (envcfg_openenv() != 0) {
    MCUC_LOG(kLogError, "=== WriteToHCInteraction ===Openenv Faild");
  }
  if (envcfg_setenv("devcom_mode", value) != 0) {
    MCUC_LOG(kLogError, "=== WriteToHCInteraction ===Setenv devcom_mode Faild");
  }
  envcfg_closeenv();
}

JSHL_Type_e Do(hc::Work work, const QMB_proto3rd& msg) {
  const auto& data = msg.proto.m_data;
  switch (work) {
    case hc::Work::kLoadHDR10:
      return QueueHDR10(msg);
    case hc::Work::kLoadHLG:
      return QueueHLG(msg);
    case hc::Work::kSetColour:
      return space::QueueRecord(msg, PictureQualityCalKey, hc::Encode(g_parameters.colour));
    case hc::Work::kStoreWarmUp:
      return space::QueueRecord(msg, WarmUpKey, data);
    case hc::Work::kStoreDevcomMode:
      SetDevcomMode(data.empty() ? uint8_t{0} : data[0]);
      return JSHL_OK;
    case hc::Work::kNothing:
      return JSHL_OK;
  }
  return JSHL_OK;
}

}  // namespace

std::span<const RowFunction> Addr_HCInteractionRegister::RowFunctions() {
  static constexpr RowFunction kRows[] = {DoHCInteraction};
  return kRows;
}

JSHL_Type_e Addr_HCInteractionRegister::DoHCInteraction(QMB_proto3rd* msg, Fshl_cmd* /*row*/,
                                                        int /*flag*/) {
  return space::Dispatch(msg, ReadFromHCInteraction, WriteToHCInteraction);
}

JSHL_Type_e Addr_HCInteractionRegister::ReadFromHCInteraction(QMB_proto3rd* msg) {
  const uint32_t address = msg->proto.m_uiRegisterUnitAddress;
  const int length = msg->proto.m_usValidDataLength;
  msg->proto.m_data.assign(static_cast<std::size_t>(length), 0);
  const auto row = std::find_if(std::begin(kReads), std::end(kReads), [=](const ReadRow& read) {
    return (address & read.mask) == read.offset &&
           (read.length == kAnyLength || read.length == length);
  });
  if (row != std::end(kReads)) row->fill(address, msg->proto.m_data);
  return JSHL_OK;
}

JSHL_Type_e Addr_HCInteractionRegister::WriteToHCInteraction(QMB_proto3rd* msg) {
  if (!space::InRange(kHCInteractionSpace, *msg, hc::kWriteSize, "WriteToHCInteraction")) {
    return JSHL_invalidAddrLen;
  }
  const uint32_t offset = space::Offset(kHCInteractionSpace, *msg);
  const JSHL_Type_e result = Do(hc::TakeWrite(offset, msg->proto.m_data, &g_parameters), *msg);
  if (result == JSHL_OK) msg->SyncWrite = 1;
  return result;
}

}  // namespace ZEPH_MCUC
