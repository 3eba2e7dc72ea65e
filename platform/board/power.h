// What happens to a board from outside the daemon: power that comes, a reboot.
#pragma once

namespace board {

// With what a daemon ends that a power cut has ended.
inline constexpr int kCutStatus = 75;

// FPGA memory is clear but for its status cells, and the FPGA is not loaded: no flag file.
void PowerUp();

// The FPGA has loaded: the flag file is there.
void FinishFpgaLoad();
bool FpgaHasLoaded();

// What `reboot -f` does: its own line in the trace, the end of the process that holds the board,
// the boot loader's part of a factory reset where one was asked for, a power-up. 0 when done.
int Reboot();

// A reset that was begun and never came to its reboot did not happen: what the boot loader does
// when power comes.
void ForgetBrokenReset();

// Whether a `reboot -f` has run since this was asked last; waits for one that still runs.
bool TakeReboot();

}  // namespace board
