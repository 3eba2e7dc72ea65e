// An EDID, whatever it holds. From a client's the device takes a mode without fault, or none, and
// what it then shows is a valid image whose first timing reads back, field by field, as the one
// that was chosen. The bytes behind are taken for a mode of their own, as a stored record could
// hold it; and a file of so many bytes is put into words.
#include <platform/edid.h>

#include <algorithm>

#include "process/calc_edid.h"
#include "video/edid_facts.h"
#include "want.h"

namespace {

using namespace ZEPH_MCUC;

EdidImage Model() {
  ModifyEDIDData_t request{};
  request.EDIDType = HDMI_4K1K;
  EdidImage image{};
  ModifyEDID_API.Modify_EDID(request, image.data());
  return image;
}

void WantTiming(const EdidImage& image, const VideoMode& mode) {
  DetailedTiming chosen = ChooseTiming(mode.width, mode.height, mode.rate)->timing;
  chosen.PixelClock = TuneClock(chosen, mode.rate) * kDescriptorClock_Hz;
  const auto first = std::span(image).subspan<edid::kPreferred, kDescriptorSize>();
  Want(DecodeDescriptor(first) == chosen);
}

void ShowMode(const VideoMode& mode, bool from_client) {
  static const EdidImage model = Model();
  EdidImage image{};
  const EdidFault fault = BuildEdid(model, mode.width, mode.height, mode.rate, &image);
  if (fault == EdidFault::kNoTiming && !from_client) return;
  Want(fault == EdidFault::kNone && VerifyEdid(image) == EdidFault::kNone);
  if (from_client) WantTiming(image, mode);
}

void PutIntoWords(std::span<const uint8_t> file) {
  const auto facts = quivord::video::ReadEdid(file);
  Want(facts.has_value() && !quivord::video::EdidRows(*facts).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size < edid::kRead) return 0;
  if (const auto mode = PreferredMode(std::span<const uint8_t, edid::kRead>(data, edid::kRead))) {
    ShowMode(*mode, true);
  }
  if (size >= edid::kBlock) PutIntoWords({data, size < edid::kSize ? edid::kBlock : edid::kSize});
  if (size < edid::kRead + 6) return 0;
  const auto word = [&](std::size_t at) {
    return static_cast<uint16_t>(data[edid::kRead + at] | data[edid::kRead + at + 1] << 8);
  };
  ShowMode({word(0), word(2), word(4)}, false);
  return 0;
}
