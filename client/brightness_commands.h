// The commands below `brightness`, and what they share: the plan of a device read and written.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

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

// The sending card's brightness space. Like its others, an answer that isn't kDone says why not.
class BrightnessDevice {
 public:
  explicit BrightnessDevice(Context& context) : context_(context) {}

  Answer Connect();

  // The whole table, into `data` of the answer.
  Answer ReadTable();

  // The device's clock; nothing where it can't be told.
  std::optional<ZEPH_MCUC::brightness::Moment> ReadClock();

  // Sends `table` so that it is stored and in force, in pieces of at most 512 bytes, and reads
  // until the device shows it, 5 seconds at most. `progress` hears how many bytes have gone.
  using Progress = std::function<void(std::size_t sent)>;
  Answer WriteTable(const quivord::brightness::Bytes& table, const Progress& progress);

 private:
  Answer Read(std::size_t offset, std::size_t length);
  Answer Write(std::size_t offset, std::vector<std::uint8_t> data);
  Answer WritePieces(const quivord::brightness::Bytes& table, const Progress& progress);
  Answer Await(const quivord::brightness::Bytes& table);

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
