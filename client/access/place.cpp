#include "access/place.h"

#include <fstream>
#include <iterator>

#include "board/folder.h"
#include "board/settings.h"

namespace quivord::access {

Place FindPlace(const std::filesystem::path& named) {
  Place place{.board = named.empty() ? board::ChooseFolder() : named};
  std::ifstream file(place.board / "board.conf");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  board::Settings settings;
  if (!board::ParseSettings(text, "board.conf", settings).empty()) return place;
  place.slot = settings.slot;
  place.speed = settings.speed;
  return place;
}

}  // namespace quivord::access
