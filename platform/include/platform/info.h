// The device info store, which tells other components what this device does.
#pragma once

#include <cstdint>

extern "C" {

// Does operation `op` on `length` bytes at `address`; 1 stores `data`, there is no other. 0 when
// stored; the result is not read. Any thread may call it.
int32_t st_info_op(int32_t op, uint32_t address, uint32_t length, const uint8_t* data);

}  // extern "C"
