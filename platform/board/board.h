// The simulated board as its own parts see it: the folder, the faults, the trace.
// Everything sets itself up on first use and is safe from several threads.
#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>

namespace board {

// The board folder, set up: everything that was missing has been created.
const std::filesystem::path& Folder();

// The faults by their index in the file `faults`.
enum class Fault : std::uint8_t {
  kFpgaWrite = 0,
  kFpgaRead,
  kFlashRead,
  kFlashWrite,
  kCardRead,
  kCardWrite,
  kBusSend,
  kEnvOpen,
  kNet,
  kEdidRead,
  kEdidWrite,
  kClockChip,
  kFlashCut,
  kFlashLoss,
  kSkip,
  kSyncCount,
};

// Counts one access of this kind; true when it is to fail. For kinds in front of kFlashCut.
bool TakeFault(Fault fault);

enum class TraceKind : std::uint8_t {
  kFpga,
  kFlash,
  kCard,
  kBus,
  kShell,
  kEnv,
  kClock,
  kClockChip,
  kEdid,
  kNet,
  kInfo,
};

// Whether lines of this kind are wanted; ask before forming one.
bool Tracing(TraceKind kind);

// Held around an access and its line where lines of this kind are wanted, so that the lines stand
// in the order of the accesses; holds nothing where they aren't.
std::unique_lock<std::mutex> TraceOrder(TraceKind kind);

// Appends one line to trace.log: time, the kind's name, `words`.
void Trace(TraceKind kind, std::string_view words);

// Lower-case hexadecimal text of `size` bytes, or "-" for none.
std::string Hex(const void* data, std::size_t size);

}  // namespace board
