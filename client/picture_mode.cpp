#include "picture_mode.h"

#include "numbers.h"
#include "proto/calc_feature.h"

namespace ctl {
namespace {

namespace hc = ZEPH_MCUC::hc;

}  // namespace

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
  if (answer.exit == Exit::kDone) mode->tables_are_hdr = answer.data[0] == hc::kTablesLoaded;
  return answer;
}

std::string ModeName(std::uint8_t type) {
  if (type == hc::kHDR10) return "hdr10";
  if (type == hc::kHLG) return "hlg";
  return type == hc::kDefaultMode ? "off" : std::to_string(type);
}

Answer ChooseMode(Device& device, std::uint8_t type) {
  const std::uint8_t wanted = type == hc::kDefaultMode ? hc::kSwitchDefault : hc::kSwitchHDR;
  Answer answer = device.Write(
      {.address = hc::kBase + hc::kHDRType,
       .data = {type},
       .shown_at = CellRegister(ZEPH_MCUC::feature::kHdrSwitch),
       .shown_length = 1,
       .shows = [wanted](std::span<const std::uint8_t> cell) { return cell[0] == wanted; }});
  if (answer.exit == Exit::kRefused && answer.text.empty()) {
    answer.text = "the device took it, but the FPGA's switch doesn't follow";
  }
  return answer;
}

}  // namespace ctl
