#include "commands/picture_mode.h"

#include "numbers.h"
#include "proto/calc_feature.h"

namespace ctl {

namespace hc = ZEPH_MCUC::hc;

namespace {

using quivord::colour::Tables;

bool HasTables(std::uint8_t type) { return type == hc::kHDR10 || type == hc::kHLG; }

// By the bytes of both switches. A start of the daemon writes what the store holds over them, and
// leaves the tables: only the default's own value in the feature register tells of the default.
Tables TablesOf(std::uint8_t type, std::uint8_t fpga, std::uint8_t feature) {
  if (HasTables(type)) return Tables::kOfMode;
  if (type != hc::kDefaultMode) return Tables::kUnknown;
  if (fpga == hc::kTablesLoaded || feature == hc::kSwitchHDR) return Tables::kLeftOver;
  return feature == hc::kSwitchDefault ? Tables::kOfMode : Tables::kUnknown;
}

}  // namespace

Answer ReadMode(Device& device, PictureMode* mode) {
  Answer answer = device.ReadBytes(hc::kBase + hc::kHDRType, hc::kAllParameters);
  if (!answer.done()) return answer;
  mode->set.HDRType = answer.data[0];
  mode->set.fScreenPeakLight = ZEPH_MCUC::DWQ_DECWD(&answer.data[1]);
  mode->set.fambientLight = answer.data[3];
  mode->set.pMinLum = answer.data[hc::kMinLum - hc::kHDRType];
  answer = device.ReadBytes(hc::kBase + hc::kHLGClass, 1);
  if (!answer.done()) return answer;
  mode->set.HLGCalss = answer.data[0];
  answer = device.ReadBytes(CellRegister(hc::kSwitchBus), 1);
  if (!answer.done()) return answer;
  const std::uint8_t fpga = answer.data[0];
  answer = device.ReadBytes(CellRegister(ZEPH_MCUC::feature::kHdrSwitch), 1);
  if (!answer.done()) return answer;
  mode->tables = TablesOf(mode->set.HDRType, fpga, answer.data[0]);
  return answer;
}

std::string ModeName(std::uint8_t type) {
  if (type == hc::kHDR10) return "hdr10";
  if (type == hc::kHLG) return "hlg";
  return type == hc::kDefaultMode ? "off" : std::to_string(type);
}

// The switches alone don't tell that tables of the same mode were loaded anew.
Answer ChooseMode(Device& device, std::uint8_t type) {
  Answer answer = device.Send(hc::kBase + hc::kHDRType, {type});
  if (answer.done()) answer = device.AwaitWork();
  if (!answer.done()) return answer;
  answer = device.ReadBytes(CellRegister(ZEPH_MCUC::feature::kHdrSwitch), 1);
  if (!answer.done()) return answer;
  if (answer.data[0] == (HasTables(type) ? hc::kSwitchHDR : hc::kSwitchDefault)) return answer;
  return {Exit::kRefused, "the device took it, but the FPGA's switch doesn't follow", {}};
}

}  // namespace ctl
