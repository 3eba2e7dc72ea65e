#include "support/trace.h"

#include <sstream>
#include <vector>

#include "stub/frame_layout.h"
#include "support/board_kit.h"
#include "support/inprocess.h"

namespace support {
namespace {

using Words = std::vector<std::string>;

constexpr std::size_t kMostShown = 8;  // bytes

Words Split(const std::string& line) {
  std::istringstream text(line);
  Words words;
  for (std::string word; text >> word;) words.push_back(word);
  return words;
}

// "0x00a3b100" as "0xa3b100".
std::string Short(const std::string& address) {
  const std::size_t digit = std::min(address.find_first_not_of('0', 2), address.size() - 1);
  return "0x" + address.substr(digit);
}

// `words` from `at` on: address, length, outcome, data.
std::string Access(const std::string& start, const Words& words, std::size_t at) {
  const bool done = words[at + 2] == "ok";
  const bool shown = done && words[1] == "W" && std::stoul(words[at + 1]) <= kMostShown;
  std::string line = start;
  line.append(" ").append(Short(words[at])).append(" ");
  line.append(shown ? words[at + 3] : "x" + words[at + 1]);
  return done ? line : line + " fail";
}

// Whom a report goes to; empty for other peers, who get replies alone.
std::string Receiver(const std::string& id) {
  const auto task = std::stoul(id, nullptr, 16) & 0xFFFFFF;
  if (task == ZEPH_MCUC::task::kOwd) return "owd";
  return task == ZEPH_MCUC::task::kKye ? "kye" : "";
}

std::string Report(const Words& words) {
  const auto head = ZEPH_MCUC::ReadFrameHead(inprocess::Bytes(words[4].c_str()));
  const std::string receiver = Receiver(words[2]);
  if (!head.has_value() || head->code != ZEPH_MCUC::JSHL_PROTOREAD || receiver.empty()) return "";
  char address[16];
  std::snprintf(address, sizeof address, " 0x%08x ", head->registerAddress);
  return receiver + address + words[4].substr(36, 2 * std::size_t{head->dataLength});
}

std::string Compact(const std::string& line) {
  const Words words = Split(line);
  if (words[0] == "fpga") return Access("fpga " + words[1], words, 3);
  if (words[0] == "flash") {
    const std::string store = words[2] == "live" ? "" : " " + words[2];
    return Access("flash " + words[1] + store, words, 3);
  }
  if (words[0] == "edid") {
    return "edid " + words[1] + " " + words[2] + (words[3] == "-" ? " fail" : "");
  }
  if (words[0] == "bus" && words[1] == "<") return Report(words);
  if (line.starts_with("shell 0 ")) return "shell " + line.substr(8);
  return line;
}

}  // namespace

Trace::Trace() : seen_(board_kit::TraceLines().size()) {}

std::string Trace::Take() {
  const auto lines = board_kit::TraceLines();
  std::string text;
  for (; seen_ < lines.size(); ++seen_) {
    const std::string line = Compact(lines[seen_]);
    if (!line.empty()) text.append(line).append("\n");
  }
  return text;
}

std::string Trace::TakeLine() {
  std::string lines = Take();
  if (lines.ends_with('\n')) lines.pop_back();
  for (std::size_t at; (at = lines.find('\n')) != lines.npos;) lines.replace(at, 1, "; ");
  return lines;
}

int Count(const std::string& lines, const std::string& start) {
  std::istringstream text(lines);
  int count = 0;
  for (std::string line; std::getline(text, line);) count += line.starts_with(start) ? 1 : 0;
  return count;
}

}  // namespace support
