#include "cardfiles/description.h"

#include <algorithm>
#include <sstream>

#include "numbers.h"
#include "stub/mcucmessagestruct_layout.h"

namespace quivord::cardfiles {
namespace {

namespace device = ZEPH_MCUC::cardfiles;
using Words = std::vector<std::string>;

constexpr std::size_t kMostPacks = 0xFFFF;
constexpr std::size_t kMostBytes = device::kImage;  // of one line
constexpr std::uint16_t kMostWait_ms = 0xFFFF;

// What a line says.
struct Line {
  std::uint32_t reg = 0;
  Bytes data;
  std::uint16_t wait_ms = 0;
};

Error Wrong(const std::string& text) { return {Trouble::kWrongUse, text}; }

// The words of a line, without its comment.
Words Split(const std::string& line) {
  std::istringstream text(line.substr(0, line.find('#')));
  Words words;
  for (std::string word; text >> word;) words.push_back(word);
  return words;
}

Result<Bytes> Fill(const Words& words) {
  const auto byte = words.size() == 3 ? ctl::ParseBytes({words[1]}) : std::nullopt;
  const auto count = words.size() == 3 ? ctl::ParseNumber(words[2], kMostBytes) : std::nullopt;
  if (!byte.has_value() || byte->size() != 1 || !count.has_value()) {
    return Wrong("'fill' takes a byte in hexadecimal and how many of it, as in 'fill 00 1024'");
  }
  return Bytes(*count, byte->front());
}

Result<Bytes> Content(const Words& words, const Source& source) {
  if (words.size() != 2) return Wrong("'file' takes one name");
  auto bytes = source(words[1]);
  if (!bytes.has_value()) return Wrong(words[1] + " can't be read");
  if (bytes->size() > kMostBytes) return Wrong(words[1] + " is larger than a device keeps");
  return std::move(*bytes);
}

Result<Bytes> Data(const Words& words, const Source& source) {
  if (words.empty()) return Wrong("there are no bytes behind the register");
  if (words[0] == "fill") return Fill(words);
  if (words[0] == "file") return Content(words, source);
  auto bytes = ctl::ParseBytes(words);
  if (!bytes.has_value()) return Wrong("bytes are hexadecimal, as in 05 0x1F 0a0b0c");
  return std::move(*bytes);
}

Result<Line> Parse(Words words, const Source& source) {
  Line line;
  const auto reg = ctl::ParseNumber(words[0], UINT32_MAX);
  if (!reg.has_value()) return Wrong("'" + words[0] + "' is no register, such as 0x02000001");
  line.reg = static_cast<std::uint32_t>(*reg);
  words.erase(words.begin());
  if (const auto wait = std::ranges::find(words, "wait"); wait != words.end()) {
    const auto ms =
        wait + 2 == words.end() ? ctl::ParseNumber(wait[1], kMostWait_ms) : std::nullopt;
    if (!ms.has_value()) return Wrong("'wait' takes 0 to 65535 ms and ends its line");
    line.wait_ms = static_cast<std::uint16_t>(*ms);
    words.erase(wait, words.end());
  }
  auto data = Data(words, source);
  if (!data) return data.error();
  line.data = std::move(data.value());
  return line;
}

void AppendPack(std::uint32_t reg, std::uint16_t wait_ms, std::span<const std::uint8_t> data,
                Bytes& file) {
  std::uint8_t head[device::kPackHead];
  ZEPH_MCUC::DWQ_ENCDW(head, reg);
  ZEPH_MCUC::DWQ_ENCWD(head + 4, wait_ms);
  ZEPH_MCUC::DWQ_ENCWD(head + 6, static_cast<std::uint16_t>(data.size()));
  file.insert(file.end(), std::begin(head), std::end(head));
  file.insert(file.end(), data.begin(), data.end());
}

// Appends a line as packs; the number of packs.
std::size_t Append(const Line& line, Bytes& file) {
  std::size_t packs = 0;
  std::size_t at = 0;
  do {
    const std::size_t size = std::min<std::size_t>(device::kMostPackData, line.data.size() - at);
    const bool last = at + size == line.data.size();
    AppendPack(line.reg + static_cast<std::uint32_t>(at), last ? line.wait_ms : 0,
               std::span(line.data).subspan(at, size), file);
    at += size;
    ++packs;
  } while (at < line.data.size());
  return packs;
}

}  // namespace

Result<Bytes> Compile(std::string_view text, const Source& source) {
  Bytes file(device::kFirstPack);
  std::size_t packs = 0;
  std::istringstream lines{std::string(text)};
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    const Words words = Split(line);
    if (words.empty()) continue;
    const auto parsed = Parse(words, source);
    if (!parsed) return Wrong("line " + std::to_string(number) + ": " + parsed.error().text);
    packs += Append(parsed.value(), file);
    if (packs > kMostPacks)
      return Wrong("line " + std::to_string(number) + ": more than 65535 packs");
    if (file.size() > device::kImage) {
      return Wrong("line " + std::to_string(number) + ": larger than a device keeps");
    }
  }
  if (packs == 0) return Wrong("no line describes a pack");
  ZEPH_MCUC::DWQ_ENCWD(file.data(), static_cast<std::uint16_t>(packs));
  return file;
}

}  // namespace quivord::cardfiles
