#include "commands/doctor_checks.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <ctime>

#include "board/faults.h"
#include "board/files.h"
#include "board/settings.h"
#include "board/stores.h"
#include "command_tree.h"
#include "commands/feature_value.h"
#include "proto/calc_feature_words.h"
#include "quivord/interface_version.h"

namespace ctl {
namespace {

namespace fs = std::filesystem;
using namespace ZEPH_MCUC;

constexpr std::uint32_t kQuiet = 0x00010000;      // answered without data, touches nothing
constexpr std::uint32_t kCardSize = 0x02000017;   // register of a receiving card
constexpr std::uintmax_t kLeastFree = 48U << 20;  // bytes: a store and what a reset copies
constexpr std::int64_t kMostDrift_s = 60;
constexpr char kNobody[] = "not asked: no daemon answers";
constexpr char kNoPage[] = "not asked: the FPGA holds nothing to go by";
constexpr char kNoFolder[] = "not looked at: there is no board folder";

Finding LookAtFolder(Patient& patient) {
  if (!patient.folder) return {Health::kWrong, "there is no folder " + patient.board().string()};
  const auto text = board::ReadWhole(patient.board() / "board.conf");
  if (!text.has_value()) {
    return {Health::kNote,
            patient.board().string() + " has no board.conf: no board was made there"};
  }
  board::Settings settings;
  const std::string fault = board::ParseSettings(*text, "board.conf", settings);
  if (!fault.empty()) return {Health::kWrong, fault};
  return {Health::kGood,
          patient.board().string() + ", slot " + std::to_string(patient.context.options.slot)};
}

// The process that holds the daemon's lock; 0 where none does.
int DaemonOf(const fs::path& folder) {
  const board::FileHandle file(
      open((folder / "var/run/quivord.pid").c_str(), O_RDONLY | O_CLOEXEC));
  struct flock lock {};
  lock.l_type = F_RDLCK;  // a file that is open for reading may ask no other
  if (!file || fcntl(file.get(), F_GETLK, &lock) != 0) return 0;
  return lock.l_type == F_UNLCK ? 0 : lock.l_pid;
}

Finding LookAtProcess(Patient& patient) {
  if (!patient.folder) return {Health::kUnknown, kNoFolder};
  const int process = DaemonOf(patient.board());
  if (process == 0) return {Health::kWrong, "no daemon runs on this board"};
  const std::string number = "process " + std::to_string(process);
  std::error_code failed;
  const fs::path program = fs::read_symlink("/proc/" + std::to_string(process) + "/exe", failed);
  if (!failed && program.string().ends_with(" (deleted)")) {
    return {Health::kNote, number + " runs a program that has been replaced since its start"};
  }
  return {Health::kGood, number};
}

Finding LookAtBus(Patient& patient) {
  auto client = patient.context.Connect();
  if (!client) return {Health::kWrong, client.error().text};
  const auto begin = std::chrono::steady_clock::now();
  const auto reply =
      client.value()->Call({.address = kQuiet, .length = 1}, patient.context.options.timeout);
  if (!reply) return {Health::kWrong, reply.error().text};
  const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - begin);
  client.value().reset();  // an identifier for one peer at a time
  Exit exit = Exit::kDone;
  patient.device = Device::Open(patient.context, exit);
  if (patient.device == nullptr) return {Health::kWrong, "the daemon doesn't take a second peer"};
  return {Health::kGood, "the daemon answers within " + std::to_string(passed.count()) + " us"};
}

Finding LookAtVersions(Patient& patient) {
  std::string text = "quivordctl " + std::string(kProgramVersion) + ", interface " +
                     std::to_string(quivord::kInterfaceVersion);
  const std::string store =
      patient.folder ? board::ReadWhole(patient.board() / "usr/zeph/etc/envcfg/env").value_or("")
                     : "";
  constexpr std::string_view kKey = "ver_quivord=";
  if (const std::size_t at = store.find(kKey); at != std::string::npos) {
    const std::size_t begin = at + kKey.size();
    text += "; the environment store has " + store.substr(begin, store.find('\n', at) - begin) +
            " for the daemon";
  }
  return {Health::kGood, text};
}

constexpr char kFpgaDown[] =
    "switch the device off and on, which loads it; on a simulated board put 1 into "
    "DIR/sys/class/fpga/fpga_conf";
constexpr char kFpgaSilent[] =
    "give it some seconds after a start; then 'quivordctl reload' fills it again, and a restart of "
    "the device where that doesn't help; 'quivord-board fault --list --board DIR' says whether a "
    "simulated board lets its reads fail";

Finding LookAtFpga(Patient& patient) {
  const bool flag = fs::exists(patient.board() / "etc/init.d/flag_fpgaload");
  if (patient.folder && !flag) return {Health::kWrong, "not loaded: its flag file isn't there"};
  const std::string state =
      board::ReadWhole(patient.board() / "sys/class/fpga/fpga_conf").value_or("1");
  if (state.starts_with('0')) return {Health::kWrong, "down, as its own status says", kFpgaDown};
  if (patient.device == nullptr) return {Health::kUnknown, kNobody};
  patient.page.emplace();
  const Answer answer = patient.device->ReadPage(*patient.page);
  if (answer.done() && patient.page->Restored()) {
    return {Health::kGood, "loaded, and has its parameters"};
  }
  patient.page.reset();
  if (!answer.done()) return {Health::kWrong, answer.text, kFpgaSilent};
  return {Health::kWrong, "silent, or without its parameters: what it holds reads as 0",
          kFpgaSilent};
}

// Of what is read from the page, where there is none.
Finding NoPage(const Patient& patient) {
  return {Health::kUnknown, patient.device == nullptr ? kNobody : kNoPage};
}

Finding LookAtOutput(Patient& patient) {
  if (!patient.page.has_value()) return NoPage(patient);
  const FeatureRegister& row = *FindFeature("output");
  const std::string state = FeatureText(row, patient.page->Bytes(row));
  return {state == "open" ? Health::kGood : Health::kNote, state};
}

// The ports that have a link, by copper or by fiber.
std::vector<int> LinkedPorts(const FeaturePage& page) {
  std::vector<int> ports;
  for (const char* name : {"link-0-3", "link-4-7", "link-8-15", "fiber-1-links", "fiber-2-links"}) {
    const FeatureRegister& row = *FindFeature(name);
    const auto more = FeaturePorts(row, page.Bytes(row));
    ports.insert(ports.end(), more.begin(), more.end());
  }
  std::ranges::sort(ports);
  ports.erase(std::unique(ports.begin(), ports.end()), ports.end());
  return ports;
}

std::string PortsText(const std::vector<int>& ports) {
  std::string text = ports.size() == 1 ? "port " : "ports ";
  for (const int port : ports) text += (port == ports.front() ? "" : ", ") + std::to_string(port);
  return text;
}

Finding LookAtLinks(Patient& patient) {
  if (!patient.page.has_value()) return NoPage(patient);
  const auto ports = LinkedPorts(*patient.page);
  if (ports.empty()) return {Health::kWrong, "no port has a link"};
  return {Health::kGood, PortsText(ports)};
}

Finding LookAtCards(Patient& patient) {
  if (!patient.page.has_value()) return NoPage(patient);
  std::vector<int> silent;
  const auto ports = LinkedPorts(*patient.page);
  for (const int port : ports) {
    const quivord::Target first{JSHL_TypeReceiver, static_cast<std::uint8_t>(port), 0};
    const Answer answer = patient.device->ReadBehind(first, kCardSize, 4);
    if (!answer.done() || answer.data.size() != 4) silent.push_back(port);
  }
  if (ports.empty()) return {Health::kUnknown, "not asked: no port has a link"};
  if (!silent.empty())
    return {Health::kWrong, "the first card doesn't answer at " + PortsText(silent)};
  return {Health::kGood, "the first one of each linked port answers"};
}

constexpr char kBringBack[] =
    "stop the daemon and bring it back: 'quivordctl store put 0 --file BACKUP', with '--store "
    "factory' for brmpara_factory; without a backup remove what is left of it, and a simulated "
    "board makes one anew when it starts";

Finding LookAtStores(Patient& patient) {
  if (!patient.folder) return {Health::kUnknown, kNoFolder};
  const fs::path folder = patient.board() / "usr/zeph/etc/envcfg";
  for (const char* name : {"brmpara", "brmpara_factory"}) {
    std::error_code failed;
    const auto size = fs::file_size(folder / name, failed);
    if (failed) {
      return {Health::kWrong, (folder / name).string() + ": " + failed.message(), kBringBack};
    }
    if (size != board::kStoreSize) {
      return {Health::kWrong,
              (folder / name).string() + " has " + std::to_string(size) + " bytes of " +
                  std::to_string(board::kStoreSize),
              kBringBack};
    }
  }
  std::error_code failed;
  const auto space = fs::space(folder, failed);
  const std::string free = std::to_string(space.available >> 20) + " MiB free";
  if (!failed && space.available < kLeastFree) return {Health::kWrong, "whole, but only " + free};
  return {Health::kGood, "whole, " + free};
}

// This computer's clock as a device's: without a zone.
std::chrono::sys_seconds LocalNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  return std::chrono::sys_seconds(std::chrono::seconds(timegm(&parts)));
}

Finding LookAtClock(Patient& patient) {
  if (patient.device == nullptr) return {Health::kUnknown, kNobody};
  const Answer answer = patient.device->Read(*FindFeature("time"));
  if (!answer.done()) return {Health::kWrong, answer.text};
  const std::string time = TimeText(answer.data);
  if (TimePoint(answer.data) == std::chrono::sys_seconds{}) {
    return {Health::kWrong, "tells no time (" + time + ")"};
  }
  if (patient.context.options.speed != 1)
    return {Health::kGood, time + ", time passes faster here"};
  const auto drift = std::chrono::abs(TimePoint(answer.data) - LocalNow());
  if (drift.count() <= kMostDrift_s) return {Health::kGood, time};
  return {Health::kNote,
          time + ", " + std::to_string(drift.count()) + " s away from this computer's"};
}

Finding LookAtFaults(Patient& patient) {
  const auto counters =
      patient.folder ? board::ReadWhole(patient.board() / "faults") : std::nullopt;
  if (!counters.has_value() || counters->size() < board::kFaultFileSize) {
    return {Health::kUnknown, "no simulated board"};
  }
  std::string armed;
  for (const board::FaultRow& row : board::kFaultTable) {
    std::int32_t count = 0;
    std::memcpy(&count, counters->data() + sizeof count * static_cast<std::size_t>(row.fault),
                sizeof count);
    if (count != 0) {
      armed += (armed.empty() ? "" : ", ") + std::string(row.name) + " " + std::to_string(count);
    }
  }
  return armed.empty() ? Finding{Health::kGood, "none"} : Finding{Health::kNote, armed};
}

}  // namespace

std::span<const Check> Checks() {
  static constexpr Check kChecks[] = {
      {"versions", LookAtVersions, ""},
      {"board", LookAtFolder,
       "name another board by --board or QUIVORD_BOARD; 'quivord-board create DIR' makes this one, "
       "and its board.conf names every key"},
      {"process", LookAtProcess,
       "start the daemon anew: 'systemctl restart quivord' on a device, 'quivord-board run DIR' on "
       "a simulated board"},
      {"daemon", LookAtBus,
       "where a process is there and silent, give it some seconds, look at its log in DIR/log, "
       "then "
       "start it anew"},
      {"fpga", LookAtFpga,
       "wait until it has loaded; 'quivord-board run' creates the flag file, on a device its init "
       "does"},
      {"output", LookAtOutput, "'quivordctl output open' opens it; each start closes it"},
      {"links", LookAtLinks,
       "look at the cables to the cabinets; 'quivord-board link N up' on a simulated board"},
      {"cards", LookAtCards, "look at the first cabinet's power, and at the cable between"},
      {"stores", LookAtStores, "make room where the stores lie"},
      {"clock", LookAtClock, "'quivordctl time set now' sets it by this computer"},
      {"faults", LookAtFaults, "someone lets the board fail: 'quivord-board fault NAME 0' ends it"},
  };
  return kChecks;
}

}  // namespace ctl
