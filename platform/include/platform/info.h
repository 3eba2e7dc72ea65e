// The device info store.
#pragma once

#include <cstdint>

extern "C" {

// Does `op` with `length` bytes at `address` of the store; op 1 writes `data`. The result says
// nothing that a caller needs. Any thread.
int32_t st_info_op(int32_t op, uint32_t address, uint16_t length, uint8_t* data);

}  // extern "C"
