#include "record/recording.h"

#include <cstdio>
#include <optional>

#include "board/text.h"
#include "stub/mcucmessagestruct_layout.h"
#include "trace/busline.h"

namespace quivord::record {
namespace {

constexpr std::string_view kFirstWord = "quivord-recording";
constexpr std::string_view kVersion = "1";
constexpr std::size_t kMostFrame = ZEPH_MCUC::TP_RECV_BUFFER_LENGTH;

// How far back a repetition may lie: a byte, or a record of some table. Shorter ones than
// `kWorthIt` bytes stand as they are.
constexpr std::size_t kDistances[] = {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 4096};
constexpr std::size_t kWorthIt = 8;

struct Repetition {
  std::size_t distance = 0;
  std::size_t length = 0;
};

// The longest one that begins at `at`.
Repetition RepetitionAt(const Bytes& bytes, std::size_t at) {
  Repetition best;
  for (const std::size_t distance : kDistances) {
    if (distance > at) break;
    std::size_t end = at;
    while (end < bytes.size() && bytes[end] == bytes[end - distance]) ++end;
    if (end - at > best.length) best = {distance, end - at};
  }
  return best;
}

// "0a0b00(1:15)": two digits a byte, and for what repeats how far back it stands and how long it
// is.
std::string Packed(const Bytes& bytes) {
  std::string text;
  for (std::size_t at = 0; at < bytes.size();) {
    const Repetition again = RepetitionAt(bytes, at);
    if (again.length >= kWorthIt) {
      text += "(" + std::to_string(again.distance) + ":" + std::to_string(again.length) + ")";
      at += again.length;
    } else {
      text += trace::HexOf({bytes[at++]});
    }
  }
  return text.empty() ? "-" : text;
}

// Adds the repetition that `text` begins with behind its bracket; false where it is none.
bool TakeRepetition(std::string_view& text, Bytes& bytes) {
  std::string_view words = board::TakeUntil(text, ')');
  const auto distance = board::NumberBetween(board::TakeUntil(words, ':'), 1,
                                             static_cast<std::uint32_t>(bytes.size()));
  const auto room = static_cast<std::uint32_t>(kMostFrame - bytes.size());
  const auto length = board::NumberBetween(words, 1, room);
  if (!distance.has_value() || !length.has_value()) return false;
  for (std::uint32_t i = 0; i < *length; ++i) bytes.push_back(bytes[bytes.size() - *distance]);
  return true;
}

// The reverse of `Packed`; nothing where the text isn't like that, or is of a longer frame than
// there is.
std::optional<Bytes> Unpacked(std::string_view text) {
  Bytes bytes;
  if (text == "-") return bytes;
  while (!text.empty()) {
    if (text.starts_with('(')) {
      text.remove_prefix(1);
      if (!TakeRepetition(text, bytes)) return std::nullopt;
      continue;
    }
    const Bytes byte = trace::BytesOf(text.substr(0, 2));
    if (byte.empty() || bytes.size() == kMostFrame) return std::nullopt;
    bytes.push_back(byte.front());
    text.remove_prefix(2);
  }
  return bytes;
}

// Each gives why the line is none of its kind; empty where it is one.
std::string TakeFirst(std::string_view line) {
  if (board::TakeUntil(line, ' ') != kFirstWord) return "this is no recording";
  if (line == kVersion) return "";
  return "a recording of version " + std::string(line) + "; this program reads version " +
         std::string(kVersion);
}

std::string TakeSlot(std::string_view line, Recording& recording) {
  const bool named = board::TakeUntil(line, ' ') == "slot";
  const auto slot = board::NumberBetween(line, 0, UINT8_MAX);
  if (!named || !slot.has_value()) return "'slot' and a number from 0 to 255 are wanted here";
  recording.slot = static_cast<std::uint8_t>(*slot);
  return "";
}

std::string TakeFrame(std::string_view line, Recording& recording) {
  const auto word = [&line] { return board::TakeUntil(line, ' '); };
  const auto at = trace::TimeOf(word());
  const std::string_view way = word();
  const auto peer = board::NumberBetween(word(), 1, UINT32_MAX);
  if (!at.has_value() || (way != ">" && way != "<") || !peer.has_value()) {
    return "a frame is microseconds, > or <, 0xPEER and its bytes";
  }
  auto bytes = line.empty() ? std::nullopt : Unpacked(line);
  if (!bytes.has_value()) {
    return "the bytes are hexadecimal digits and (DISTANCE:LENGTH), 65536 at most, or - for none";
  }
  auto& frames = recording.frames;
  if (!frames.empty() && *at < frames.back().at_us) return "the times go back here";
  frames.push_back({*at, way == ">", *peer, std::move(*bytes)});
  return "";
}

}  // namespace

std::string HeadText(std::uint8_t slot) {
  return std::string(kFirstWord) + " " + std::string(kVersion) + "\nslot " + std::to_string(slot) +
         "\n";
}

std::string FrameText(const Frame& frame) {
  char words[64];
  std::snprintf(words, sizeof words, "%lld %c 0x%08x ", static_cast<long long>(frame.at_us),
                frame.towards_daemon ? '>' : '<', frame.peer);
  return words + Packed(frame.bytes) + "\n";
}

std::string ReadRecording(std::string_view text, std::string_view file, Recording& recording) {
  int number = 0;
  int meant = 0;  // lines that are no remark
  while (!text.empty()) {
    ++number;
    const std::string_view line = board::Trim(board::TakeUntil(text, '\n'));
    if (line.empty() || line.starts_with('#')) continue;
    ++meant;
    const std::string fault = meant == 1   ? TakeFirst(line)
                              : meant == 2 ? TakeSlot(line, recording)
                                           : TakeFrame(line, recording);
    if (!fault.empty()) return std::string(file) + ":" + std::to_string(number) + ": " + fault;
  }
  return meant < 2 ? std::string(file) + ": this is no recording" : "";
}

}  // namespace quivord::record
