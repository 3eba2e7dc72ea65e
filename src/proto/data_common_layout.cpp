#include "proto/data_common_layout.h"

#include "proto/calc_shortcut.h"
#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {

SmartConfig SmartConfigOf(std::span<const uint8_t> record) {
  SmartConfig config;
  config.rows = record[shortcut::kRows];
  config.columns = record[shortcut::kColumns];
  config.boxNumber = DWQ_DECWD(&record[shortcut::kBoxNumber]);
  config.mode = record[shortcut::kMode];
  return config;
}

}  // namespace ZEPH_MCUC
