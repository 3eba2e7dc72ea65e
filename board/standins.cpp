#include "standins.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "board/board.h"
#include "board/cells.h"
#include "board/envstore.h"
#include "board/faults.h"
#include "board/files.h"
#include "board/power.h"
#include "board/text.h"
#include "status.h"

namespace board_tool {
namespace {

using Arguments = std::vector<std::string>;

constexpr const char* kStores = "usr/zeph/etc/envcfg";

int WrongUse(const char* usage) {
  std::fprintf(stderr, "usage: %s\n", usage);
  return kWrongUse;
}

int EnvCfg(const Arguments& arguments) {
  if (arguments.size() == 2 && arguments[0] == "get") {
    const auto value = board::ReadEnv(arguments[1]);
    if (value) std::printf("%s\n", value->c_str());
    return value ? kDone : kFailed;
  }
  if (arguments.size() == 3 && arguments[0] == "set") {
    return board::WriteEnv(arguments[1], arguments[2]) ? kDone : kFailed;
  }
  return WrongUse("envcfg get KEY | envcfg set KEY VALUE");
}

int Fpga(const Arguments& arguments) {
  constexpr const char* kUsage = "fpga w s ADDRESS VALUE";
  if (arguments.size() != 4 || arguments[0] != "w" || arguments[1] != "s") return WrongUse(kUsage);
  const auto address = board::NumberBetween(arguments[2], 0, 0xFFFFFFFF);
  const auto value = board::NumberBetween(arguments[3], 0, 0xFF);
  if (!address || !value) return WrongUse(kUsage);
  const auto byte = static_cast<std::uint8_t>(*value);
  board::StoreBusCells(1, *address, 1, &byte);
  return kDone;
}

int Nothing(const Arguments&) { return kDone; }

int Reboot(const Arguments& arguments) {
  if (arguments != Arguments{"-f"}) return WrongUse("reboot -f");
  return board::Reboot();
}

// Brings the stores to disk, and counts.
int Sync(const Arguments&) {
  for (const auto& entry : std::filesystem::directory_iterator(board::Folder() / kStores)) {
    const board::FileHandle file(open(entry.path().c_str(), O_RDONLY | O_CLOEXEC));
    if (file && fdatasync(file.get()) != 0) return kFailed;  // one may have gone meanwhile
  }
  board::CountUp(board::Fault::kSyncCount);
  return kDone;
}

int FwSetEnv(const Arguments& arguments) {
  if (arguments.size() != 2) return WrongUse("fw_setenv NAME VALUE");
  const auto file = board::Folder() / "usr/brm100/bootenv";
  return board::SetLineOfFile(file, arguments[0], arguments[1]) ? kDone : kFailed;
}

struct StandIn {
  std::string_view name;
  int (*run)(const Arguments&);
};

constexpr StandIn kRows[] = {
    {"envcfg", EnvCfg}, {"fpga", Fpga}, {"hwclock", Nothing},    {"killall", Nothing},
    {"reboot", Reboot}, {"sync", Sync}, {"fw_setenv", FwSetEnv},
};

}  // namespace

std::optional<int> RunStandIn(std::string_view name, const Arguments& arguments) {
  for (const StandIn& row : kRows) {
    if (row.name == name) return row.run(arguments);
  }
  return std::nullopt;
}

}  // namespace board_tool
