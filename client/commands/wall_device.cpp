#include "commands/wall_commands.h"
#include "json/load.h"

namespace ctl {

WallRead ReadWall(Context& context, WallDevice::Scope scope) {
  const auto client = ConnectForSender(context, "a wall");
  if (!client) return {AnswerOf(client.error()), {}};
  const auto device = std::make_unique<WallDevice>(RegistersOf(context.options, *client.value()));
  const auto read = device->Read(scope);
  if (!read) return {AnswerOf(read), {}};
  return {{}, quivord::wall::Understand(device->bytes)};
}

quivord::Result<quivord::wall::WallFile> LoadWall(const std::filesystem::path& file) {
  return quivord::json::Load(file, "a wall", quivord::wall::ParseFile);
}

}  // namespace ctl
