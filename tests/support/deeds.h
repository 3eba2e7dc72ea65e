// Operations of all kinds, as writes that leave the registers of a model's peers alone.
#pragma once

#include <cstdint>
#include <vector>

#include "support/brightness_bytes.h"

namespace deeds {

struct Deed {
  std::uint32_t address;
  std::vector<std::uint8_t> data;
};

inline std::vector<Deed> All() {
  const brightness_bytes::Mix mix{.nodes = {{6, 0, false, 0x7F, 30}, {18, 0, true, 0x7F, 0}},
                                  .sensors = {{0, 0, 0, 1}},
                                  .map = {{100, 20}, {1000, 90}},
                                  .fallback = 50};
  return {{0x0A000000, mix.Bytes()},
          {0x0A000000, {0x00}},
          {0x02200117, {0x58}},
          {0x02200117, {0x59}},
          {0x02200117, {0x00}},
          {0x0E002000, std::vector<std::uint8_t>(1024, 7)},
          {0x12010000, std::vector<std::uint8_t>(0x20, 1)},
          {0x0F008000, std::vector<std::uint8_t>(1024, 9)},
          {0x02400000, {0x01, 0x00}},
          {0x01000018, {0x01}}};
}

}  // namespace deeds
