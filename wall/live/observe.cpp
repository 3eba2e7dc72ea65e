#include "live/observe.h"

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <span>
#include <tuple>

#include "board/text.h"
#include "live/cardlist.h"
#include "live/files.h"
#include "proto/calc_flashmap.h"
#include "proto/calc_porttables.h"
#include "proto/calc_rgbgamma.h"

namespace quivord::live {
namespace {

namespace fs = std::filesystem;
namespace flash = ZEPH_MCUC::flash;
using Bytes = std::span<std::uint8_t>;

constexpr char kCells[] = "fpga/1.mem";
constexpr char kStore[] = "usr/zeph/etc/envcfg/brmpara";
constexpr char kPidFile[] = "var/run/quivord.pid";
constexpr std::size_t kMostSettings = 1 << 20;  // bytes
constexpr std::size_t kMostLux = 32;

struct Piece {
  std::uint64_t at;
  Bytes into;
};

// Reads pieces of one file; the first that isn't there is a trouble, and it and all behind it are
// 0.
void ReadPieces(const fs::path& folder, const char* name, std::span<const Piece> pieces,
                std::vector<std::string>& troubles) {
  const FileReader file(folder / name);
  bool whole = file.there();
  if (!whole) troubles.push_back(std::string(name) + " is missing or can't be read");
  for (const Piece& piece : pieces) {
    if (whole && !file.Read(piece.at, piece.into)) {
      whole = false;
      troubles.push_back(std::string(name) + " is cut short: it has " +
                         std::to_string(file.size()) + " bytes");
    }
    if (!whole) std::fill(piece.into.begin(), piece.into.end(), std::uint8_t{0});
  }
}

void ReadPieces(const fs::path& folder, const char* name, std::initializer_list<Piece> pieces,
                std::vector<std::string>& troubles) {
  ReadPieces(folder, name, std::span(pieces.begin(), pieces.size()), troubles);
}

template <class Clock>
std::int64_t Now_us() {
  using std::chrono::duration_cast;
  return duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch()).count();
}

// The process that holds the daemon's lock; asked of the lock, not read, and nothing is taken.
int HolderOf(const FileReader& file) {
  struct flock lock {};
  lock.l_type = F_RDLCK;  // a file that is open for reading may ask no other
  lock.l_whence = SEEK_SET;
  if (!file.there() || fcntl(file.descriptor(), F_GETLK, &lock) != 0) return 0;
  return lock.l_type == F_UNLCK ? 0 : lock.l_pid;
}

template <std::size_t N>
Bytes BytesOf(std::array<std::int32_t, N>& numbers) {
  return {reinterpret_cast<std::uint8_t*>(numbers.data()), sizeof numbers};
}

}  // namespace

Observer::Observer(fs::path folder)
    : folder_(std::move(folder)),
      tail_(folder_ / "trace.log"),
      trace_epoch_us_(Now_us<std::chrono::system_clock>() - Now_us<std::chrono::steady_clock>()) {}

Snapshot Observer::Look() {
  Snapshot snapshot;
  snapshot.folder = folder_.string();
  snapshot.now_us = Now_us<std::chrono::system_clock>();
  std::error_code ignored;
  snapshot.exists = fs::is_directory(folder_, ignored);
  if (!snapshot.exists) {
    snapshot.troubles.push_back("there is no board in " + snapshot.folder);
    return snapshot;
  }
  LookAtSettings(snapshot);
  LookAtDaemon(snapshot);
  LookAtCells(snapshot);
  LookAtStore(snapshot);
  LookAtCards(snapshot);
  LookAtSurroundings(snapshot);
  LookAtTrace(snapshot);
  return snapshot;
}

void Observer::LookAtSettings(Snapshot& snapshot) {
  const auto text = ReadText(folder_ / "board.conf", kMostSettings);
  if (!text.has_value()) {
    snapshot.troubles.emplace_back("board.conf is missing or can't be read");
    return;
  }
  const std::string fault = board::ParseSettings(*text, "board.conf", snapshot.settings);
  if (!fault.empty()) snapshot.troubles.push_back(fault);
}

void Observer::LookAtDaemon(Snapshot& snapshot) const {
  const FileReader file(folder_ / kPidFile);
  snapshot.daemon.pid = HolderOf(file);
  if (snapshot.daemon.pid != 0) snapshot.daemon.started_us = file.written_us();
  std::error_code ignored;
  snapshot.fpga_loaded = fs::exists(folder_ / "etc/init.d/flag_fpgaload", ignored);
}

void Observer::LookAtCells(Snapshot& snapshot) const {
  using ZEPH_MCUC::rgbgamma::BusOf;
  using ZEPH_MCUC::rgbgamma::Colour;
  auto [cells, device, picture] = std::tie(snapshot.cells, snapshot.device, snapshot.picture);
  std::vector<Piece> pieces = {{0, cells}, {ZEPH_MCUC::kPositionBus, device.positions}};
  for (const ZEPH_MCUC::NumberBlock& block : ZEPH_MCUC::kNumberBlocks) {
    pieces.push_back({block.bus, Bytes(device.numbers).subspan(block.offset, block.length)});
  }
  pieces.push_back({ZEPH_MCUC::hc::kSwitchBus, {&picture.tables, 1}});
  for (std::size_t i = 0; i < picture.gamma.size(); ++i) {
    pieces.push_back({BusOf(static_cast<Colour>(i)), picture.gamma[i]});
  }
  pieces.push_back({ZEPH_MCUC::pattern::kBus, picture.pattern});
  ReadPieces(folder_, kCells, pieces, snapshot.troubles);
  std::copy_n(cells.begin(), device.features.size(), device.features.begin());
}

void Observer::LookAtStore(Snapshot& snapshot) const {
  wall::DeviceBytes& device = snapshot.device;
  std::array<std::uint8_t, 8> screen{};
  std::array<std::uint8_t, 8> card{};
  ReadPieces(folder_, kStore,
             {{flash::kShortcut, device.record},
              {flash::kScreenSize, screen},
              {flash::kCardSize, card},
              {flash::kBrightness, snapshot.plan},
              {flash::kHCInteraction, snapshot.picture.request}},
             snapshot.troubles);
  device.cardSize = {card[0], card[1], card[4], card[5]};
  // An advanced wall's screen size never reaches the cells.
  if (device.record[ZEPH_MCUC::shortcut::kStatus] == ZEPH_MCUC::kConfiguredAdvanced) {
    std::copy_n(screen.begin(), 2, &device.features[ZEPH_MCUC::feature::kScreenWidth]);
    std::copy_n(screen.begin() + 4, 2, &device.features[ZEPH_MCUC::feature::kScreenHeight]);
  }
}

void Observer::LookAtCards(Snapshot& snapshot) const {
  constexpr std::size_t kRecord = 32;
  const FileReader file(folder_ / "cards");
  std::array<std::uint8_t, kCardHeader> header{};
  if (!file.Read(0, header)) {
    snapshot.troubles.emplace_back("cards is missing or cut short");
    return;
  }
  const std::size_t count = CardCount(header, file.size());
  if (count == 0 && file.size() > kCardHeader) {
    snapshot.troubles.emplace_back("cards is no list of cards");
  }
  snapshot.cards.resize(count * kRecord);
  if (!file.Read(kCardHeader, snapshot.cards)) snapshot.cards.clear();
}

void Observer::LookAtSurroundings(Snapshot& snapshot) const {
  std::array<std::uint8_t, 8> offset{};
  ReadPieces(folder_, "clock", {{0, offset}}, snapshot.troubles);
  std::memcpy(&snapshot.offset_us, offset.data(), offset.size());
  ReadPieces(folder_, "faults", {{0, BytesOf(snapshot.faults)}}, snapshot.troubles);
  const auto lux = ReadText(folder_ / "sensors/lux", kMostLux);
  snapshot.lux = lux.has_value() ? std::string(board::Trim(lux->substr(0, lux->find('\n')))) : "0";
  for (const auto& input : snapshot.settings.inputs) {
    if (!input.has_value()) continue;
    char name[32];
    std::snprintf(name, sizeof name, "inputs/%04x.edid", input->id);
    std::array<std::uint8_t, kEdidBytes> edid{};
    const FileReader file(folder_ / name);
    if (file.Read(0, edid)) snapshot.edids[input->id] = edid;
  }
}

void Observer::LookAtTrace(Snapshot& snapshot) {
  for (const std::string& line : tail_.Look()) log_.Take(line);
  snapshot.log = log_.entries();
  snapshot.trace_epoch_us = trace_epoch_us_;
  snapshot.trace_passed_over = tail_.passedOver();
}

}  // namespace quivord::live
