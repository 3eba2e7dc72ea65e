#include "video/scale_plan.h"

#include <cstdio>

#include "video/mode.h"

namespace quivord::video {
namespace {

using namespace ZEPH_MCUC;
using Rows = std::vector<std::vector<std::string>>;

template <class... Values>
std::string Format(const char* format, Values... values) {
  char text[160];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

template <class Bytes>
std::string Hex(const Bytes& bytes) {
  std::string text;
  for (const uint8_t byte : bytes) text += Format("%02x", unsigned{byte});
  return text;
}

// What both images have in common.
template <class Image>
void AddImage(const char* name, const Image& i, Rows& rows) {
  rows.push_back(
      {name, Format("reads %u × %u from (%u, %u), makes %u × %u", i.vin_h_disp, i.vin_v_disp,
                    i.vin_start_h_pos, i.vin_start_v_pos, i.vout_h_disp, i.vout_v_disp)});
  rows.push_back({"  step", FixedText(i.h_ratio) + " × " + FixedText(i.v_ratio) +
                                " input pixels for an output pixel"});
  rows.push_back({"  phase", FixedText(i.init_h_phase) + ", " + FixedText(i.init_v_phase)});
  rows.push_back(
      {"  filters", Format("%u across, %u down", i.coeff_lut & 0x0FU, i.coeff_lut >> 4 & 0x0FU)});
  rows.push_back({"  memory", Format("0x%08X", i.mem_start_addr)});
}

template <class Image>
nlohmann::ordered_json ImageJson(const Image& i) {
  return {{"h_ratio", i.h_ratio},
          {"v_ratio", i.v_ratio},
          {"init_h_phase", i.init_h_phase},
          {"init_v_phase", i.init_v_phase},
          {"in",
           {{"x", i.vin_start_h_pos},
            {"y", i.vin_start_v_pos},
            {"width", i.vin_h_disp},
            {"height", i.vin_v_disp}}},
          {"out", {{"width", i.vout_h_disp}, {"height", i.vout_v_disp}}},
          {"coeff_lut", i.coeff_lut},
          {"mem_start_addr", i.mem_start_addr}};
}

nlohmann::ordered_json RectangleJson(const pos_t& r) {
  return {{"x", r.x}, {"y", r.y}, {"width", r.width}, {"height", r.height}};
}

}  // namespace

void Calculate(ScalePlan& plan) {
  const scaler_pair_param_t request{1, 0, 0, plan.source, plan.layer, plan.output};
  plan.images = {};
  ScalerPairConfig(plan.scaler, &request, &plan.images, &plan.result);
}

std::string Obstacle(const ScalePlan& plan) {
  switch (plan.result) {
    case EN_RET_SUCCESS:
      return "";
    case EN_RET_POS_ERROR:
      return "nothing of the layer lies in the output region";
    default:
      return "a width or height of one pixel can't be scaled";
  }
}

std::string FixedText(uint32_t value) { return Format("%.4f", value / 65536.0); }

Rows PlanRows(const ScalePlan& plan) {
  const auto& in = plan.images.scaler_in;
  const auto& out = plan.images.scaler_out;
  Rows rows;
  AddImage("front scaler", in, rows);
  rows.push_back({"  0xF00000", Hex(kInScalerImage.Pack(in))});
  AddImage("back scaler", out, rows);
  rows.push_back({"  placed at",
                  Format("(%u, %u) of the output", out.vout_start_h_pos, out.vout_start_v_pos)});
  rows.push_back({"  0xF00040", Hex(kOutScalerImage.Pack(out))});
  return rows;
}

nlohmann::ordered_json PlanJson(const ScalePlan& plan) {
  const auto& images = plan.images;
  auto front = ImageJson(images.scaler_in);
  auto back = ImageJson(images.scaler_out);
  back["placed"] = {{"x", images.scaler_out.vout_start_h_pos},
                    {"y", images.scaler_out.vout_start_v_pos}};
  front["image"] = Hex(kInScalerImage.Pack(images.scaler_in));
  back["image"] = Hex(kOutScalerImage.Pack(images.scaler_out));
  return {{"scaler", plan.scaler},
          {"source", RectangleJson(plan.source)},
          {"layer", RectangleJson(plan.layer)},
          {"output", RectangleJson(plan.output)},
          {"front", front},
          {"back", back}};
}

}  // namespace quivord::video
