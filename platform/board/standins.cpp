#include "board/standins.h"

#include <unistd.h>

#include <system_error>

#include "board/files.h"

namespace board {
namespace {

namespace fs = std::filesystem;

fs::path BoardProgram() {
  std::error_code unreadable;
  const fs::path own = fs::read_symlink("/proc/self/exe", unreadable);
  for (const fs::path& program :
       {own.parent_path() / "quivord-board", fs::path(QUIVORD_BOARD_TOOL)}) {
    if (access(program.c_str(), X_OK) == 0) return program;
  }
  Fail("the program quivord-board is neither beside " + own.string() + " nor at " +
       QUIVORD_BOARD_TOOL + "; build it or put it there");
}

}  // namespace

void CreateStandIns(const fs::path& folder) {
  for (const std::string_view stand_in : kStandIns) {
    const fs::path place = folder / stand_in;
    if (fs::exists(place)) continue;
    std::error_code fault;
    fs::remove(place, fault);  // a link that leads nowhere
    fs::create_symlink(BoardProgram(), place, fault);
    if (fault) Fail("cannot create " + place.string() + ": " + fault.message());
  }
}

}  // namespace board
