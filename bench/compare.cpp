// Side by side in one run: a bare socket, libmodbus and the daemon, at 1 and at 64 requests in
// flight. Each server is a process of its own that does nothing else; the client is the same code.
//
//   bench-compare [SECONDS a cell, default 2]
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "servers.h"

namespace {

using bench::Figures;

constexpr std::uint32_t kDepths[] = {1, 64};

struct Row {
  const char* name;
  std::vector<Figures> cells;  // in the order of `kDepths`
};

// A folder that goes away with the object.
struct Folder {
  std::string path = std::filesystem::temp_directory_path() / "quivord-bench-XXXXXX";
  Folder() {
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot make a folder");
  }
  ~Folder() {
    std::error_code ignored;  // what is left is a temporary folder
    std::filesystem::remove_all(path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
};

Row MeasureAll(const char* name, bench::Server& server, std::chrono::milliseconds duration) {
  Row row{name, {}};
  for (const std::uint32_t depth : kDepths) {
    const auto link = server.Connect();
    row.cells.push_back(bench::Measure(*link, depth, duration, server.pid()));
  }
  return row;
}

void PrintFigures(const std::vector<Row>& rows) {
  std::printf("%-12s %9s %12s %11s %11s %16s\n", "server", "in flight", "requests/s", "median us",
              "99 % us", "CPU us/request");
  for (std::size_t i = 0; i < std::size(kDepths); ++i) {
    for (const Row& row : rows) {
      const Figures& cell = row.cells[i];
      std::printf("%-12s %9u %12.0f %11.1f %11.1f %16.2f\n", row.name, kDepths[i], cell.per_second,
                  cell.median_us, cell.p99_us, cell.cpu_us);
    }
  }
}

void PrintRatios(const Row& daemon, const Row& other) {
  for (std::size_t i = 0; i < std::size(kDepths); ++i) {
    std::printf("%s / %s at %u in flight: rate %.2f, CPU a request %.2f\n", daemon.name, other.name,
                kDepths[i], daemon.cells[i].per_second / other.cells[i].per_second,
                daemon.cells[i].cpu_us / other.cells[i].cpu_us);
  }
}

void Compare(std::chrono::milliseconds duration) {
  const Folder folder;
  std::vector<Row> rows;
  rows.push_back(MeasureAll("bare socket", *bench::StartBareSocket(folder.path), duration));
  rows.push_back(MeasureAll("libmodbus", *bench::StartModbus(), duration));
  rows.push_back(MeasureAll("quivord", *bench::StartDaemon(folder.path), duration));
  PrintFigures(rows);
  PrintRatios(rows[2], rows[0]);
  PrintRatios(rows[2], rows[1]);
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 2;
  if (!(seconds > 0 && seconds <= 60)) {
    std::fprintf(stderr, "bench-compare: SECONDS a cell is a number above 0, at most 60\n");
    return 2;
  }
  try {
    Compare(std::chrono::milliseconds(static_cast<int>(seconds * 1000)));
    return 0;
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "bench-compare: %s\n", fault.what());
    return 1;
  }
}
