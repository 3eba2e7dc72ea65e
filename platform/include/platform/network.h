// The network settings of the device. They hold at once and after a reboot.
//
// Any thread may call either function; a call may take as long as the interface needs to come up.
#pragma once

#include <cstdint>

extern "C" {

// Selects how the device gets its address: 0 static, anything else by DHCP. 0 on success; otherwise
// all is as before.
int32_t ifcfg_set_eth_mode(int32_t mode);

// Sets the static address: three texts of dotted decimals. Refuses a text that is none. 0 on
// success; otherwise all is as before.
int32_t ifcfg_set_curr_ip(const char* ip, const char* mask, const char* gateway);

}  // extern "C"
