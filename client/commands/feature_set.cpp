#include "commands/feature_set.h"

#include "commands/feature_value.h"
#include "device.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
using std::chrono::steady_clock;
using Shown = std::span<const std::uint8_t>;

std::string NameOf(const FeatureRegister& row) { return std::string(std::string_view(row.name)); }

// A clock goes on meanwhile, on a fast board faster than here.
std::function<bool(Shown)> TimeShows(const std::vector<std::uint8_t>& wanted, std::uint32_t speed) {
  return [=, begin = steady_clock::now()](Shown shown) {
    const auto passed = std::chrono::ceil<std::chrono::seconds>(steady_clock::now() - begin);
    const auto ahead = TimePoint(shown) - TimePoint(wanted);
    return ahead.count() >= 0 && ahead <= passed * speed + std::chrono::seconds(1);
  };
}

Change MakeChange(const FeatureRegister& row, const Parsed& value, std::uint32_t speed) {
  Change change{.address = feature::kBase + row.offset,
                .data = value.bytes,
                .shown_at = FeatureAddress(row),
                .shown_length = static_cast<std::uint16_t>(row.width),
                .shows = [wanted = value.shown](Shown shown) {
                  return std::equal(shown.begin(), shown.end(), wanted.begin(), wanted.end());
                }};
  if (row.form == FeatureForm::kTime) change.shows = TimeShows(value.shown, speed);
  return change;
}

void SayDone(const Output& out, const FeatureRegister& row, const char* member, Shown before,
             Shown now) {
  const std::string value = ValueText(row, now);
  const std::string was = ValueText(row, before);
  nlohmann::json object = {{member == nullptr ? "value" : member, ValueJson(row, now)},
                           {"was", ValueJson(row, before)}};
  if (member == nullptr) object["name"] = NameOf(row);
  out.Show(NameOf(row) + " is " + value + (was == value ? "" : " (was " + was + ")"), object);
}

}  // namespace

Exit SetFeature(const Context& context, const FeatureRegister& row, const std::string& word,
                const char* member) {
  if (row.owner != FeatureOwner::kClient) {
    const bool hardware = row.owner == FeatureOwner::kHardware;
    return context.Fail(Exit::kRefused, "not sent: " + NameOf(row) + " is written by the " +
                                            (hardware ? "hardware" : "daemon") + " alone");
  }
  const Parsed value = ParseFeature(row, word);
  if (!value.fault.empty()) return context.Fail(Exit::kWrongUse, value.fault);
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  const Answer before = device->Read(row);
  if (!before.done()) return context.Fail(before);
  const Answer now = device->Write(MakeChange(row, value, context.options.speed));
  if (now.done()) {
    SayDone(context.out, row, member, before.data, now.data);
    return Exit::kDone;
  }
  if (now.data.empty()) return context.Fail(now);
  return context.Fail(now.exit, NameOf(row) + " was written, but after " +
                                    std::to_string(kSettleTime.count()) + " seconds it reads " +
                                    ValueText(row, now.data));
}

}  // namespace ctl
