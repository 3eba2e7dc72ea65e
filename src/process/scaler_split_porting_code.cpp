#include "process/scaler_split_porting_code.h"

#include <iterator>

namespace ZEPH_MCUC {
namespace {

// By extra data, then by type.
constexpr uint8_t scaler_cal_extra_data_num[5][4] = {
    {0, 1, 2, 2}, {1, 2, 3, 3}, {0, 1, 2, 1}, {1, 2, 3, 2}, {4, 4, 6, 6}};

}  // namespace

uint8_t scaler_split_get_extra_data(en_scaler_split_type type, en_scaler_split_extra_data extra) {
  if (extra >= std::size(scaler_cal_extra_data_num)) return 0;
  const auto& row = scaler_cal_extra_data_num[extra];
  return type < std::size(row) ? row[type] : 0;
}

}  // namespace ZEPH_MCUC
