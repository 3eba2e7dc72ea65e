#include "process/PwvConfig.h"

#include "driverutil.h"
#include "mcuctrace.h"
#include "mcucutil.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kApply = 0x100051;
constexpr uint32_t kFrontScaler = 0xF00000;
constexpr uint32_t kBackScaler = 0xF00040;
constexpr uint32_t kFirstOutput = 0x1300;
constexpr uint32_t kOutputStride = 0x1000;

constexpr int kSettle_ms = 150;

template <std::size_t N>
void Write(uint32_t address, const std::array<uint8_t, N>& bytes) {
  // A failure shows when the block is read back.
  DriverUtil::getInstance()->FPGAC5_WriteDataBlock(0, 0, address, N, bytes.data());
}

// Reads a block of `N` bytes and logs it behind `title`.
template <std::size_t N>
void LogBlock(const char* title, uint32_t address) {
  std::array<uint8_t, N> bytes{};
  DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, address, N, bytes.data());
  char text[3 * N + 1];
  Bytes2String(bytes.data(), N, text, sizeof(text));
  MCUC_LOG(kLogInfo, title << text);
}

uint32_t Whole(double hertz) {
  return hertz < 4294967295.0 ? static_cast<uint32_t>(hertz) : 0xFFFFFFFF;
}

}  // namespace

void FPGA_Para_Apply(en_fpga_para_updata_t type) {
  DriverUtil::getInstance()->FPGAC5_WriteOneWord(0, 0, kApply, static_cast<uint8_t>(1U << type));
}

void PvwWindowsUpdate(Pos_T source_pos, Pos_T output_pos) {
  const scaler_pair_param_t scaler_para = PreviewRequest(source_pos, output_pos);
  scaler_cal_param_t scaler_cal_para{};
  en_scaler_calc_ret reason = EN_RET_SUCCESS;
  if (ScalerPairConfig(kLowQualityScaler, &scaler_para, &scaler_cal_para, &reason)) {
    Write(kFrontScaler, kInScalerImage.Pack(scaler_cal_para.scaler_in));
    Write(kBackScaler, kOutScalerImage.Pack(scaler_cal_para.scaler_out));
    FPGA_Para_Apply(EN_LAYER_PARA);
    Delay(kSettle_ms);
  } else {
    if (reason == EN_RET_POS_ERROR) {
      MCUC_LOG(kLogError, "There is no overlap between Output Region and Layer Region\r\n");
    }
    MCUC_LOG(kLogError, "ScalerPairConfig faild");
  }
  LogBlock<kInScalerImage.kSize>("FrontScalerPara = ", kFrontScaler);
  LogBlock<kOutScalerImage.kSize>("BackScalerPara = ", kBackScaler);
}

void OutputResSet(uint8_t OutputNumx, uint16_t OutResHor, uint16_t OutResVer,
                  unsigned OutResFrame) {
  const auto timing = CalculateOutput(OutResHor, OutResVer, OutResFrame);
  if (!timing) {
    MCUC_LOG(kLogError, "=== OutputResSet ===no timing for " << OutResHor << " x " << OutResVer
                                                             << " at " << OutResFrame);
    return;
  }
  MCUC_LOG(kLogInfo, "output clock = " << timing->clock_hz);
  // A clock that can't be set stays; the timing is written all the same.
  static_cast<void>(DriverUtil::getInstance()->SetClock(OutputNumx, Whole(timing->clock_hz)));
  const uint32_t address = (kFirstOutput + OutputNumx) * kOutputStride;
  Write(address, kOutputResImage.Pack(timing->para));
  FPGA_Para_Apply(EN_OUTPUT_PARA);
  LogBlock<kOutputResImage.kSize>("OUTPUT_TIMING_DATA = ", address);
}

}  // namespace ZEPH_MCUC
