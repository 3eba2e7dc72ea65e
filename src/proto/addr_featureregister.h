// The feature space: how a client changes the behaviour of the sending card.
#pragma once

#include "proto/registerspace.h"

namespace ZEPH_MCUC {

// Reads answer from the feature image, refreshed from the FPGA where they reach past the bus page;
// writes are queued. Bus receive thread.
class Addr_FeatureRegister : public RegisterSpace<Addr_FeatureRegister, kFeatureSpace> {
 public:
  static std::span<const RowFunction> RowFunctions();
  static JSHL_Type_e DoFeatureInfo(QMB_proto3rd* msg, Fshl_cmd* row, int flag);
  // 4 and no data where the FPGA can't be read.
  static JSHL_Type_e ReadFromFeatureInfo(QMB_proto3rd* msg);
  // Passes offsets on to the service daemon in bypass mode, then queues.
  static JSHL_Type_e WriteToFeatureInfo(QMB_proto3rd* msg);
};

}  // namespace ZEPH_MCUC
