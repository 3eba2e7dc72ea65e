// The configuration files that a device stores for its receiving cards, as the image that a client
// sends: a header that says where each file begins, the files' names, the files. Pure; any thread.
//
// The device looks at the count of files and their places alone. Length and name are this client's:
// behind a file's place stands its length, and a name has 64 bytes, UTF-8, zeros behind it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "proto/calc_cardfiles.h"

namespace quivord::cardfiles {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kMostFiles = ZEPH_MCUC::cardfiles::kMostFiles;
inline constexpr std::uint32_t kHeaderBytes = 36 + 32 * kMostFiles;
inline constexpr std::uint32_t kNameBytes = 64;
inline constexpr std::uint32_t kNamesBytes = kNameBytes * kMostFiles;
inline constexpr std::uint32_t kFirstFile = 0x2000;  // behind header and names
inline constexpr std::uint32_t kSpacing = 0x100;     // a file begins at a multiple of it
inline constexpr std::size_t kPiece = 2048;          // bytes that one write may carry

struct File {
  std::string name;
  Bytes bytes;
};

// Why a device can't keep these files; nothing where it can.
std::optional<std::string> Obstacle(std::span<const File> files);

// One write.
struct Piece {
  std::uint32_t reg;
  Bytes bytes;
};

// What has to be written, in this order, for a device to keep `files`, which have no obstacle.
std::vector<Piece> Upload(std::span<const File> files);

// What has to be written for it to keep none.
Piece Removal();

// A file that a device says it keeps.
struct Entry {
  std::string name;      // empty where the list has none
  std::uint32_t offset;  // in the image
  std::uint32_t length;  // 0 where the header doesn't say, or can't be right
};

// The entries of a header of `kHeaderBytes` and a list of names of `kNamesBytes`, by their numbers.
// None where the header holds no list: that of a device that never got one.
std::vector<Entry> Entries(std::span<const std::uint8_t> header,
                           std::span<const std::uint8_t> names);

// What is wrong with the packs of a file, or how many it has and how long its sending takes.
struct Verdict {
  std::string fault;  // empty where nothing is wrong
  std::uint32_t packs = 0;
  std::uint64_t pauses_ms = 0;  // that belong to sending it
};
Verdict Check(std::span<const std::uint8_t> file);

}  // namespace quivord::cardfiles
