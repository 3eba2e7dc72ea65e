#include "board/cells.h"

#include <array>
#include <numeric>

#include "board/files.h"

namespace board {
namespace {

constexpr int kPortsPerCell = 4;

// The link words, four ports a byte in its low nibble, once in the register page and once beside
// the fibers' words.
constexpr std::array<std::uint32_t, 4> kPageLinkCells = {0x1F, 0x9F, 0x126, 0x127};
constexpr std::uint32_t kLinkWord = 0xF05100;

}  // namespace

void SetLinkBits(std::byte* cells, const Settings& settings) {
  for (std::size_t group = 0; group < kPageLinkCells.size(); ++group) {
    unsigned bits = 0;
    for (std::size_t i = 0; i < kPortsPerCell; ++i) {
      const auto& devices = settings.devices[group * kPortsPerCell + i];
      if (std::accumulate(devices.begin(), devices.end(), 0U) > 0) bits |= 1U << i;
    }
    cells[kPageLinkCells[group]] = static_cast<std::byte>(bits);
    cells[kLinkWord + group] = static_cast<std::byte>(bits);
  }
}

void CreateCells(const std::filesystem::path& folder, const Settings& settings) {
  CreateSized(folder / "fpga/0.mem", kCellCount);
  if (!CreateSized(folder / "fpga/1.mem", kCellCount)) return;
  SetLinkBits(MapShared(folder / "fpga/1.mem", kCellCount), settings);
}

}  // namespace board
