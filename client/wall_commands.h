// The commands below `wall`, and what they share: a device's wall read, written and waited for.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

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

// A connection to the sending card and what it holds of the wall.
class WallDevice {
 public:
  enum class Scope { kRecord, kAll };  // the record of the configuration alone, or all of the wall

  explicit WallDevice(Context& context) : context_(context) {}

  // Connects. Like the others: an answer that isn't kDone says why not.
  Answer Connect();

  // Brings `bytes` up to date.
  Answer Read(Scope scope);

  // Writes the bytes of the record from offset `begin` up to `end`.
  Answer WriteRecord(std::uint32_t begin, std::uint32_t end);

  // Asks for a wall by the records of the ports.
  Answer Submit();

  // Reads until `missing` names nothing more, of a whole wall for half a second on end. After 5
  // seconds: a refusal that says what was found.
  using Missing = std::function<std::optional<std::string>(const quivord::wall::DeviceBytes&)>;
  Answer Await(Scope scope, const Missing& missing);

  quivord::wall::DeviceBytes bytes;

 private:
  Answer Write(std::uint32_t address, std::vector<std::uint8_t> data);

  Context& context_;
  std::unique_ptr<quivord::Client> client_;
};

// The wall that a device holds, or why it can't be told.
struct WallRead {
  Answer answer;
  quivord::wall::Wall wall;
};
WallRead ReadWall(Context& context, WallDevice::Scope scope);

// A wall's file, read and understood. On an error the text names the file.
quivord::Result<quivord::wall::WallFile> LoadWall(const std::filesystem::path& file);

}  // namespace ctl
