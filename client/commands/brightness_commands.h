// The commands below `brightness`, and what they share: the plan of a device read and written.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "access/brightness.h"
#include "brightness/plan.h"
#include "command.h"
#include "proto/calc_brightness_time.h"
#include "register.h"

namespace ctl {

extern const Command kBrightnessSet;
extern const Command kBrightnessPlan;
extern const Command kBrightnessShow;
extern const Command kBrightnessExport;
extern const Command kBrightnessPreview;

// The plan of the sending card. An answer that isn't kDone says why not.
class BrightnessDevice {
 public:
  explicit BrightnessDevice(Context& context) : context_(context) {}

  Answer Connect();

  // As in the library.
  using Progress = quivord::access::BrightnessDevice::Progress;
  Answer WriteTable(const quivord::brightness::Bytes& table, const Progress& progress);

 private:
  Context& context_;
  std::unique_ptr<quivord::Client> client_;
};

// The plan that the device holds, and its clock; or why it can't be told.
struct PlanRead {
  Answer answer;
  quivord::brightness::Plan plan;
  std::optional<ZEPH_MCUC::brightness::Moment> now;
};
PlanRead ReadPlan(Context& context);

// A plan's file, read and checked. On an error the text names the file.
quivord::Result<quivord::brightness::Plan> LoadPlan(const std::filesystem::path& file);

}  // namespace ctl
