#include "board/cells.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <numeric>

#include "board/board.h"
#include "board/files.h"

namespace board {
namespace {

constexpr std::uint32_t kPortsPerCell = 4;

// The link words, four ports a byte in its low nibble, once in the register page and once beside
// the fibers' words.
constexpr std::array<std::uint32_t, 4> kPageLinkCells = {0x1F, 0x9F, 0x126, 0x127};
constexpr std::uint32_t kLinkWord = 0xF05100;

// The maps of ports below fiber 1 and fiber 2, two bytes each, one bit a port; in both places.
constexpr std::array<std::uint32_t, 2> kFiberMaps = {0x1F2, 0xF04000};

struct CellRange {
  std::uint32_t first;
  std::uint32_t last;
};

// Cells that only the hardware changes, in ascending order.
constexpr std::array<CellRange, 11> kStatusCells = {{{0x17, 0x17},
                                                     {0x1E, 0x1F},
                                                     {0x46, 0x49},
                                                     {0x9E, 0x9F},
                                                     {0x120, 0x121},
                                                     {0x126, 0x127},
                                                     {0x1D7, 0x1D7},
                                                     {0x1E0, 0x1E1},
                                                     {0x1F2, 0x1FB},
                                                     {0xF04000, 0xF04003},
                                                     {0xF05100, 0xF05103}}};

std::filesystem::path CellFile(const std::filesystem::path& folder, int index) {
  return folder / "fpga" / (std::to_string(index) + ".mem");
}

std::byte* Cells(int index) {
  static const std::array<std::byte*, kFpgas> cells = {
      MapShared(CellFile(Folder(), 0), kCellCount), MapShared(CellFile(Folder(), 1), kCellCount)};
  return cells[static_cast<std::size_t>(index)];
}

constexpr std::uint32_t kPage = 4096;

// Which pages of the files have room on disk, as far as is known, and what gives it to them.
struct Room {
  std::array<FileHandle, kFpgas> files;
  std::array<std::array<std::atomic<bool>, kCellCount / kPage>, kFpgas> known{};
};

Room& RoomOfCells() {
  static Room& room = *[] {
    auto made = std::make_unique<Room>();
    for (int index = 0; index < kFpgas; ++index) {
      made->files[static_cast<std::size_t>(index)] =
          FileHandle(open(CellFile(Folder(), index).c_str(), O_RDWR | O_CLOEXEC));
    }
    return made.release();
  }();
  return room;
}

bool HasRoom(int index, std::uint32_t page) {
  return RoomOfCells().known[static_cast<std::size_t>(index)][page].load(std::memory_order_relaxed);
}

bool ReservePage(int index, std::uint32_t page) {
  if (HasRoom(index, page)) return true;
  Room& room = RoomOfCells();
  const auto fpga = static_cast<std::size_t>(index);
  if (fallocate(room.files[fpga].get(), 0, off_t{page} * kPage, kPage) != 0 &&
      (errno == ENOSPC || errno == EDQUOT)) {
    return false;
  }
  room.known[fpga][page].store(true, std::memory_order_relaxed);
  return true;
}

// Whether all pages of a run are as `good` says.
bool AllPages(int index, std::uint32_t first, std::uint32_t length,
              bool (*good)(int, std::uint32_t)) {
  for (std::uint32_t page = first / kPage; page <= (first + length - 1) / kPage; ++page) {
    if (!good(index, page)) return false;
  }
  return true;
}

// Reads cells past the mapping, which takes room on disk for each page that it touches.
void LoadFromFile(int index, std::uint32_t first, std::uint32_t length, std::byte* data) {
  const int file = RoomOfCells().files[static_cast<std::size_t>(index)].get();
  if (pread(file, data, length, off_t{first}) != static_cast<ssize_t>(length)) {
    std::memset(data, 0, length);
  }
}

// Cells are moved by relaxed atomic accesses, as wide as their place allows.
using Word = unsigned long;

template <typename Unit>
std::atomic_ref<Unit> Shared(std::byte* cell) {
  return std::atomic_ref<Unit>(*reinterpret_cast<Unit*>(cell));
}

// Calls `move(cell, offset, Unit{})` for each unit of a run of cells.
template <typename Move>
void ForUnits(std::byte* cells, std::size_t length, Move move) {
  const auto misaligned = reinterpret_cast<std::uintptr_t>(cells) % sizeof(Word);
  const std::size_t head = std::min(length, (sizeof(Word) - misaligned) % sizeof(Word));
  std::size_t at = 0;
  for (; at < head; ++at) move(cells + at, at, std::uint8_t{});
  for (; at + sizeof(Word) <= length; at += sizeof(Word)) move(cells + at, at, Word{});
  for (; at < length; ++at) move(cells + at, at, std::uint8_t{});
}

void Load(std::byte* cells, std::size_t length, std::byte* data) {
  ForUnits(cells, length, [data](std::byte* cell, std::size_t at, auto unit) {
    unit = Shared<decltype(unit)>(cell).load(std::memory_order_relaxed);
    std::memcpy(data + at, &unit, sizeof(unit));
  });
}

void Store(std::byte* cells, std::size_t length, const std::byte* data) {
  ForUnits(cells, length, [data](std::byte* cell, std::size_t at, auto unit) {
    std::memcpy(&unit, data + at, sizeof(unit));
    Shared<decltype(unit)>(cell).store(unit, std::memory_order_relaxed);
  });
}

// Calls `move(cell, length, offset)` for the run, in two pieces where it passes the last cell.
template <typename Move>
void ForPieces(std::uint32_t address, std::uint32_t length, Move move) {
  for (std::uint32_t done = 0; done < length;) {
    const std::uint32_t cell = (address + done) % kCellCount;
    const std::uint32_t piece = std::min(length - done, kCellCount - cell);
    move(cell, piece, done);
    done += piece;
  }
}

// Calls `move(cell, length)` for the parts of a run that are no status cells.
template <typename Move>
void ForPlainCells(std::uint32_t first, std::uint32_t length, Move move) {
  const std::uint32_t end = first + length;
  for (const CellRange& status : kStatusCells) {
    if (status.last < first) continue;
    if (status.first >= end) break;
    if (status.first > first) move(first, status.first - first);
    first = status.last + 1;
  }
  if (first < end) move(first, end - first);
}

void SetBit(std::byte* cell, std::uint32_t bit, bool on) {
  const auto shared = Shared<std::uint8_t>(cell);
  const auto mask = static_cast<std::uint8_t>(1U << bit);
  on ? shared.fetch_or(mask) : shared.fetch_and(static_cast<std::uint8_t>(~mask));
}

void SetLinkOf(std::byte* cells, std::uint32_t port, bool up) {
  const std::uint32_t group = port / kPortsPerCell;
  SetBit(cells + kPageLinkCells[group], port % kPortsPerCell, up);
  SetBit(cells + kLinkWord + group, port % kPortsPerCell, up);
}

void SetLinksOf(std::byte* cells, const Settings& settings) {
  for (std::uint32_t port = 0; port < kPorts; ++port) {
    const auto& devices = settings.devices[port];
    SetLinkOf(cells, port, std::accumulate(devices.begin(), devices.end(), 0U) > 0);
  }
}

}  // namespace

void CreateCells(const std::filesystem::path& folder, const Settings& settings) {
  CreateSized(CellFile(folder, 0), kCellCount);
  if (!CreateSized(CellFile(folder, 1), kCellCount)) return;
  SetLinksOf(MapShared(CellFile(folder, 1), kCellCount), settings);
}

void SetLinks(const Settings& settings) { SetLinksOf(Cells(1), settings); }

void LoadCells(int index, std::uint32_t address, std::uint32_t length, void* data) {
  auto* const bytes = static_cast<std::byte*>(data);
  ForPieces(address, length, [&](std::uint32_t cell, std::uint32_t piece, std::uint32_t done) {
    if (AllPages(index, cell, piece, HasRoom))
      return Load(Cells(index) + cell, piece, bytes + done);
    LoadFromFile(index, cell, piece, bytes + done);
  });
}

void StoreCells(int index, std::uint32_t address, std::uint32_t length, const void* data) {
  const auto* const bytes = static_cast<const std::byte*>(data);
  ForPieces(address, length, [&](std::uint32_t cell, std::uint32_t piece, std::uint32_t done) {
    Store(Cells(index) + cell, piece, bytes + done);
  });
}

bool ReserveCells(int index, std::uint32_t address, std::uint32_t length) {
  bool room = true;
  ForPieces(address, length, [&](std::uint32_t cell, std::uint32_t piece, std::uint32_t) {
    room = AllPages(index, cell, piece, ReservePage) && room;
  });
  return room;
}

void StoreBusCells(int index, std::uint32_t address, std::uint32_t length, const void* data) {
  const auto* const bytes = static_cast<const std::byte*>(data);
  ForPieces(address, length, [&](std::uint32_t cell, std::uint32_t piece, std::uint32_t done) {
    ForPlainCells(cell, piece, [&](std::uint32_t first, std::uint32_t count) {
      Store(Cells(index) + first, count, bytes + done + (first - cell));
    });
  });
}

void ClearCells(int index) {
  // Only what is not 0 already is written, so that the file stays sparse.
  static constexpr std::array<std::uint8_t, kPage> kZero{};
  std::array<std::uint8_t, kPage> page{};
  for (const FilePart& part : FilledParts(CellFile(Folder(), index))) {
    for (std::size_t at = part.begin / kPage * kPage; at < part.end && at < kCellCount;
         at += kPage) {
      const auto cell = static_cast<std::uint32_t>(at);
      LoadCells(index, cell, kPage, page.data());
      if (page != kZero) StoreBusCells(index, cell, kPage, kZero.data());
    }
  }
}

void SetLink(int port, bool up) { SetLinkOf(Cells(1), static_cast<std::uint32_t>(port), up); }

void SetFiberLink(int fiber, int port, bool up) {
  constexpr std::uint32_t kMapSize = 2;
  const auto bit = static_cast<std::uint32_t>(port);
  const std::uint32_t place = static_cast<std::uint32_t>(fiber - 1) * kMapSize + bit / 8;
  for (const std::uint32_t map : kFiberMaps) SetBit(Cells(1) + (map + place), bit % 8, up);
}

}  // namespace board
