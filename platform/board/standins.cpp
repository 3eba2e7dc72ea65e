#include "board/standins.h"

#include <unistd.h>

#include <system_error>

#include "board/builttool.h"
#include "board/files.h"

namespace board {
namespace {

namespace fs = std::filesystem;

fs::path BoardProgram() {
  std::error_code unreadable;
  const fs::path own = fs::read_symlink("/proc/self/exe", unreadable);
  const fs::path built = BuiltTool();
  for (const fs::path& program : {own.parent_path() / "quivord-board", built}) {
    if (access(program.c_str(), X_OK) == 0) return program;
  }
  const std::string also = built.empty() ? "" : ", nor at " + built.string();
  Fail("the program quivord-board is not beside " + own.string() + also + "; put it there");
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
