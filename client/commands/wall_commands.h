// The commands below `wall`, and what they share: a device's wall read, written and waited for.
#pragma once

#include <filesystem>

#include "access/wall.h"
#include "command.h"
#include "register.h"
#include "wall/file.h"
#include "wall/model.h"

namespace ctl {

extern const Command kWallConfigure;
extern const Command kWallShow;
extern const Command kWallDraw;
extern const Command kWallAdvanced;
extern const Command kWallExport;

using WallDevice = quivord::access::WallDevice;

// The wall that a device holds, or why it can't be told.
struct WallRead {
  Answer answer;
  quivord::wall::Wall wall;
};
WallRead ReadWall(Context& context, WallDevice::Scope scope);

// A wall's file, read and understood. On an error the text names the file.
quivord::Result<quivord::wall::WallFile> LoadWall(const std::filesystem::path& file);

}  // namespace ctl
