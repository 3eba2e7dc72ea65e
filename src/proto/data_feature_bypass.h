// Bypass mode of the feature space: the offsets that a client or the service daemon sets, and the
// switch itself. All on the work thread.
#pragma once

#include "proto/data_feature_write.h"

namespace ZEPH_MCUC {

// What a write means for bypass: offsets from the X and Y registers, offsets from the service
// daemon, on or off. A write that means nothing of this changes nothing.
void ApplyBypass(FeatureWrite& write);

// After the image is stored: sends what a switch left to the FPGA and stores the screen's new size.
void SendBypassGeometry(FeatureWrite& write);

}  // namespace ZEPH_MCUC
