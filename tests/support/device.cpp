#include "support/device.h"

#include <platform/mbus.h>

#include <array>
#include <sstream>

#include "board/cells.h"
#include "board/stores.h"
#include "mcuctrace.h"
#include "support/board_kit.h"
#include "support/inprocess.h"

namespace device {
namespace {

using namespace ZEPH_MCUC;

std::fstream LiveStore(std::uint32_t address) {
  board::CreateStores();
  std::fstream store(board::StorePath(board::Store::kLive),
                     std::ios::in | std::ios::out | std::ios::binary);
  store.seekg(address);
  store.seekp(address);
  return store;
}

// The log files, the oldest number of a day first.
std::map<std::string, std::string> LogFiles() {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(board_kit::Named() / "log")) {
    std::ifstream file(entry.path());
    files[entry.path()] = {std::istreambuf_iterator<char>(file), {}};
  }
  return files;
}

// "Error:data_store.cpp : 17 text" as "Error text".
std::string WithoutPlace(const std::string& line) {
  const std::size_t number = line.find(" : ");
  const std::size_t text = line.find(' ', number + 3);
  return line.substr(0, line.find(':')) + line.substr(text);
}

}  // namespace

void Begin(const std::string& traced, const std::string& configuration) {
  setenv("TZ", "UTC", 1);
  board_kit::Configure("speed = 2000\ntrace = " + traced + "\n" + configuration);
  Join();
}

void Join() {
  inprocess::Start();
  static const bool joined = mbus_init(TaskId(cardsel_bit_self(), task::kQuivord), 0) == 0;
  static_cast<void>(joined);
}

std::string Hex(std::span<const std::uint8_t> bytes) {
  return bytes.empty() ? "" : board::Hex(bytes.data(), bytes.size());
}

std::string Fields(const char* hex) { return Hex(inprocess::Bytes(hex)); }

std::string Flash(std::uint32_t address, std::size_t length) {
  std::string bytes(length, '\0');
  LiveStore(address).read(bytes.data(), static_cast<std::streamsize>(length));
  return board::Hex(bytes.data(), length);
}

void PutFlash(std::uint32_t address, const char* hex) {
  const auto bytes = inprocess::Bytes(hex);
  LiveStore(address).write(reinterpret_cast<const char*>(bytes.data()),
                           static_cast<std::streamsize>(bytes.size()));
}

std::string Fpga(std::uint32_t address, std::size_t length) {
  std::vector<std::uint8_t> bytes(length);
  board::LoadCells(1, address, static_cast<std::uint32_t>(length), bytes.data());
  return Hex(bytes);
}

void PutFpga(std::uint32_t address, const char* hex) {
  const auto bytes = inprocess::Bytes(hex);
  board::StoreCells(1, address, static_cast<std::uint32_t>(bytes.size()), bytes.data());
}

std::string Image(std::uint32_t offset, std::size_t length) {
  std::vector<std::uint8_t> bytes(length);
  Global().SendParameterReg.read(offset, bytes);
  return Hex(bytes);
}

void PutImage(std::uint32_t offset, const char* hex) {
  Global().SendParameterReg.write(offset, inprocess::Bytes(hex));
}

void Restore(bool online) {
  Global().FpgaOnlineFlag = online ? 1 : 0;
  Global().RestoreFPGA();
}

void WriteFeature(std::uint32_t offset, const char* hex) {
  inprocess::Write(0x02000000 + offset, inprocess::Bytes(hex));
  inprocess::DrainQueue();
}

support::RawPeer ConnectOwd() {
  const std::uint32_t owd = TaskId(cardsel_bit_self(), task::kOwd);
  support::RawPeer peer(board_kit::Named(), owd);
  const auto ignore = [](mbus_sess_t*, void*, void*, std::int32_t) -> std::int32_t { return 0; };
  while (mbus_connect_chk_task_by_taskid(owd) == -1) mbus_loop_wait(nullptr, ignore);
  return peer;
}

Log::Log(int level) {
  g_logLevel = level;
  CTrace::instance();
  Take();
}

std::string Log::Take() {
  constexpr std::size_t kHeader = 32;
  std::string lines;
  for (const auto& [path, text] : LogFiles()) {
    std::size_t& seen = seen_.try_emplace(path, kHeader).first->second;
    std::istringstream fresh(text.substr(std::min(seen, text.size())));
    for (std::string line; std::getline(fresh, line);) {
      lines.append(WithoutPlace(line.substr(line.find("] ") + 2))).append("\n");
    }
    seen = text.size();
  }
  return lines;
}

}  // namespace device
