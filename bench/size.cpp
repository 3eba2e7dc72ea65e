// How small the daemon is, each figure with its limit: the program without symbols, the time from
// its start to its report that it is ready, what is resident once every operation was used, CPU at
// rest after that, and what a read takes from the heap. Status 1 where a limit is missed.
//
//   bench-size [SECONDS at rest, default 10]
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "allocations.h"
#include "driverutil.h"
#include "own_board.h"
#include "process/scaler.h"
#include "process/tprocess_ctl.h"
#include "process_usage.h"
#include "proto/calc_hc.h"
#include "proto/data_common.h"
#include "proto/registerspace_names.h"
#include "proto/tshl_ctl.h"
#include "seqpacket.h"
#include "stub/frame_layout.h"
#include "stub/stubutil.h"
#include "support/daemon.h"
#include "support/run.h"

namespace {

using namespace ZEPH_MCUC;
using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

constexpr std::uint32_t kTask = 0x7E0002;

bool g_all_held = true;

void Say(const char* what, double figure, double limit, const char* unit) {
  const bool held = figure < limit;
  g_all_held = g_all_held && held;
  std::printf("%-7s %-44s %9.2f %s, below %.2f\n", held ? "held" : "MISSED", what, figure, unit,
              limit);
  std::fflush(stdout);
}

// Lets the FPGA count as loaded, so that the daemon restores it and its loop runs.
void LoadFpga(const std::string& folder) {
  std::filesystem::create_directories(folder + "/etc/init.d");
  std::ofstream(folder + "/etc/init.d/flag_fpgaload");
}

// --- The program ---------------------------------------------------------------------------------

void MeasureProgram(const std::string& folder) {
  const std::string stripped = folder + "/stripped";
  const auto run = support::Run({"/usr/bin/strip", "-o", stripped, support::Built("quivord")});
  if (run.status != 0) throw std::runtime_error("strip: " + run.err);
  Say("program, stripped", static_cast<double>(std::filesystem::file_size(stripped)) / (1 << 20),
      1.5, "MiB");
}

// --- Start to ready ------------------------------------------------------------------------------

// When the readiness report went out, in seconds of the monotonic clock; 0 where it hasn't yet.
double ReadyAt(const std::string& folder) {
  std::ifstream trace(folder + "/trace.log");
  std::string line;
  while (std::getline(trace, line)) {
    const bool report = line.find(" bus < 0x000a3900 ") != std::string::npos;
    if (report && line.find("00000014010002") != std::string::npos) {  // register, length, byte
      return std::strtod(line.c_str(), nullptr) * 1e-6;
    }
  }
  return 0;
}

double SecondsNow() {
  return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

void MeasureStart(const std::string& folder, double begin) {
  const auto patience = Clock::now() + seconds(30);
  double ready = 0;
  while ((ready = ReadyAt(folder)) == 0) {
    if (Clock::now() > patience) throw std::runtime_error("the daemon does not report itself");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  // None of the documented sleeps lies on this road: the start's two seconds pass beside it.
  Say("start to readiness report", ready - begin, 3, "s");
}

// --- Memory --------------------------------------------------------------------------------------

std::size_t Ask(quivord::Client& client, const quivord::Request& request,
                std::vector<std::uint8_t>* data = nullptr) {
  auto reply = client.Call(request, seconds(30));
  if (!reply) throw std::runtime_error(reply.error().text);
  if (data != nullptr) *data = reply.value().data;
  return 1;
}

// Reads as much as a row gives and writes it back; where it gives nothing, writes zeros. A factory
// reset ends the daemon and is left out.
std::size_t UseRow(quivord::Client& client, const SpaceNames& space, const RowNames& row) {
  const std::uint32_t address = row.key < space.base() ? space.base() + row.key : row.key;
  std::size_t asked = 0;
  std::vector<std::uint8_t> bytes;
  for (const std::int32_t length : {256, space.least, space.most}) {
    const auto wanted = static_cast<std::uint16_t>(std::clamp(length, 1, 32768));
    std::vector<std::uint8_t> data;
    asked += Ask(client, {.address = address, .length = wanted}, &data);
    if (data.size() > bytes.size()) bytes = data;
  }
  if (std::string_view(row.cmdStr) == "ReturnFactorySet") return asked;
  if (bytes.empty())
    bytes.resize(static_cast<std::size_t>(std::max(row.leastWritten, space.least)));
  if (bytes.size() > static_cast<std::size_t>(space.most)) {
    bytes.resize(static_cast<std::size_t>(space.most));
  }
  return asked +
         Ask(client, {.operation = quivord::Operation::kWrite, .address = address, .data = bytes});
}

std::size_t UseRegisters(const support::Daemon& daemon) {
  auto connected = daemon.Connect(kTask);
  if (!connected) throw std::runtime_error(connected.error().text);
  quivord::Client& client = *connected.value();
  std::size_t asked = 0;
  for (const SpaceNames* space : kSpaces) {
    for (const RowNames& row : space->rows) asked += UseRow(client, *space, row);
  }
  for (int device = JSHL_TypeReceiver; device <= JSHL_TypeLauncher3D; ++device) {
    const quivord::Target target{.device = static_cast<JSHL_ProtoDeviceType_e>(device)};
    asked += Ask(client, {.target = target, .address = 0x02000001, .length = 513});
    asked += Ask(client, {.operation = quivord::Operation::kWrite,
                          .target = target,
                          .address = 0x02000001,
                          .data = std::vector<std::uint8_t>(600, 200)});
  }
  return asked;
}

// What joins several registers, as a user calls it. A plan stays in force behind them.
std::size_t UseCommands(const std::string& folder) {
  const std::string file = folder + "/start.rcfgx";
  const std::vector<std::vector<std::string>> commands = {
      {"inputs"},
      {"edid", "set", "--mode", "1920x1080@59.94"},
      {"hdr", "hdr10", "--peak", "1200"},
      {"hdr", "hlg"},
      {"hdr", "off"},
      {"gamma", "upload", "--exponent", "2.4"},
      {"pattern", "block", "--width", "128", "--height", "128"},
      {"pattern", "off"},
      {"brightness", "set", "60%"},
      {"wall", "configure", "--rows", "4", "--columns", "3", "--cables", "top-left-rows",
       "--per-cable", "6", "--wait"},
      {"wall", "configure", "--rows", "32", "--columns", "64", "--cables", "top-left-rows",
       "--per-cable", "205", "--wait"},
      {"files", "pack", support::Source("examples/card-file.txt"), file},
      {"files", "put", file},
      {"files", "send", "0"},
      {"brightness", "plan", support::Source("examples/brightness-mix.json")},
      {"output", "open"},
      {"save"},
      {"reload"},
  };
  for (const auto& words : commands) {
    std::vector<std::string> command = {support::Built("quivordctl"), "--board", folder};
    command.insert(command.end(), words.begin(), words.end());
    const auto run = support::Run(command, {}, seconds(60));
    if (run.status != 0) throw std::runtime_error("quivordctl " + words[0] + ": " + run.err);
  }
  return commands.size();
}

double MostMiB(pid_t pid) { return static_cast<double>(bench::SizeKiB(pid, "VmHWM:")) / 1024; }

void ForgetMost(pid_t pid) {
  std::ofstream("/proc/" + std::to_string(pid) + "/clear_refs") << "5\n";
}

double AtRest(pid_t pid, double seconds_at_rest) {
  std::this_thread::sleep_for(seconds(4));  // until the polls have slowed down
  const double before = bench::CpuSeconds(pid);
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds_at_rest));
  return (bench::CpuSeconds(pid) - before) / seconds_at_rest;
}

void MeasureDaemon(const std::string& folder, double seconds_at_rest) {
  LoadFpga(folder);
  std::ofstream(folder + "/board.conf") << "trace = bus\nport.0.cards = 12\nport.1.cards = 12\n";
  const double begin = SecondsNow();
  support::Daemon daemon({.board = folder});
  if (!daemon.WaitUntilItAnswers()) throw std::runtime_error(daemon.OutputText());
  MeasureStart(folder, begin);
  std::printf("        resident at most while a new board's stores were made: %.2f MiB\n",
              MostMiB(daemon.pid()));
  ForgetMost(daemon.pid());
  const std::size_t requests = UseRegisters(daemon);
  const std::size_t commands = UseCommands(folder);
  std::printf("        all operations but the factory reset: %zu requests, %zu commands\n",
              requests, commands);
  Say("resident after all operations", bench::SizeKiB(daemon.pid(), "VmRSS:") / 1024.0, 8, "MiB");
  std::printf("        at most meanwhile %.2f MiB\n", MostMiB(daemon.pid()));
  Say("at rest, all threads polling", 100 * AtRest(daemon.pid(), seconds_at_rest), 5,
      "% of a core");
}

// --- The heap ------------------------------------------------------------------------------------

// The daemon as its `main` makes it, in this process, and a peer that takes nothing from the heap.
class OwnDaemon {
 public:
  explicit OwnDaemon(const std::string& folder) {
    setenv("QUIVORD_BOARD", folder.c_str(), 1);
    LoadFpga(folder);
    DriverUtil::getInstance()->initialize();
    Tprocess_ctl::getInstance()->initialize();
    Tshl_ctl::getInstance()->initialize();
    StubUtil::getInstance()->initialize();
    socket_ = bench::ConnectTo(folder + "/run/mbus");
    std::array<std::uint8_t, 4> id;
    DWQ_ENCDW(id.data(), kTask);
    Send(id.data(), id.size());
  }

  // Sends the read `times` times; the last reply's number of bytes.
  std::size_t Read(const FrameHead& read, int times) const {
    std::array<std::uint8_t, kEnvelopeSize + frame::kShortest> packet;
    WriteEnvelope({.largeLabel = LABEL_MSG, .payloadLength = frame::kShortest}, packet.data());
    WriteFrame(read, {}, &packet[kEnvelopeSize]);
    static std::array<std::uint8_t, 70000> reply;
    ssize_t size = 0;
    for (int i = 0; i < times; ++i) {
      Send(packet.data(), packet.size());
      size = recv(socket_, reply.data(), reply.size(), 0);
      if (size < 0) throw std::runtime_error("no reply");
    }
    return static_cast<std::size_t>(size) - packet.size();
  }

 private:
  void Send(const void* bytes, std::size_t size) const {
    if (send(socket_, bytes, size, MSG_NOSIGNAL) < 0) throw std::runtime_error("cannot send");
  }

  int socket_ = -1;
};

void MeasureReads(const OwnDaemon& daemon) {
  constexpr int kTimes = 2000;
  const struct {
    const char* what;
    FrameHead read;
  } reads[] = {
      {"4 bytes of the FPGA", {.registerAddress = 0xF0000100, .dataLength = 4}},
      {"1024 bytes of the FPGA", {.registerAddress = 0xF0000100, .dataLength = 1024}},
      {"feature page", {.registerAddress = 0x02000000, .dataLength = 512}},
      {"screen info echo", {.registerAddress = 0x02100000, .dataLength = 256}},
      {"position table", {.registerAddress = 0x03000000, .dataLength = 4096}},
      {"a page of the flash", {.registerAddress = 0x02300000, .dataLength = 512}},
      {"a card behind a port",
       {.deviceType = JSHL_TypeReceiver, .registerAddress = 0x02000001, .dataLength = 256}}};
  for (const auto& [what, read] : reads) {
    daemon.Read(read, 100);  // what is kept for the next is made
    const std::uint64_t recv = bench::AllocationsOf("quivord-recv");
    const std::uint64_t bus = bench::AllocationsOf("quivord-bus");
    const std::size_t bytes = daemon.Read(read, kTimes);
    const double each = static_cast<double>(bench::AllocationsOf("quivord-recv") - recv +
                                            bench::AllocationsOf("quivord-bus") - bus) /
                        kTimes;
    if (bytes != read.dataLength) throw std::runtime_error(std::string(what) + " did not come");
    const std::string text = "heap, a read of " + std::string(what);
    Say(text.c_str(), each, 1.01, "(the data)");
  }
}

void ScalerPair() {
  scaler_pair_param_t window{
      1, 0, 0, {0, 0, 3840, 2160}, {-100, 50, 2500, 900}, {0, 0, 1920, 1080}};
  scaler_cal_param_t pair{};
  ScalerPairConfig(0, &window, &pair);
}

void LoadGamma() { Data_Global::getInstance()->SendCardHDRProcess(hc::kHDR10); }

// Work that is done on this thread.
void MeasureWork() {
  constexpr int kTimes = 20;
  const struct {
    const char* what;
    void (*work)();
  } all[] = {{"heap, a scaler pair: four splits", ScalerPair},
             {"heap, HDR10 tables, calculated and loaded", LoadGamma}};
  for (const auto& [what, work] : all) {
    work();  // what is kept for the next is made
    const std::uint64_t before = bench::OwnAllocations();
    for (int i = 0; i < kTimes; ++i) work();
    Say(what, static_cast<double>(bench::OwnAllocations() - before) / kTimes, 0.01, "(none)");
  }
}

void MeasureHeap(const std::string& folder) {
  const OwnDaemon daemon(folder);
  MeasureReads(daemon);
  MeasureWork();
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds_at_rest = argc > 1 ? std::atof(argv[1]) : 10;
  if (!(seconds_at_rest > 0 && seconds_at_rest <= 600)) {
    std::fprintf(stderr, "bench-size: SECONDS at rest is a number above 0, at most 600\n");
    return 2;
  }
  int status = 1;
  try {
    const bench::Board one;
    MeasureProgram(one.path());
    MeasureDaemon(one.path(), seconds_at_rest);
    const bench::Board other;
    MeasureHeap(other.path());
    status = g_all_held ? 0 : 1;
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "bench-size: %s\n", fault.what());
  }
  std::fflush(stdout);
  _exit(status);  // the daemon's threads go with the process
}
