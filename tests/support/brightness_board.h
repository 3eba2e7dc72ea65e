// Brightness plans on a board, without the daemon's threads: uploads through the space and their
// deferred half, and what the cards got.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/brightness_bytes.h"

namespace brightness_board {

inline constexpr std::uint32_t kBase = 0x0A000000;
inline constexpr std::uint32_t kFlash = 0xB8B000;
inline constexpr std::int64_t kFriday = 1'777'593'600;  // 1 May 2026, 00:00
inline constexpr std::int64_t kNoon = kFriday + 12 * 3600;

// A fast board with these kinds traced, its time at `seconds` since 1970.
void StartAt(std::int64_t seconds, const std::string& traced = "card");

// A write to the space, carried out; the ack.
int Write(std::uint32_t offset, const brightness_bytes::Data& data);
// Sends a table in pieces; `UploadList` one under no mode, which its mode byte then starts.
void Upload(const brightness_bytes::Data& file, std::size_t piece = 512);
void UploadList(brightness_bytes::Data table);

// What has gone to receiving cards since the last call of any of these: "PORT REGISTER BYTES", the
// values of the global brightness for all cards with -1 for anything else, and such values for
// whatever cards.
std::vector<std::string> Sent();
std::vector<int> SentValues();
std::set<int> Levels();

}  // namespace brightness_board
