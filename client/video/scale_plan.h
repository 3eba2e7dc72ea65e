// One layer through the pair of scalers: what is asked for, what comes out, in words and as JSON.
// Pure.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "process/scaler.h"

namespace quivord::video {

struct ScalePlan {
  uint8_t scaler = 3;
  ZEPH_MCUC::pos_t source{};
  ZEPH_MCUC::pos_t layer{};
  ZEPH_MCUC::pos_t output{};
  ZEPH_MCUC::en_scaler_calc_ret result = ZEPH_MCUC::EN_RET_SUCCESS;
  ZEPH_MCUC::scaler_cal_param_t images{};

  bool valid() const { return result == ZEPH_MCUC::EN_RET_SUCCESS; }
};

// Fills `result` and `images` from the rest.
void Calculate(ScalePlan& plan);

// Why there are no images; empty where there are.
std::string Obstacle(const ScalePlan& plan);

// A 16.16 number as "1.5000".
std::string FixedText(uint32_t value);

// Rows of what each image says, and its bytes. For a plan that is valid.
std::vector<std::vector<std::string>> PlanRows(const ScalePlan& plan);
nlohmann::ordered_json PlanJson(const ScalePlan& plan);

}  // namespace quivord::video
