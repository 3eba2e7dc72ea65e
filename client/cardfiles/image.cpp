#include "cardfiles/image.h"

#include <algorithm>

#include "stub/mcucmessagestruct_layout.h"

namespace quivord::cardfiles {
namespace {

namespace device = ZEPH_MCUC::cardfiles;

constexpr std::uint32_t kLengthBehind = 4;  // from a file's place in the header to its length

std::uint32_t Entry0(std::size_t number) {
  return device::kHeaderEntry + device::kHeaderEntrySize * static_cast<std::uint32_t>(number);
}

std::uint32_t Aligned(std::size_t offset) {
  return static_cast<std::uint32_t>((offset + kSpacing - 1) / kSpacing * kSpacing);
}

// Where each file begins in the image, and behind the last one where it ends.
std::vector<std::uint32_t> Places(std::span<const File> files) {
  std::vector<std::uint32_t> places = {kFirstFile};
  for (const File& file : files) places.push_back(Aligned(places.back() + file.bytes.size()));
  return places;
}

std::optional<std::string> FileObstacle(const File& file) {
  if (file.name.empty() || file.name.size() >= kNameBytes) {
    return "the name " + file.name + " has more than " + std::to_string(kNameBytes - 1) + " bytes";
  }
  const Verdict verdict = Check(file.bytes);
  if (!verdict.fault.empty()) return file.name + " " + verdict.fault;
  return std::nullopt;
}

void Append(std::uint32_t offset, const Bytes& bytes, std::vector<Piece>& pieces) {
  for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    const auto size = static_cast<std::ptrdiff_t>(std::min(kPiece, bytes.size() - at));
    pieces.push_back(
        {device::kBase + offset + static_cast<std::uint32_t>(at), Bytes(begin, begin + size)});
  }
}

// A name up to its first zero; empty where what stands there is no text.
std::string NameAt(std::span<const std::uint8_t> names, std::size_t number) {
  const auto place = names.subspan(number * kNameBytes, kNameBytes);
  const auto end = std::find(place.begin(), place.end(), 0);
  std::string name(place.begin(), end);
  const bool text = end != place.end() && std::all_of(name.begin(), name.end(), [](char c) {
                      return static_cast<unsigned char>(c) >= 0x20 && c != 0x7F;
                    });
  return text ? name : "";
}

}  // namespace

std::optional<std::string> Obstacle(std::span<const File> files) {
  if (files.size() > kMostFiles) {
    return "a device keeps " + std::to_string(kMostFiles) + " files, not " +
           std::to_string(files.size());
  }
  std::size_t end = kFirstFile;
  for (const File& file : files) {
    if (auto obstacle = FileObstacle(file)) return obstacle;
    end = Aligned(end) + file.bytes.size();
  }
  if (end <= device::kImage) return std::nullopt;
  return "the files have " + std::to_string(end - device::kImage) +
         " bytes more than a device keeps";
}

std::vector<Piece> Upload(std::span<const File> files) {
  const std::vector<std::uint32_t> places = Places(files);
  Bytes header(kHeaderBytes);
  Bytes names(kNamesBytes);
  header[0] = 1;
  header[1] = static_cast<std::uint8_t>(files.size());
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < files.size(); ++i) {
    ZEPH_MCUC::DWQ_ENCDW(&header[Entry0(i)], places[i]);
    ZEPH_MCUC::DWQ_ENCDW(&header[Entry0(i) + kLengthBehind],
                         static_cast<std::uint32_t>(files[i].bytes.size()));
    std::copy(files[i].name.begin(), files[i].name.end(),
              names.begin() + static_cast<std::ptrdiff_t>(i * kNameBytes));
  }
  Append(0, header, pieces);
  Append(device::kNames - device::kBase, names, pieces);
  for (std::size_t i = 0; i < files.size(); ++i) Append(places[i], files[i].bytes, pieces);
  return pieces;
}

// The device removes what lies behind the count when it or the first byte changes. 1 and 0 differ
// from every header of files, and from what a device has in memory behind a start: 0 and 0.
Piece Removal() {
  Bytes header(kHeaderBytes);
  header[0] = 1;
  return {device::kBase, header};
}

std::vector<Entry> Entries(std::span<const std::uint8_t> header,
                           std::span<const std::uint8_t> names) {
  if (header.size() < kHeaderBytes || names.size() < kNamesBytes || header[1] > kMostFiles)
    return {};
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < header[1]; ++i) {
    Entry entry{NameAt(names, i), ZEPH_MCUC::DWQ_DECDW(&header[Entry0(i)]),
                ZEPH_MCUC::DWQ_DECDW(&header[Entry0(i) + kLengthBehind])};
    const bool inside =
        entry.offset <= device::kImage && entry.length <= device::kImage - entry.offset;
    if (!inside) entry.length = 0;
    entries.push_back(entry);
  }
  return entries;
}

Verdict Check(std::span<const std::uint8_t> file) {
  constexpr std::uint64_t kAfterPiece_ms = 10;
  constexpr std::uint64_t kAfterPack_ms = 15;
  constexpr std::size_t kPacket = 512;
  if (file.size() < device::kFirstPack) return {"is shorter than a configuration file's head"};
  const std::uint32_t count = ZEPH_MCUC::DWQ_DECWD(file.data());
  Verdict verdict;
  ZEPH_MCUC::CardPackReader reader(file);
  while (const auto pack = reader.Next()) {
    ++verdict.packs;
    verdict.pauses_ms += kAfterPack_ms + pack->delay_ms;
    if (pack->data.size() > kPacket)
      verdict.pauses_ms += kAfterPiece_ms * (pack->data.size() / kPacket);
  }
  if (verdict.packs != count) {
    verdict.fault = "is no configuration file: pack " + std::to_string(verdict.packs + 1) + " of " +
                    std::to_string(count) + " is cut off, or longer than 4096 bytes";
  }
  return verdict;
}

}  // namespace quivord::cardfiles
