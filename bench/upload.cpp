// How long others wait while the largest set of configuration files, 1 MiB, goes onto a device:
// one peer uploads as `quivordctl files put` does, another reads four bytes of the test space again
// and again. Beside it how long the device is at work for one piece, measured on a board of this
// program's own without threads: the longest single job, which a read may have to wait for.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <vector>

#include "cardfiles/description.h"
#include "cardfiles/image.h"
#include "own_board.h"
#include "support/daemon.h"
#include "support/inprocess.h"

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
using quivord::cardfiles::Piece;
using Times = std::vector<double>;  // in milliseconds

constexpr auto kPatience = std::chrono::seconds(30);
constexpr std::uint32_t kTestCell = 0xF0400000;

double Since(Clock::time_point begin) { return Milliseconds(Clock::now() - begin).count(); }

// Sixteen files of packs of 4096 bytes, as large together as a device takes.
std::vector<Piece> LargestSet() {
  std::vector<quivord::cardfiles::File> files;
  for (int file = 0; file < 16; ++file) {
    std::string text;
    for (int pack = 0; pack < (file < 15 ? 16 : 13); ++pack) text += "0x05000000 fill 5a 4096\n";
    const auto bytes = quivord::cardfiles::Compile(text, nullptr);
    if (!bytes) throw std::runtime_error(bytes.error().text);
    files.push_back({"file" + std::to_string(file), bytes.value()});
  }
  if (const auto obstacle = quivord::cardfiles::Obstacle(files))
    throw std::runtime_error(*obstacle);
  return quivord::cardfiles::Upload(files);
}

double Ask(quivord::Client& client, const quivord::Request& request) {
  const auto begin = Clock::now();
  const auto reply = client.Call(request, kPatience);
  if (!reply) throw std::runtime_error(reply.error().text);
  if (reply.value().ack != 0) throw std::runtime_error("the daemon refused");
  return Since(begin);
}

Times Upload(quivord::Client& client, const std::vector<Piece>& pieces) {
  Times times;
  for (const Piece& piece : pieces) {
    times.push_back(
        Ask(client,
            {.operation = quivord::Operation::kWrite, .address = piece.reg, .data = piece.bytes}));
  }
  return times;
}

template <class Going>
Times Read(quivord::Client& client, Going going) {
  Times times;
  while (going()) times.push_back(Ask(client, {.address = kTestCell, .length = 4}));
  return times;
}

void Print(const char* what, Times times) {
  std::sort(times.begin(), times.end());
  const auto at = [&](double share) {
    return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
  };
  std::printf("%-26s %7zu  median %7.3f ms   99 %% %7.3f ms   longest %7.3f ms\n", what,
              times.size(), at(0.5), at(0.99), at(1));
}

std::unique_ptr<quivord::Client> Connect(const support::Daemon& daemon, std::uint32_t id) {
  auto client = daemon.Connect(id);
  if (!client) throw std::runtime_error(client.error().text);
  return std::move(client.value());
}

// The upload beside a reader, on a daemon of its own.
void MeasureWaits(const std::vector<Piece>& pieces) {
  const bench::Board board;
  support::Daemon daemon({.board = board.path()});
  if (!daemon.WaitUntilItAnswers()) throw std::runtime_error(daemon.OutputText());
  const auto uploader = Connect(daemon, 0x7E0002);
  const auto reader = Connect(daemon, 0x7E0003);
  const auto until = Clock::now() + std::chrono::seconds(1);
  Print("reads, nobody else", Read(*reader, [=] { return Clock::now() < until; }));
  std::atomic<bool> done{false};
  Times reads;
  std::thread other([&] { reads = Read(*reader, [&] { return !done.load(); }); });
  const auto begin = Clock::now();
  const Times writes = Upload(*uploader, pieces);
  const double taken = Since(begin);
  done = true;
  other.join();
  Print("reads during the upload", reads);
  Print("writes of the upload", writes);
  std::printf("%-26s %.0f ms\n", "the upload", taken);
}

// The jobs of the same pieces, one after the other, on this thread.
void MeasureJobs(const std::vector<Piece>& pieces) {
  bench::OwnBoard();
  Times jobs;
  for (const Piece& piece : pieces) {
    inprocess::Write(piece.reg, piece.bytes);
    const auto begin = Clock::now();
    inprocess::DrainQueue();
    jobs.push_back(Since(begin));
  }
  Print("single jobs", jobs);
}

}  // namespace

int main() {
  try {
    const auto pieces = LargestSet();
    MeasureWaits(pieces);
    MeasureJobs(pieces);
    return 0;
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "bench-upload: %s\n", fault.what());
    return 1;
  }
}
