// platform/inputsource.h: the input boards. Each is given the EDID that it shows already.
#include <platform/inputsource.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "check/report.h"

namespace check {
namespace {

constexpr std::uint16_t kImageSize = 256;
constexpr int kMostObjects = 256;
constexpr obj_id_t kUntouchedId = 0xABCD;

// The input boards that the list names; nothing where it has no end.
std::vector<obj_id_t> Boards(Report& report) {
  std::vector<obj_id_t> boards;
  bool untouched = true;
  ll_handle_t handle = ll_find_input_next(0);
  int objects = 0;
  for (; handle != 0 && objects < kMostObjects; handle = ll_find_input_next(handle), ++objects) {
    obj_id_t id = kUntouchedId;
    if (ll_find_input_filter_all(handle, &id) != 0) {
      boards.push_back(id);
    } else {
      untouched = untouched && id == kUntouchedId;
    }
  }
  report.Holds(handle == 0, "the list of objects has an end");
  report.Holds(untouched, "an object that is no input board leaves the id");
  return boards;
}

// An id that no board has.
obj_id_t Absent(const std::vector<obj_id_t>& boards) {
  obj_id_t id = 0xFF;
  while (std::find(boards.begin(), boards.end(), id) != boards.end()) --id;
  return id;
}

bool IsImage(Buffer& image) {
  constexpr std::array<std::uint8_t, 8> kHeader{0, 255, 255, 255, 255, 255, 255, 0};
  bool good = std::equal(kHeader.begin(), kHeader.end(), image.data());
  for (std::size_t block = 0; block < kImageSize; block += 128) {
    std::uint8_t sum = 0;
    for (std::size_t i = 0; i < 128; ++i)
      sum = static_cast<std::uint8_t>(sum + image.data()[block + i]);
    good = good && sum == 0;
  }
  return good && image.Untouched(kImageSize);
}

bool Get(obj_id_t id, Buffer& image) {
  std::uint16_t size = kImageSize;
  return ll_input_get_edid(id, image.data(), &size) == ll_ret_ok && size == kImageSize;
}

void OneBoard(Report& report, obj_id_t id) {
  char name[16];
  std::snprintf(name, sizeof name, "board 0x%04x ", id);
  const auto holds = [&](bool good, const char* claim) {
    report.Holds(good, std::string(name) + claim);
  };
  en_if_type type{};
  ll_video_if_cap_t cap{};
  report.Holds(
      ll_get_input_info(id, &type, &cap) == ll_ret_ok && type >= EN_IF_T_DVI && type <= EN_IF_T_VGA,
      "tells its interface");
  Buffer image(kImageSize), again(kImageSize);
  holds(Get(id, image) && IsImage(image), "shows a valid EDID");
  holds(ll_input_set_edid(id, image.data(), kImageSize) == ll_ret_ok && Get(id, again) &&
            again == image,
        "shows the EDID that it was given");
  const bool both = AtOnce(2, [&](int i) {
    Buffer seen(kImageSize);
    for (int round = 0; round < 10; ++round) {
      const bool good = i == 0 ? ll_input_set_edid(id, image.data(), kImageSize) == ll_ret_ok
                               : ll_initial() == ll_ret_ok && Get(id, seen) && seen == image;
      if (!good) return false;
    }
    return true;
  });
  holds(both, "takes a detection and an EDID write at the same time");
}

void NoBoard(Report& report, obj_id_t id) {
  auto type = static_cast<en_if_type>(77);
  ll_video_if_cap_t cap{77, 77, 77, 77, 77, 77};
  report.Holds(ll_get_input_info(id, &type, &cap) != ll_ret_ok && type == 77 &&
                   cap.bandwidth == 77 && cap.height == 77,
               "a board that is not there tells nothing");
  Buffer image(kImageSize);
  std::uint16_t size = kImageSize;
  report.Holds(ll_input_get_edid(id, image.data(), &size) != ll_ret_ok && image.Untouched() &&
                   size == kImageSize,
               "a board that is not there shows no EDID");
  report.Holds(ll_input_set_edid(id, image.data(), kImageSize) != ll_ret_ok,
               "a board that is not there takes no EDID");
}

}  // namespace

void Inputs(Report& report, const Options&) {
  report.Holds(ll_initial() == ll_ret_ok, "the list is made");
  const std::vector<obj_id_t> boards = Boards(report);
  report.Holds(std::set(boards.begin(), boards.end()).size() == boards.size(),
               "each board has an id of its own");
  if (boards.empty()) report.Skip("what a board tells and shows", "no input board is there");
  for (const obj_id_t id : boards) OneBoard(report, id);
  NoBoard(report, Absent(boards));
}

}  // namespace check
