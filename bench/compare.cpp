// Side by side in one run: a bare socket, libmodbus and the daemon, with 1, 8 and 64 requests of 48
// bytes in flight, from one peer and from four; and whether the daemon is as fast as it is to be.
// Each server is a process of its own that does nothing else; the client is the same code.
//
//   bench-compare [SECONDS a cell, default 2] [another quivord, to set beside this build's]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "own_board.h"
#include "own_cost.h"
#include "servers.h"

namespace {

using bench::Figures;
using bench::Peers;
using std::chrono::milliseconds;

struct Cell {
  std::uint32_t peers;
  std::uint32_t depth;
};
constexpr Cell kCells[] = {{1, 1}, {1, 8}, {1, 64}, {4, 1}, {4, 8}, {4, 64}};

constexpr int kSlices = 7;

struct Column {
  const char* name;
  std::function<std::unique_ptr<bench::Server>(Peers)> start;
  std::vector<Figures> cells = {};  // in the order of `kCells`
};

Figures MeasureCell(bench::Server& server, const Cell& cell, milliseconds duration) {
  std::vector<std::unique_ptr<bench::Link>> links;
  for (std::uint32_t peer = 0; peer < cell.peers; ++peer) links.push_back(server.Connect(peer));
  return bench::Measure(links, cell.depth, duration, server.pid());
}

double Middle(const std::vector<Figures>& slices, double Figures::*figure) {
  std::vector<double> values;
  for (const Figures& slice : slices) values.push_back(slice.*figure);
  std::nth_element(values.begin(), values.begin() + kSlices / 2, values.end());
  return values[kSlices / 2];
}

// The middle of what the slices say, and of the longest waits the longest.
Figures Joined(const std::vector<Figures>& slices) {
  Figures joined = slices[0];
  for (double Figures::*figure : {&Figures::per_second, &Figures::median_us, &Figures::p99_us,
                                  &Figures::cpu_us, &Figures::user_us}) {
    joined.*figure = Middle(slices, figure);
  }
  for (const Figures& slice : slices) {
    joined.worst_us = std::max(joined.worst_us, slice.worst_us);
    joined.stall_us = std::max(joined.stall_us, slice.stall_us);
  }
  return joined;
}

// Cell by cell, and in each slice by slice over all servers: what disturbs the machine for a moment
// disturbs all of them, and the middle of the slices leaves it out.
void MeasureAll(std::vector<Column>& columns, milliseconds duration) {
  for (const Peers peers : {Peers::kOne, Peers::kSeveral}) {
    std::vector<std::unique_ptr<bench::Server>> servers;
    for (const Column& column : columns) servers.push_back(column.start(peers));
    for (const Cell& cell : kCells) {
      if ((cell.peers == 1) != (peers == Peers::kOne)) continue;
      std::vector<std::vector<Figures>> slices(columns.size());
      for (int slice = 0; slice < kSlices; ++slice) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
          slices[i].push_back(MeasureCell(*servers[i], cell, duration / kSlices));
        }
      }
      for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].cells.push_back(Joined(slices[i]));
      }
    }
  }
}

void PrintFigures(const std::vector<Column>& columns) {
  std::printf("%-5s %9s  %-12s %11s %10s %9s %9s %10s %9s %9s\n", "peers", "in flight", "server",
              "requests/s", "median us", "99 % us", "worst us", "CPU us/req", "user us",
              "stall us");
  for (std::size_t i = 0; i < std::size(kCells); ++i) {
    for (const Column& column : columns) {
      const Figures& cell = column.cells[i];
      std::printf("%-5u %9u  %-12s %11.0f %10.1f %9.1f %9.0f %10.2f %9.2f %9.0f\n", kCells[i].peers,
                  kCells[i].depth, column.name, cell.per_second, cell.median_us, cell.p99_us,
                  cell.worst_us, cell.cpu_us, cell.user_us, cell.stall_us);
    }
  }
  std::puts(
      "CPU is the server's, user its share outside the kernel; stall is how late a thread woke "
      "that\n"
      "slept beside the load: what the machine, not the server, adds to the worst wait.\n");
}

// The aims, each with what was reached.
class Verdicts {
 public:
  void AtLeast(const std::string& what, double figure, double limit) {
    Say(figure >= limit, what, figure, "at least", limit);
  }
  void AtMost(const std::string& what, double figure, double limit) {
    Say(figure <= limit, what, figure, "at most", limit);
  }
  void Sum() const { std::printf("%d of %d aims reached\n", reached_, all_); }

 private:
  void Say(bool reached, const std::string& what, double figure, const char* side, double limit) {
    ++all_;
    reached_ += reached ? 1 : 0;
    std::printf("%-7s %-62s %8.2f, %s %.2f\n", reached ? "reached" : "MISSED", what.c_str(), figure,
                side, limit);
  }

  int all_ = 0;
  int reached_ = 0;
};

std::string Name(const Cell& cell) {
  return std::to_string(cell.peers) + (cell.peers == 1 ? " peer, " : " peers, ") +
         std::to_string(cell.depth) + " in flight: ";
}

void JudgeRates(const std::vector<Column>& columns, Verdicts* verdicts) {
  for (std::size_t i = 0; i < std::size(kCells); ++i) {
    if (kCells[i].depth != 64) continue;
    const Figures& bare = columns[0].cells[i];
    const Figures& modbus = columns[1].cells[i];
    const Figures& own = columns[2].cells[i];
    const std::string name = Name(kCells[i]);
    verdicts->AtLeast(name + "rate / libmodbus", own.per_second / modbus.per_second, 1.2);
    verdicts->AtMost(name + "CPU a request / libmodbus", own.cpu_us / modbus.cpu_us, 0.7);
    verdicts->AtLeast(name + "rate / bare socket", own.per_second / bare.per_second, 0.5);
    verdicts->AtMost(name + "CPU a request / bare socket", own.cpu_us / bare.cpu_us, 1.6);
    verdicts->AtMost(name + "us of CPU a request outside the kernel", own.user_us, 1);
  }
}

void JudgeWaits(const std::vector<Column>& columns, Verdicts* verdicts) {
  for (std::size_t i = 0; i < std::size(kCells); ++i) {
    const Figures& own = columns[2].cells[i];
    const std::string name = Name(kCells[i]);
    if (kCells[i].peers == 1 && kCells[i].depth == 1) {
      verdicts->AtMost(name + "median us", own.median_us, 150);
    }
    if (kCells[i].peers > 1) {
      verdicts->AtMost(name + "worst wait / median", own.worst_us / own.median_us, 5);
    }
  }
}

void JudgeOwnCost(Verdicts* verdicts) {
  const bench::OwnCost cost = bench::MeasureOwnCost();
  std::printf(
      "in the process: a 4-byte read %.3f us, from its frame %.3f us; a 1024-byte read %.3f "
      "us, the platform's copy of it %.3f us\n",
      cost.read4_us, cost.frame4_us, cost.read1024_us, cost.copy1024_us);
  verdicts->AtMost("a 4-byte read in the process, us", cost.read4_us, 1);
  verdicts->AtMost("1024 bytes of the FPGA in the process, us", cost.read1024_us,
                   2 * cost.copy1024_us + cost.read4_us);
}

void JudgeLongRead(const std::string& folder, const Figures& shortRead, milliseconds duration) {
  const auto server = bench::StartDaemon(folder, 1024);
  const Figures figures = MeasureCell(*server, {1, 1}, duration);
  std::printf("over the bus, 1 in flight: 1024 bytes of the FPGA median %.1f us, 4 bytes %.1f us\n",
              figures.median_us, shortRead.median_us);
}

void Compare(milliseconds duration, const std::string& other) {
  const bench::Board folder;
  std::vector<Column> columns = {
      {"bare socket", [&](Peers peers) { return bench::StartBareSocket(folder.path(), peers); }},
      {"libmodbus", bench::StartModbus},
      {"quivord", [&](Peers) { return bench::StartDaemon(folder.path()); }}};
  if (!other.empty()) {
    columns.push_back(
        {"other", [&](Peers) { return bench::StartDaemon(folder.path(), 4, other); }});
  }
  MeasureAll(columns, duration);
  PrintFigures(columns);
  Verdicts verdicts;
  JudgeRates(columns, &verdicts);
  JudgeWaits(columns, &verdicts);
  JudgeLongRead(folder.path(), columns[2].cells[0], duration);
  JudgeOwnCost(&verdicts);
  verdicts.Sum();
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 2;
  if (!(seconds > 0 && seconds <= 60)) {
    std::fprintf(stderr, "bench-compare: SECONDS a cell is a number above 0, at most 60\n");
    return 2;
  }
  try {
    Compare(milliseconds(static_cast<int>(seconds * 1000)), argc > 2 ? argv[2] : "");
    return 0;
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "bench-compare: %s\n", fault.what());
    return 1;
  }
}
