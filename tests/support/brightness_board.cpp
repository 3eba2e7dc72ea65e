#include "support/brightness_board.h"

#include <algorithm>
#include <cstdio>

#include "support/board_kit.h"
#include "support/loop.h"

namespace brightness_board {

using brightness_bytes::Data;

void StartAt(std::int64_t seconds, const std::string& traced) {
  board_kit::Configure("speed = 2000\ntrace = " + traced + "\n");
  loop::Start(seconds);
}

int Write(std::uint32_t offset, const Data& data) {
  const auto reply = inprocess::Write(kBase + offset, data);
  inprocess::DrainQueue();
  return reply.m_ucAck;
}

void Upload(const Data& file, std::size_t piece) {
  for (std::size_t at = 0; at < file.size(); at += piece) {
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(at);
    const std::size_t length = std::min(piece, file.size() - at);
    Write(static_cast<std::uint32_t>(at), {begin, begin + static_cast<std::ptrdiff_t>(length)});
  }
}

void UploadList(Data table) {
  const Data mode = {table[0]};
  table[0] = 0;
  Upload(table);
  Write(0, mode);
}

std::vector<std::string> Sent() {
  static std::size_t seen = 0;
  const auto lines = board_kit::TraceLines();
  std::vector<std::string> sent;
  for (; seen < lines.size(); ++seen) {
    unsigned type = 0;
    char port[8], reg[16], data[64];
    if (std::sscanf(lines[seen].c_str(), "card %*c %u %7s %*u %15s %*u %*d %63s", &type, port, reg,
                    data) == 4 &&
        type == 1) {
      sent.push_back(std::string(port) + " " + reg + " " + data);
    }
  }
  return sent;
}

std::vector<int> SentValues() {
  std::vector<int> values;
  for (const std::string& line : Sent()) {
    unsigned value = 0;
    const bool all = std::sscanf(line.c_str(), "255 0x02000001 %x", &value) == 1;
    values.push_back(all ? static_cast<int>(value) : -1);
  }
  return values;
}

std::set<int> Levels() {
  std::set<int> values;
  for (const std::string& line : Sent()) {
    unsigned value = 0;
    if (std::sscanf(line.c_str(), "%*u 0x02000001 %x", &value) == 1) {
      values.insert(static_cast<int>(value));
    }
  }
  return values;
}

}  // namespace brightness_board
