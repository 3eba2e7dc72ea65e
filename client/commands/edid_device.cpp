#include "commands/edid_device.h"

#include <algorithm>

#include "process/calc_inputsource.h"
#include "proto/registerspace_names.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;

const FeatureRegister& SourceRow() { return *FindFeature("edid-flag"); }

}  // namespace

std::unique_ptr<EdidDevice> EdidDevice::Open(const Context& context, Exit& exit) {
  auto device = Device::Open(context, exit);
  if (device == nullptr) return nullptr;
  return std::unique_ptr<EdidDevice>(new EdidDevice(std::move(device)));
}

EdidDevice::~EdidDevice() { PutBack(); }

Answer EdidDevice::Detect() { return device_->Read(kEDIDSpace.base(), 1); }

Answer EdidDevice::WriteSourceId(std::uint8_t source_id) {
  return device_->Write(
      {.address = FeatureAddress(SourceRow()),
       .data = {source_id},
       .shown_at = FeatureAddress(SourceRow()),
       .shown_length = 1,
       .shows = [=](std::span<const std::uint8_t> shown) { return shown[0] == source_id; }});
}

Answer EdidDevice::Select(std::uint8_t group) {
  Answer now = device_->Read(SourceRow());
  if (!now.done() || GroupOfSourceId(now.data[0]) == group) return now;
  if (!before_) {
    held_.emplace();
    before_ = now.data[0];
  }
  Answer answer = WriteSourceId(SourceIdOfGroup(group));
  if (!answer.done()) answer.text = "the device doesn't switch to the input of that group";
  return answer;
}

Answer EdidDevice::PutBack() {
  if (!before_) return {};
  Answer answer = WriteSourceId(*before_);
  if (!answer.done()) {
    answer.text = "the input that was current before, " + std::to_string(*before_) +
                  " in register 0x020001A5, could not be put back";
  }
  before_.reset();
  held_.reset();
  return answer;
}

Answer EdidDevice::Current(std::uint8_t& group) {
  Answer answer = device_->Read(SourceRow());
  if (answer.done()) group = GroupOfSourceId(answer.data[0]);
  return answer;
}

Answer EdidDevice::Read(EdidImage& image) {
  Answer answer = device_->Read(kEDIDSpace.base(), edid::kSize);
  if (!answer.done()) return answer;
  if (answer.data.size() != image.size()) return {Exit::kRefused, "refused: a short reply", {}};
  std::copy(answer.data.begin(), answer.data.end(), image.begin());
  return answer;
}

Answer EdidDevice::Write(const EdidImage& image, const VideoMode& mode) {
  const auto chosen = ChooseTiming(mode.width, mode.height, mode.rate);
  if (!chosen) return {Exit::kWrongUse, "the mode has no timing", {}};
  const Descriptor wanted = EncodeDescriptor(chosen->timing, TuneClock(chosen->timing, mode.rate));
  return device_->Write({.address = kEDIDSpace.base(),
                         .data = {image.begin(), image.end()},
                         .shown_at = kEDIDSpace.base(),
                         .shown_length = edid::kSize,
                         .shows = [=](std::span<const std::uint8_t> shown) {
                           return std::equal(wanted.begin(), wanted.end(),
                                             shown.begin() + edid::kPreferred);
                         }});
}

bool HasEdid(const EdidImage& image) {
  return std::any_of(image.begin(), image.end(), [](std::uint8_t byte) { return byte != 0; });
}

}  // namespace ctl
