// The program under the name of one of the device's outside programs.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace board_tool {

// Does what the stand-in `name` does and returns its exit status; nothing where no stand-in has
// that name. Uses up no fault counter and writes no trace of its own, a reboot aside.
std::optional<int> RunStandIn(std::string_view name, const std::vector<std::string>& arguments);

}  // namespace board_tool
