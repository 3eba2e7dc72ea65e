// One write to the feature space on its way through its steps.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "proto/calc_feature.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {

// What a bypass switch leaves for the FPGA: the offsets at 0x28 and the size at 0x1EC.
struct BypassGeometry {
  std::array<uint8_t, 4> offsets;
  std::array<uint8_t, 4> size;
};

struct FeatureWrite {
  Data_Global& global;
  SharedBytes<512>& reg;  // the feature image
  uint32_t address;       // the register
  uint32_t offset;        // its low 16 bits
  std::span<const uint8_t> data;
  std::optional<BypassGeometry> switched = {};  // set where this write switched bypass

  uint16_t length() const { return static_cast<uint16_t>(data.size()); }
  bool IsByteAt(uint32_t at) const { return offset == at && data.size() == 1; }
  bool BypassIsOn() const { return reg[feature::kBypass] != 0; }
};

}  // namespace ZEPH_MCUC
