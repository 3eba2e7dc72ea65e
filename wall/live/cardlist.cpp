#include "live/cardlist.h"

#include <algorithm>
#include <cstring>

#include "board/cardfile.h"
#include "stub/mcucmessagestruct_layout.h"

namespace quivord::live {
namespace {

namespace record = board::card_record;
using ZEPH_MCUC::DWQ_DECDW;
using ZEPH_MCUC::DWQ_DECWD;

constexpr char kMagic[] = "QVCARDS1";
constexpr std::uint8_t kReceiving = 1;

CardState StateOf(const std::uint8_t* card) {
  CardState state;
  state.brightness = card[record::kBrightness];
  std::copy_n(card + record::kColours, state.colours.size(), state.colours.begin());
  state.screen = card[record::kScreenControl];
  state.mapping = card[record::kMapping];
  state.takesPart = card[record::kTakesPart] == 1;
  state.width = DWQ_DECWD(card + record::kSize);
  state.height = DWQ_DECWD(card + record::kSize + 2);
  return state;
}

void Append(std::vector<CardRun>& runs, const CardState& state) {
  if (runs.empty() || !(runs.back().state == state)) runs.push_back({0, state});
  ++runs.back().count;
}

}  // namespace

std::size_t CardCount(std::span<const std::uint8_t, kCardHeader> header, std::uint64_t size) {
  static_assert(kCardHeader == board::kCardHeaderSize);
  constexpr std::size_t kCountAt = 8;
  constexpr std::size_t kSizeAt = 12;
  if (std::memcmp(header.data(), kMagic, kCountAt) != 0 || size < kCardHeader) return 0;
  if (DWQ_DECDW(&header[kSizeAt]) != board::kCardRecordSize) return 0;
  const std::uint64_t held = (size - kCardHeader) / board::kCardRecordSize;
  return std::min({std::uint64_t{DWQ_DECDW(&header[kCountAt])}, held, std::uint64_t{kMostCards}});
}

CardList ReadCards(std::span<const std::uint8_t> records) {
  CardList list;
  std::map<std::uint8_t, std::size_t> seen;
  for (; records.size() >= board::kCardRecordSize;
       records = records.subspan(board::kCardRecordSize)) {
    const std::uint8_t type = records[record::kType];
    if (type >= 1 && type <= list.devices.size()) ++list.devices[type - 1U];
    const std::uint8_t port = records[record::kPort];
    if (type != kReceiving || port >= board::kPorts) continue;
    if (DWQ_DECWD(&records[record::kBoard]) != seen[port]) continue;
    ++seen[port];
    Append(list.ports[port], StateOf(records.data()));
  }
  return list;
}

}  // namespace quivord::live
