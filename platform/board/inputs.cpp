#include "board/inputs.h"

#include <platform/edid.h>
#include <platform/inputsource.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "board/board.h"
#include "board/files.h"
#include "board/folder.h"

namespace board {
namespace {

constexpr std::size_t kEdidSize = 256;

// A type of input board: what its interface takes, and the EDID that it has of its own.
struct Type {
  std::string_view name;
  en_if_type interface;
  ll_video_if_cap_t cap;
  EDIDTemplate_t edid;
};
constexpr Type kTypes[] = {
    {"DVI", EN_IF_T_DVI, {0, 165, 2200, 1250, 1920, 1200}, DVI_2K1K},
    {"DDVI", EN_IF_T_DDVI, {0, 330, 4096, 2250, 3840, 2160}, DVI_4K1K},
    {"HDMI14", EN_IF_T_HDMI14, {0, 340, 4400, 2250, 4096, 2160}, HDMI_4K1K},
    {"HDMI20", EN_IF_T_HDMI20, {0, 600, 4400, 2250, 4096, 2160}, HDMI_4K2K_VIC},
    {"DP11", EN_IF_T_DP11, {0, 270, 4400, 2250, 2560, 1600}, DP_4K1K},
    {"DP12", EN_IF_T_DP12, {0, 600, 4400, 2250, 4096, 2160}, DP_4K2K},
    {"DP14", EN_IF_T_DP14, {0, 1080, 8800, 4500, 7680, 4320}, DP_4K2K_VIC},
    {"SDI3G", EN_IF_T_SDI3G, {0, 149, 2640, 1125, 1920, 1080}, HDMI_2K1K},
    {"SDI6G", EN_IF_T_SDI6G, {0, 297, 5280, 2250, 3840, 2160}, HDMI_4K2K},
    {"SDI12G", EN_IF_T_SDI12G, {0, 594, 5280, 2250, 3840, 2160}, HDMI_4K2K},
    {"VGA", EN_IF_T_VGA, {0, 205, 2160, 1250, 1920, 1200}, VGA_2K1K},
};

const Type& TypeNamed(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                         [=](const Type& type) { return type.name == name; });
  return found == std::end(kTypes) ? kTypes[0] : *found;
}

// The type of the input board `id`; null where none is wired.
const Type* Find(obj_id_t id) {
  for (const auto& input : Config().inputs) {
    if (input && input->id == id) return &TypeNamed(input->type);
  }
  return nullptr;
}

std::filesystem::path FileOf(const std::filesystem::path& folder, obj_id_t id) {
  char name[16];
  std::snprintf(name, sizeof name, "%04x.edid", id);
  return folder / "inputs" / name;
}

std::string OwnEdid(const Type& type) {
  ModifyEDIDData_t request{};
  request.EDIDType = type.edid;
  std::array<unsigned char, kEdidSize> image{};
  ModifyEDID_API.Modify_EDID(request, image.data());
  return {image.begin(), image.end()};
}

void TraceEdid(char direction, obj_id_t id, bool done, const void* image) {
  char words[16];
  std::snprintf(words, sizeof words, "%c 0x%04x ", direction, id);
  Trace(TraceKind::kEdid, words + Hex(image, done ? kEdidSize : 0));
}

ll_ret_t Read(obj_id_t id, std::uint8_t* edid) {
  if (Find(id) == nullptr) return ll_ret_obj_absent;
  if (TakeFault(Fault::kEdidRead)) return ll_ret_comm_err;
  const auto image = ReadWhole(FileOf(Folder(), id));
  if (!image) return ll_ret_fail;
  if (image->size() != kEdidSize) return ll_ret_unexpected;
  std::copy(image->begin(), image->end(), edid);
  return ll_ret_ok;
}

ll_ret_t Write(obj_id_t id, const std::uint8_t* edid) {
  if (Find(id) == nullptr) return ll_ret_obj_absent;
  if (TakeFault(Fault::kEdidWrite)) return ll_ret_comm_err;
  const std::string_view image(reinterpret_cast<const char*>(edid), kEdidSize);
  return ReplaceWhole(FileOf(Folder(), id), image) ? ll_ret_ok : ll_ret_fail;
}

}  // namespace

void CreateInputs(const std::filesystem::path& folder, const Settings& settings) {
  for (const auto& input : settings.inputs) {
    if (input) CreateText(FileOf(folder, input->id), OwnEdid(TypeNamed(input->type)));
  }
}

}  // namespace board

ll_ret_t ll_initial() { return ll_ret_ok; }

// A handle is an input board's place in the configuration, from 1.
ll_handle_t ll_find_input_next(ll_handle_t handle) {
  const auto& inputs = board::Config().inputs;
  while (handle < inputs.size()) {
    if (inputs[handle++]) return handle;
  }
  return 0;
}

int ll_find_input_filter_all(ll_handle_t handle, obj_id_t* id) {
  const auto& inputs = board::Config().inputs;
  if (id == nullptr || handle == 0 || handle > inputs.size() || !inputs[handle - 1]) return 0;
  *id = inputs[handle - 1]->id;
  return 1;
}

ll_ret_t ll_get_input_info(obj_id_t id, en_if_type* type, ll_video_if_cap_t* cap) {
  if (type == nullptr || cap == nullptr) return ll_ret_sem_err;
  const board::Type* const found = board::Find(id);
  if (found == nullptr) return ll_ret_obj_absent;
  *type = found->interface;
  *cap = found->cap;
  return ll_ret_ok;
}

ll_ret_t ll_input_get_edid(obj_id_t id, uint8_t* edid, uint16_t* datalen) {
  if (edid == nullptr || datalen == nullptr || *datalen < board::kEdidSize) return ll_ret_sem_err;
  const auto order = board::TraceOrder(board::TraceKind::kEdid);
  const ll_ret_t result = board::Read(id, edid);
  if (order) board::TraceEdid('R', id, result == ll_ret_ok, edid);
  if (result == ll_ret_ok) *datalen = board::kEdidSize;
  return result;
}

ll_ret_t ll_input_set_edid(obj_id_t id, const uint8_t* edid, uint16_t datalen) {
  if (edid == nullptr || datalen != board::kEdidSize) return ll_ret_sem_err;
  const auto order = board::TraceOrder(board::TraceKind::kEdid);
  const ll_ret_t result = board::Write(id, edid);
  if (order) board::TraceEdid('W', id, result == ll_ret_ok, edid);
  return result;
}
