// The environment store and the board's configuration: any text is read without a fault, what a
// set has stored a get gives back, and a key or value that could pass for another line is refused.
#include <algorithm>
#include <string_view>

#include "board/envstore.h"
#include "board/settings.h"
#include "proto/data_common.h"
#include "world.h"

namespace {

bool IsKey(std::string_view key) {
  return !key.empty() && key.find_first_of("=\n") == std::string_view::npos;
}

void SetAndGet(std::string_view text, std::string_view key, std::string_view value) {
  const auto changed = board::WithSetting(text, key, value);
  const bool taken = IsKey(key) && value.find('\n') == std::string_view::npos;
  Want(changed.has_value() == taken);
}

void Configure(std::string_view text) {
  board::Settings settings;
  const std::string fault = board::ParseSettings(text, "board.conf", settings);
  Want(settings.speed >= 1 && settings.speed <= 2000);
  Want(fault.empty() || fault.starts_with("board.conf:"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Configure(text);
  const std::size_t third = size / 3;
  SetAndGet(text, text.substr(0, std::min<std::size_t>(third, 40)), text.substr(third, third));
  world::PutEnvironment({data, size});
  ZEPH_MCUC::Data_Global* const global = ZEPH_MCUC::Data_Global::getInstance();
  global->SNTransfer();
  global->ReadHardwareInfo();
  Want(board::WriteEnv("serial", "20261125"));
  Want(board::ReadEnv("serial") == "20261125");
  return 0;
}
