#include <platform/edid.h>

#include <algorithm>
#include <array>

#include "digest.h"
#include "process/calc_edid.h"
#include "process/calc_window.h"
#include "process/cvt.h"
#include "process/scaler.h"
#include "process/scaler_split_porting_code.h"
#include "support/rounds.h"

namespace digest {
namespace {

using namespace ZEPH_MCUC;

uint8_t Byte(int value) { return static_cast<uint8_t>(value); }
uint16_t Half(int value) { return static_cast<uint16_t>(value); }
unsigned Word(int value) { return static_cast<unsigned>(value); }

void Timings(Digest& digest) {
  support::Random random(11);
  for (int i = 0; i < 20000; ++i) {
    const int width = random(1, 8192), height = random(1, 4320);
    const auto rate = static_cast<float>(random(500, 24000)) / 100.0F;
    cvt_mode m{};
    const std::array flags{random(0, 1), random(0, 1), random(0, 1), random(0, 1)};
    digest.Add(vert_refresh(width, height, rate, flags[0], flags[1], flags[2], flags[3], &m));
    digest.Add(m.hr, m.hss, m.hse, m.hfl, m.vr, m.vss, m.vse, m.vfl, m.rb, m.in_);
    for (const float value : {m.pclk, m.h_freq, m.v_freq, m.real_v_rate}) digest.Add(value);
  }
}

void Outputs(Digest& digest) {
  support::Random random(12);
  for (int i = 0; i < 5000; ++i) {
    const std::array mode{random(1, 8192), random(1, 4320), random(100, 24000)};
    const auto output = CalculateOutput(Half(mode[0]), Half(mode[1]), Word(mode[2]));
    digest.Add(output.has_value());
    if (!output) continue;
    digest.Add(kOutputResImage.Pack(output->para));
    digest.Add(output->clock_hz);
  }
}

ModifyEDIDData_t RandomRequest(support::Random& random) {
  ModifyEDIDData_t request{};
  request.EDIDType = static_cast<EDIDTemplate_t>(random(HDMI_2K1K, HDMI2DP_4K2K));
  request.ModifyState = Byte(random(0, 15));
  request.InterfaceType = static_cast<InterfaceType_t>(random(Typ_Undef, Typ_DP));
  for (char& letter : request.ProductName) letter = static_cast<char>(random('A', 'Z'));
  request.ColorSpace = static_cast<ColorSpace_t>(random(RGB444, AllColSpa));
  request.ColorDepth = static_cast<ColorDepth_t>(random(Col_Undef, Col_16Bit));
  return request;
}

void Edids(Digest& digest) {
  support::Random random(13);
  for (int i = 0; i < 2000; ++i) {
    EdidImage model{}, image{};
    ModifyEDID_API.Modify_EDID(RandomRequest(random), model.data());
    digest.Add(model);
    const std::array mode{random(64, 4096), random(64, 2304), random(2300, 14500)};
    const EdidFault fault = BuildEdid(model, Half(mode[0]), Half(mode[1]), Half(mode[2]), &image);
    digest.Add(static_cast<int>(fault));
    digest.Add(image);
  }
}

void Scalers(Digest& digest) {
  support::Random random(14);
  const auto place = [&] {
    return pos_t{random(0, 4096), random(0, 2160), random(1, 4096), random(1, 2160)};
  };
  for (int i = 0; i < 20000; ++i) {
    const scaler_pair_param_t param{
        1, Byte(random(0, 15)), Byte(random(0, 15)), place(), place(), place()};
    scaler_cal_param_t result{};
    en_scaler_calc_ret reason = EN_RET_SUCCESS;
    const bool valid = ScalerPairConfig(Byte(random(0, 5)), &param, &result, &reason);
    digest.Add(valid, int{reason});
    digest.Add(kInScalerImage.Pack(result.scaler_in));
    digest.Add(kOutScalerImage.Pack(result.scaler_out));
  }
}

void FrontSplits(Digest& digest) {
  support::Random random(15);
  for (int i = 0; i < 50000; ++i) {
    const DDR_FRONT_SPLIT_PARM_IN in{
        random.Flip(),         random.Flip(),         Word(random(1, 8192)), Word(random(1, 8192)),
        Word(random(0, 8192)), Word(random(1, 4096)), Byte(random(0, 8)),    Byte(random(0, 8)),
        Byte(random(0, 8)),    Byte(random(0, 8)),    random.Flip()};
    DDR_FRONT_SPLIT_PARM_OUT out{};
    digest.Add(int{DDRFrontSplit(&in, &out)});
    digest.Add(out.OutFrontScalerHStep, out.OutFrontScalerHInitPhase, out.OutFrontScalerHInSize,
               out.OutFrontScalerHOutSize, out.OutSrcInHStartPos, out.OutSrcOutHStartPos,
               out.OutCellLeftExtraOutNum, out.OutCellRightExtraOutNum);
  }
}

void BackSplits(Digest& digest) {
  support::Random random(16);
  for (int i = 0; i < 50000; ++i) {
    const DDR_BACK_SPLIT_PARM_IN in{
        random.Flip(),         random.Flip(),         Word(random(1, 8192)), Word(random(1, 8192)),
        Word(random(8, 8192)), Word(random(1, 4096)), Byte(random(0, 8)),    Byte(random(0, 8)),
        Byte(random(0, 8)),    random.Flip(),         random.Flip()};
    DDR_BACK_SPLIT_PARM_OUT out{};
    digest.Add(int{DDRBackSplit(&in, &out)});
    digest.Add(out.OutBackScalerHStep, out.OutBackScalerHInitPhase, out.OutBackScalerHInSize,
               out.OutBackScalerHOutSize, out.OutBackInHStartPos, out.OutBackOutHStartPos,
               out.OutBackOutLeftUnVldNum, out.OutBackOutRightUnVldNum);
  }
}

constexpr Subject kSubjects[] = {
    {"timings", Timings},       {"output timings", Outputs},   {"EDIDs", Edids},
    {"scaler images", Scalers}, {"front splits", FrontSplits}, {"back splits", BackSplits}};

}  // namespace

std::span<const Subject> VideoSubjects() { return kSubjects; }

}  // namespace digest
