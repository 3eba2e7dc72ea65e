#include "picture_mode.h"

#include "numbers.h"
#include "proto/calc_feature.h"

namespace ctl {

namespace hc = ZEPH_MCUC::hc;

Answer ReadMode(Device& device, PictureMode* mode) {
  Answer answer = device.Read(hc::kBase + hc::kHDRType, hc::kAllParameters);
  if (answer.exit != Exit::kDone) return answer;
  mode->set.HDRType = answer.data[0];
  mode->set.fScreenPeakLight = ZEPH_MCUC::DWQ_DECWD(&answer.data[1]);
  mode->set.fambientLight = answer.data[3];
  mode->set.pMinLum = answer.data[hc::kMinLum - hc::kHDRType];
  answer = device.Read(hc::kBase + hc::kHLGClass, 1);
  if (answer.exit != Exit::kDone) return answer;
  mode->set.HLGCalss = answer.data[0];
  answer = device.Read(CellRegister(hc::kSwitchBus), 1);
  if (answer.exit != Exit::kDone) return answer;
  mode->fpga_is_hdr = answer.data[0] == hc::kTablesLoaded;
  answer = device.Read(CellRegister(ZEPH_MCUC::feature::kHdrSwitch), 1);
  if (answer.exit == Exit::kDone) mode->fpga_is_hdr |= answer.data[0] == hc::kSwitchHDR;
  return answer;
}

std::string ModeName(std::uint8_t type) {
  if (type == hc::kHDR10) return "hdr10";
  if (type == hc::kHLG) return "hlg";
  return type == hc::kDefaultMode ? "off" : std::to_string(type);
}

// The switches alone don't tell that tables of the same mode were loaded anew.
Answer ChooseMode(Device& device, std::uint8_t type) {
  const bool calculated = type == hc::kHDR10 || type == hc::kHLG;
  Answer answer = device.Send(hc::kBase + hc::kHDRType, {type});
  if (answer.exit == Exit::kDone) answer = device.AwaitWork();
  if (answer.exit != Exit::kDone) return answer;
  answer = device.ReadBytes(CellRegister(ZEPH_MCUC::feature::kHdrSwitch), 1);
  if (answer.exit != Exit::kDone) return answer;
  if (answer.data[0] == (calculated ? hc::kSwitchHDR : hc::kSwitchDefault)) return answer;
  return {Exit::kRefused, "the device took it, but the FPGA's switch doesn't follow", {}};
}

}  // namespace ctl
