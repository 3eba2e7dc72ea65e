#include <platform/mbus.h>

#include "board/folder.h"

uint8_t cardsel_bit_self() { return board::Config().slot; }
