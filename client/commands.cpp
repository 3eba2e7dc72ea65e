#include "commands.h"

namespace ctl {

std::span<const Command* const> Commands() {
  // A line each, so that commands join without touching others.
  // clang-format off
  static constexpr const Command* kCommands[] = {
      &kStatusCommand,
      &kWallCommand,
      &kCardCommand,
      &kBrightnessCommand,
      &kOutputCommand,
      &kInputsCommand,
      &kEdidCommand,
      &kTimingCommand,
      &kScaleCommand,
      &kHdrCommand,
      &kPictureCommand,
      &kGammaCommand,
      &kPatternCommand,
      &kWarmupCommand,
      &kFeatureCommand,
      &kTimeCommand,
      &kMappingCommand,
      &kFilesCommand,
      &kIdentityCommand,
      &kSaveCommand,
      &kReloadCommand,
      &kResetCommand,
      &kMonitorCommand,
      &kRecordCommand,
      &kReplayCommand,
      &kStoreCommand,
      &kReadCommand,
      &kWriteCommand,
      &kTestPointCommand,
      &kPingCommand,
  };
  // clang-format on
  return kCommands;
}

}  // namespace ctl
