// A recording: the frames between peers and the daemon with their times, as text of one line a
// frame. docs/recording.md describes the file. Pure; any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quivord::record {

using Bytes = std::vector<std::uint8_t>;

struct Frame {
  std::int64_t at_us = 0;  // since the first frame
  bool towards_daemon = false;
  std::uint32_t peer = 0;  // task identifier, slot included
  Bytes bytes;             // as they were on the bus, whole and valid or not

  bool operator==(const Frame&) const = default;
};

struct Recording {
  std::uint8_t slot = 0;  // of the board that it was taken from
  std::vector<Frame> frames;

  bool operator==(const Recording&) const = default;
};

// The lines that begin a file, and the line of a frame; each ends with a line feed.
std::string HeadText(std::uint8_t slot);
std::string FrameText(const Frame& frame);

// Reads the text of a file. Returns an empty text, or the first fault as "FILE:LINE: REASON";
// `recording` then holds the frames in front of it.
std::string ReadRecording(std::string_view text, std::string_view file, Recording& recording);

}  // namespace quivord::record
