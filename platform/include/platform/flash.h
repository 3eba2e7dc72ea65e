// The parameter stores: the live one, the factory image and the copy that a factory reset prepares.
// Each is one flat space of 16 MiB; an address is a byte offset, and nothing needs an erase.
//
// Any thread may call any function. A write is complete for later reads when it returns, and a
// reader never sees half of one call. It outlasts a power cut once the shell command "sync" has
// run.
#pragma once

#include <cstdint>

extern "C" {

// Opens the stores. 0 when they are ready; called once, before the others.
int32_t Flash_Init();

// Move `length` bytes at `address`. 0 on success; anything else is failure, and nothing moved.
int32_t ReadDataFromFlashx(uint32_t address, uint32_t length, uint8_t* data);
int32_t WriteDataToFlashx(uint32_t address, uint32_t length, const uint8_t* data);
int32_t WriteDataToFactoryFlashx(uint32_t address, uint32_t length, const uint8_t* data);
int32_t WriteDataToFactoryTmpFlashx(uint32_t address, uint32_t length, const uint8_t* data);

}  // extern "C"
