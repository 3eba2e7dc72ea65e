#include "device.h"

#include <algorithm>
#include <thread>

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using std::chrono::steady_clock;

constexpr std::uint32_t kCells = 0xF0000000;  // the register of FPGA cell 0
constexpr auto kLook = std::chrono::milliseconds(20);

// A stretch of a page that one request reads. The image is read in two: one request over both would
// make the daemon fetch the page from the FPGA, over values that only the daemon keeps.
struct Stretch {
  std::uint32_t base;
  std::array<std::uint8_t, feature::kSize> FeaturePage::*bytes;
  std::uint32_t begin;
  std::uint32_t end;
};
constexpr Stretch kStretches[] = {
    {feature::kBase, &FeaturePage::image, 0, feature::kBusEnd},
    {feature::kBase, &FeaturePage::image, feature::kBusEnd, feature::kSize},
    {kCells, &FeaturePage::cells, 0, feature::kSize},
};

}  // namespace

std::span<const std::uint8_t> FeaturePage::Bytes(const FeatureRegister& row) const {
  const auto& bytes = row.place == FeaturePlace::kCell ? cells : image;
  return std::span(bytes).subspan(row.offset, row.width);
}

std::unique_ptr<Device> Device::Open(const Context& context, Exit& exit) {
  if (context.options.target.device != JSHL_TypeSender) {
    exit = context.Fail(Exit::kWrongUse, "this is about the sending card; leave --device out");
    return nullptr;
  }
  auto client = context.Connect();
  if (!client) {
    exit = context.Fail(client.error());
    return nullptr;
  }
  return std::unique_ptr<Device>(new Device(context.options, std::move(client.value())));
}

Answer Device::ReadPage(FeaturePage& page) {
  for (const Stretch& stretch : kStretches) {
    const auto length = static_cast<std::uint16_t>(stretch.end - stretch.begin);
    Answer answer = ReadRegister(options_, *client_, stretch.base + stretch.begin, length);
    if (answer.exit != Exit::kDone) return answer;
    if (answer.data.size() != length) return {Exit::kRefused, "refused: a short reply", {}};
    std::copy(answer.data.begin(), answer.data.end(),
              (page.*stretch.bytes).begin() + stretch.begin);
  }
  return {};
}

Answer Device::Read(const FeatureRegister& row) {
  Answer answer =
      ReadRegister(options_, *client_, FeatureAddress(row), static_cast<std::uint16_t>(row.width));
  if (answer.exit == Exit::kDone && answer.data.size() != row.width) {
    return {Exit::kRefused, "refused: a short reply", {}};
  }
  return answer;
}

Answer Device::Read(std::uint32_t address, std::uint16_t length) {
  return ReadRegister(options_, *client_, address, length);
}

Answer Device::Write(const Change& change) {
  const auto deadline = steady_clock::now() + kSettleTime;
  Answer answer = WriteRegister(options_, *client_, change.address, change.data);
  if (answer.exit != Exit::kDone) return answer;
  while (true) {
    answer = ReadRegister(options_, *client_, change.shown_at, change.shown_length);
    if (answer.exit != Exit::kDone) return answer;
    if (answer.data.size() == change.shown_length && change.shows(answer.data)) return answer;
    if (steady_clock::now() >= deadline) break;
    std::this_thread::sleep_for(kLook);
  }
  answer.exit = Exit::kRefused;
  return answer;
}

std::uint32_t FeatureAddress(const FeatureRegister& row) {
  return (row.place == FeaturePlace::kCell ? kCells : feature::kBase) + row.offset;
}

}  // namespace ctl
