// The FPGAs' register bus and the ioctl channel beside it.
//
// Cells are one byte wide; an address is 32 bits, of which the low 24 or 25 name a cell. Index 0
// and 1 name the two FPGAs. All functions may be called from any thread at the same time; a read
// beside a write of the same cells gives each byte old or new.
#pragma once

#include <cstdint>

extern "C" {

// Moves `length` bytes (cut to 16 bits) between the cells from `address` up and `data`.
// 0 when all bytes moved; anything else is failure, and then none did. May wait for the bus.
int32_t WriteFPGABlock(uint8_t index, uint32_t address, uint32_t length, const uint8_t* data);
int32_t ReadFPGABlock(uint8_t index, uint32_t address, uint32_t length, uint8_t* data);

// One request of the communication interface: `record` is `size` bytes that begin with a
// `comif_ioctl_t`; `count` is 1. Negative is failure and leaves the record's value as it was; on
// success of a read it holds the bytes.
int32_t Shal_comif_ioctl(uint32_t size, uint32_t count, void* record);

// Sets up the FPGA's report path; called once, at start. Negative is failure; nothing depends on
// it.
int32_t FPGA_UDP_Init();

}  // extern "C"
