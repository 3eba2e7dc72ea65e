// What a client asked of the wall's layout, on its way from the register space to the calculation.
// The bus receive and work threads write it, the work and flag threads read it, without a lock.
#pragma once

#include <cstdint>
#include <span>

#include "mcucutil.h"

namespace ZEPH_MCUC {

// A smart configuration: a rectangle of cabinets cut into cables.
struct SmartConfig {
  uint16_t rows = 0;
  uint16_t columns = 0;
  uint16_t boxNumber = 0;  // cabinets that one cable may carry
  uint8_t mode = 0;        // connection mode
  uint8_t backup = 0;      // 0 master, else slave

  bool SameWall(const SmartConfig& other) const {
    return rows == other.rows && columns == other.columns && boxNumber == other.boxNumber &&
           mode == other.mode;
  }
};

// Bytes of the stored record that hold a smart configuration.
inline constexpr std::size_t kSmartRecord = 28;

// The wall of a record; `record` holds at least 26 bytes.
SmartConfig SmartConfigOf(std::span<const uint8_t> record);

// The wall asked for last.
class RequestedWall {
 public:
  void Set(const SmartConfig& config) {
    rows_ = config.rows;
    columns_ = config.columns;
    boxNumber_ = config.boxNumber;
    mode_ = config.mode;
    backup_ = config.backup;
  }
  SmartConfig Get() const { return {rows_, columns_, boxNumber_, mode_, backup_}; }

 private:
  vu16 rows_;
  vu16 columns_;
  vu16 boxNumber_;
  vu8 mode_;
  vu8 backup_;
};
inline constinit RequestedWall MyTempPara;

}  // namespace ZEPH_MCUC
