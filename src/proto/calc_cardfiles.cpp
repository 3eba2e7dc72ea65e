#include "proto/calc_cardfiles.h"

#include <algorithm>
#include <numeric>

#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {

std::optional<std::size_t> CardFileTable::EntryOf(uint32_t reg) const {
  for (std::size_t i = 0; i < count; ++i) {
    if (address[i] < cardfiles::kBase) continue;  // begins outside the space and holds nothing
    if (address[i] <= reg && address[i + 1] > reg) return i;
  }
  return std::nullopt;
}

std::optional<CardFileTable> ReadCardFileHeader(std::span<const uint8_t> header) {
  if (header.size() < 2) return std::nullopt;
  CardFileTable table;
  table.enable = header[0];
  table.count = header[1];
  const std::size_t count = table.count;
  if (count > cardfiles::kMostFiles) return std::nullopt;
  struct Entry {
    uint32_t address;
    uint8_t index;
  };
  std::array<Entry, cardfiles::kMostFiles + 1> entries{};
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = cardfiles::kHeaderEntry + cardfiles::kHeaderEntrySize * i;
    if (at + 4 > header.size()) return std::nullopt;
    entries[i] = {DWQ_DECDW(&header[at]) + cardfiles::kBase, static_cast<uint8_t>(i)};
  }
  entries[count] = {cardfiles::kRename, 0};
  const auto end = entries.begin() + static_cast<std::ptrdiff_t>(count) + 1;
  std::stable_sort(entries.begin(), end,
                   [](const Entry& a, const Entry& b) { return a.address < b.address; });
  for (std::size_t i = 0; i <= count; ++i) {
    table.address[i] = entries[i].address;
    table.index[i] = entries[i].index;
  }
  return table;
}

CardPackHead ReadCardPackHead(std::span<const uint8_t, cardfiles::kPackHead> head) {
  return {DWQ_DECDW(&head[0]), DWQ_DECWD(&head[4]), DWQ_DECWD(&head[6])};
}

CardPackReader::CardPackReader(std::span<const uint8_t> file) : file_(file) {
  if (file_.size() >= cardfiles::kFirstPack) left_ = DWQ_DECWD(file_.data());
}

std::optional<CardPack> CardPackReader::Next() {
  if (left_ == 0 || file_.size() - at_ < cardfiles::kPackHead) return std::nullopt;
  const CardPackHead head = ReadCardPackHead(file_.subspan(at_).first<cardfiles::kPackHead>());
  const std::size_t data = at_ + cardfiles::kPackHead;
  if (head.length > cardfiles::kMostPackData || head.length > file_.size() - data) {
    return std::nullopt;
  }
  --left_;
  at_ = data + head.length;
  return CardPack{head.reg, head.delay_ms, file_.subspan(data, head.length)};
}

}  // namespace ZEPH_MCUC
