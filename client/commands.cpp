#include "commands.h"

namespace ctl {

std::span<const Command* const> Commands() {
  static constexpr const Command* kCommands[] = {
      &kReadCommand, &kWriteCommand, &kMonitorCommand, &kPingCommand, &kWallCommand,
  };
  return kCommands;
}

}  // namespace ctl
