// The environment store: a small set of named texts that survive reboots and that other processes
// and the boot scripts read too. Beside it stands the shell tool "envcfg", with "set KEY VALUE".
//
// Any thread may call any function.
#pragma once

extern "C" {

// Opens the store; calls nest. 0 when open. A caller follows a failure with `envcfg_closeenv` too.
int envcfg_openenv();

// The value of `key` as text, or null where it is unset or the store is not open. Valid until the
// calling thread's own last close.
const char* envcfg_getenv(const char* key);

// Stores `value` under `key`; 0 when it is stored and will outlast a reboot, -1 otherwise, and the
// old value then stands.
int envcfg_setenv(const char* key, const char* value);

// Ends the access that one open began.
int envcfg_closeenv();

// The hardware clock's local date as "year-month-day" and time as "hour:minute:second", decimal, in
// a buffer of 50 bytes. 0 on success; otherwise the buffer is as before.
int envcfg_get_date_ymd(char* buffer);
int envcfg_get_date_hms(char* buffer);

}  // extern "C"
