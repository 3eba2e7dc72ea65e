// The commands. A new one is a source of its own that defines its row, declared here and listed in
// commands.cpp.
#pragma once

#include <span>

#include "command.h"

namespace ctl {

extern const Command kReadCommand;
extern const Command kWriteCommand;
extern const Command kMonitorCommand;
extern const Command kPingCommand;
extern const Command kBrightnessCommand;
extern const Command kStatusCommand;
extern const Command kOutputCommand;
extern const Command kTimeCommand;
extern const Command kFeatureCommand;
extern const Command kStoreCommand;
extern const Command kWallCommand;
extern const Command kEdidCommand;
extern const Command kInputsCommand;
extern const Command kTimingCommand;
extern const Command kScaleCommand;
extern const Command kSaveCommand;
extern const Command kReloadCommand;
extern const Command kMappingCommand;
extern const Command kTestPointCommand;
extern const Command kIdentityCommand;
extern const Command kFilesCommand;
extern const Command kResetCommand;
extern const Command kCardCommand;
extern const Command kHdrCommand;
extern const Command kPictureCommand;
extern const Command kGammaCommand;
extern const Command kPatternCommand;
extern const Command kWarmupCommand;
extern const Command kRecordCommand;
extern const Command kReplayCommand;

// In the order in which help lists them.
std::span<const Command* const> Commands();

}  // namespace ctl
