// The sweep: one operation of the daemon, again and again on the same board, each time with one of
// its accesses failed or with power cut at one of its flash writes. After each run the daemon
// serves, the store holds old or new content, and the operation, done once more, ends as it should,
// in the store, in the FPGA and in the files of the board.
//
// Runs are named; a failure names the one that shows it:
//   once:KIND:N       the N-th access of KIND fails, with its retries
//   forever:KIND      every access of KIND fails
//   torn:N            power is cut in the middle of the N-th flash write
//   whole:N           power is cut in front of the N-th flash write
//   loss:N:SEED       power is cut at the N-th write and takes unsynced writes along
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "support/sweep_store.h"

namespace sweep {

// Runs whose fault a run without it can't make good, and what it leaves to any value for good.
struct Lasting {
  std::vector<std::string> runs;
  std::vector<Region> store = {};
  std::vector<Region> cells = {};  // of the FPGA
};

struct Operation {
  const char* name;
  // What the store, the environment and the board's files hold beforehand; no daemon runs yet.
  std::function<void()> prepare;
  // The operation, on a daemon that has started. Done twice it ends in the same state as done once.
  std::function<void()> act;
  std::vector<Region> regions;
  std::vector<Lasting> lasting = {};
  // Whether the daemon's start includes the restore into the FPGA, or is the operation itself that.
  bool online = true;
  // Where the feature page of the FPGA ends as far as the operation fills it. What lies behind, up
  // to 0x1F0, it leaves to the next restore.
  std::uint32_t pageEnd = 0x1F0;
};

inline void PrintTo(const Operation& operation, std::ostream* stream) { *stream << operation.name; }

// Runs all sweeps of `operation` on this test's board: those named `only`, or all of them, or where
// `bounded` some of each kind. A line for each failure.
struct Choice {
  std::string only;
  bool bounded = true;
};
std::vector<std::string> Run(const Operation& operation, const Choice& choice);

}  // namespace sweep
