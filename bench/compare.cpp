// Side by side in one run: a bare socket, libmodbus and the daemon, with 1, 8 and 64 requests of 48
// bytes in flight, from one peer and from four; and whether the daemon is as fast as it is to be.
// Each server is a process of its own that does nothing else; the client is the same code.
//
//   bench-compare [SECONDS a cell, default 2] [another quivord, to set beside this build's]
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <thread>
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

double Middle(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double Middle(const std::vector<Figures>& slices, double Figures::*figure) {
  std::vector<double> values;
  for (const Figures& slice : slices) values.push_back(slice.*figure);
  return Middle(std::move(values));
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
    joined.own_worst_us = std::max(joined.own_worst_us, slice.own_worst_us);
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

// With commas between thousands.
std::string Grouped(double figure) {
  std::string text = std::to_string(std::llround(figure));
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, ",");
  return text;
}

// As many places as the figure is worth: none from 1000 on, one from 10 on.
std::string Rounded(double figure) {
  if (figure >= 1000) return Grouped(figure);
  char text[32];
  std::snprintf(text, sizeof text, figure >= 10 ? "%.1f" : "%.2f", figure);
  return text;
}

void PrintFigures(const std::vector<Column>& columns) {
  std::puts(
      "| peers | in flight | server | requests/s | median us | 99 % us | longest us | CPU us a "
      "request | outside the kernel us | machine late by us |\n"
      "|---|---|---|---|---|---|---|---|---|---|");
  for (std::size_t i = 0; i < std::size(kCells); ++i) {
    for (const Column& column : columns) {
      const Figures& cell = column.cells[i];
      std::printf("| %u | %u | %s |", kCells[i].peers, kCells[i].depth, column.name);
      std::printf(" %s |", Grouped(cell.per_second).c_str());
      for (const double figure :
           {cell.median_us, cell.p99_us, cell.worst_us, cell.cpu_us, cell.user_us, cell.stall_us}) {
        std::printf(" %s |", Rounded(figure).c_str());
      }
      std::puts("");
    }
  }
  std::puts(
      "\nCPU is the server's. Late is how late a thread woke that slept beside the load: what the\n"
      "machine, not the server, may add to the longest wait.\n");
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
    std::printf("%-7s %-63s %8.2f, %s %.2f\n", reached ? "reached" : "MISSED", what.c_str(), figure,
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
      verdicts->AtMost(name + "longest wait / median", own.worst_us / own.median_us, 5);
      verdicts->AtMost(name + "the same less the machine's lateness",
                       own.own_worst_us / own.median_us, 5);
    }
  }
}

void JudgeLongReads(const bench::OwnCost& cost, const Figures& shortRead, const Figures& longRead,
                    Verdicts* verdicts) {
  std::printf(
      "in the process: a 4-byte read %.3f us, from its frame %.3f us; a 1024-byte read %.3f "
      "us, the platform's copy of it %.3f us\n"
      "over the bus, 1 in flight: 4 bytes median %.1f us, 1024 bytes of the FPGA %.1f us\n",
      cost.read4_us, cost.frame4_us, cost.read1024_us, cost.copy1024_us, shortRead.median_us,
      longRead.median_us);
  verdicts->AtMost("a 4-byte read in the process, us", cost.read4_us, 1);
  verdicts->AtMost("1024 bytes of the FPGA in the process, us", cost.read1024_us,
                   2 * cost.copy1024_us + cost.read4_us);
  verdicts->AtMost("1024 bytes of the FPGA over the bus, 1 in flight, median us",
                   longRead.median_us, shortRead.median_us + 2 * cost.copy1024_us);
}

// One request in flight, of 4 and of 1024 bytes in turns.
std::array<Figures, 2> MeasureLongRead(const std::string& folder, milliseconds duration) {
  const auto four = bench::StartDaemon(folder);
  const auto more = bench::StartDaemon(folder, 1024);
  std::array<std::vector<Figures>, 2> slices;
  for (int slice = 0; slice < kSlices; ++slice) {
    slices[0].push_back(MeasureCell(*four, {1, 1}, duration / kSlices));
    slices[1].push_back(MeasureCell(*more, {1, 1}, duration / kSlices));
  }
  return {Joined(slices[0]), Joined(slices[1])};
}

// The middle of single requests, each after nobody has asked for so long.
double MedianAfterRest(bench::Link& link, milliseconds rest) {
  using Clock = std::chrono::steady_clock;
  constexpr int kRests = 11;
  std::vector<double> times;
  std::vector<std::uint32_t> tags;
  for (int i = 0; i < kRests; ++i) {
    std::this_thread::sleep_for(rest);
    const Clock::time_point begin = Clock::now();
    link.Send(1);
    link.Receive(tags);
    times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
  }
  return Middle(std::move(times));
}

// The daemon's polls slow down once nothing came for a second.
void TellFirstRequests(const std::string& folder) {
  const auto server = bench::StartDaemon(folder);
  const auto link = server->Connect(0);
  const double shortRest_us = MedianAfterRest(*link, milliseconds(500));
  const double longRest_us = MedianAfterRest(*link, milliseconds(1300));
  std::printf("the first request after 0.5 s of rest: median %.0f us; after 1.3 s: %.0f us\n",
              shortRest_us, longRest_us);
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
  const auto [shortRead, longRead] = MeasureLongRead(folder.path(), duration);
  JudgeLongReads(bench::MeasureOwnCost(), shortRead, longRead, &verdicts);
  verdicts.Sum();
  TellFirstRequests(folder.path());
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
