// Operations of all kinds, as writes that leave the registers of a model's peers alone.
#pragma once

#include <cstdint>
#include <vector>

#include "quivord/messages.h"

namespace deeds {

using Bytes = std::vector<std::uint8_t>;

struct Deed {
  std::uint32_t address;
  Bytes data;
  // Registers that show these bytes once it is done, and for ever after, whatever else of this
  // table is done. No bytes where there is no such place.
  struct {
    std::uint32_t address = 0;
    Bytes bytes = {};
  } shown = {};
  quivord::Target target = {};

  quivord::Request Request() const {
    return {.operation = quivord::Operation::kWrite,
            .target = target,
            .address = address,
            .data = data};
  }
};

std::vector<Deed> All();

}  // namespace deeds
