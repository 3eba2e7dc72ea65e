// A client's EDID, whatever it holds: no fault in taking its mode, and what the device then shows
// is a valid image whose first timing reads back as a mode that a descriptor can hold. What follows
// in the input is taken for a mode of its own, as a stored record could hold it.
#include <platform/edid.h>

#include <algorithm>
#include <cstdlib>

#include "process/calc_edid.h"

namespace {

using namespace ZEPH_MCUC;

void Want(bool holds) {
  if (!holds) std::abort();
}

EdidImage Model() {
  ModifyEDIDData_t request{};
  request.EDIDType = HDMI_4K1K;
  EdidImage image{};
  ModifyEDID_API.Modify_EDID(request, image.data());
  return image;
}

void ShowMode(const VideoMode& mode, bool from_client) {
  static const EdidImage model = Model();
  EdidImage image{};
  const EdidFault fault = BuildEdid(model, mode.width, mode.height, mode.rate, &image);
  if (fault == EdidFault::kNoTiming && !from_client) return;
  Want(fault == EdidFault::kNone && VerifyEdid(image) == EdidFault::kNone);
  if (!from_client) return;
  const auto shown = PreferredMode(std::span(image).first<edid::kRead>());
  Want(shown.has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size < edid::kRead) return 0;
  if (const auto mode = PreferredMode(std::span<const uint8_t, edid::kRead>(data, edid::kRead))) {
    ShowMode(*mode, true);
  }
  if (size < edid::kRead + 6) return 0;
  const auto word = [&](std::size_t at) {
    return static_cast<uint16_t>(data[edid::kRead + at] | data[edid::kRead + at + 1] << 8);
  };
  ShowMode({word(0), word(2), word(4)}, false);
  return 0;
}
