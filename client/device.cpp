#include "device.h"

#include <algorithm>
#include <thread>

#include "access/work.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using std::chrono::steady_clock;

constexpr std::uint32_t kCells = CellRegister(0);
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
  if (const auto obstacle = SenderObstacle(context.options)) {
    exit = context.Fail(Exit::kWrongUse, *obstacle);
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
    Answer answer = ReadBytes(stretch.base + stretch.begin, length);
    if (!answer.done()) return answer;
    std::copy(answer.data.begin(), answer.data.end(),
              (page.*stretch.bytes).begin() + stretch.begin);
  }
  return {};
}

Answer Device::Read(const FeatureRegister& row) {
  return ReadBytes(FeatureAddress(row), row.width);
}

Answer Device::Read(std::uint32_t address, std::uint16_t length) {
  return ReadRegister(options_, *client_, address, length);
}

Answer Device::Await(std::uint32_t address, std::uint16_t length, const Shows& shows) {
  const auto deadline = steady_clock::now() + kSettleTime;
  // Twice in a row: a value that the device takes back shows for a moment.
  for (int shown = 0;;) {
    Answer answer = ReadRegister(options_, *client_, address, length);
    if (!answer.done()) return answer;
    shown = answer.data.size() == length && shows(answer.data) ? shown + 1 : 0;
    if (shown == 2) return answer;
    if (steady_clock::now() >= deadline) return {Exit::kRefused, "", std::move(answer.data)};
    std::this_thread::sleep_for(kLook);
  }
}

Answer Device::Write(const Change& change) {
  Answer answer = Send(change.address, change.data);
  if (!answer.done()) return answer;
  return Await(change.shown_at, change.shown_length, change.shows);
}

Answer Device::ReadBytes(std::uint32_t address, std::size_t length) {
  Answer answer = ReadRegister(options_, *client_, address, static_cast<std::uint16_t>(length));
  if (answer.done() && answer.data.size() != length) {
    return {Exit::kRefused, "refused: a short reply", {}};
  }
  return answer;
}

Answer Device::Send(std::uint32_t address, std::vector<std::uint8_t> data) {
  if (const auto obstacle = WriteObstacle(options_, address, data.size())) {
    return {Exit::kRefused, "not sent: " + *obstacle, {}};
  }
  return WriteRegister(options_, *client_, address, std::move(data));
}

Answer Device::AwaitWork(std::chrono::milliseconds limit) {
  const quivord::access::Registers sender(*client_, options_.target, limit);
  return AnswerOf(quivord::access::AwaitWork(sender, limit));
}

Answer Device::ReadBehind(const quivord::Target& target, std::uint32_t address,
                          std::uint16_t length) {
  Options behind = options_;
  behind.target = target;
  return ReadRegister(behind, *client_, address, length);
}

std::uint32_t FeatureAddress(const FeatureRegister& row) {
  return (row.place == FeaturePlace::kCell ? kCells : feature::kBase) + row.offset;
}

}  // namespace ctl
