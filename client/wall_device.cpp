#include <algorithm>
#include <fstream>
#include <iterator>
#include <thread>

#include "wall_commands.h"

namespace ctl {
namespace {

namespace shortcut = ZEPH_MCUC::shortcut;
using quivord::wall::DeviceBytes;

constexpr auto kPatience = std::chrono::seconds(5);
constexpr auto kLook = std::chrono::milliseconds(100);

// A layout starts up to two beats of 200 ms after the request. A wall that is there sooner may be
// the one from before, with another one still to come.
constexpr auto kSettled = std::chrono::milliseconds(500);
constexpr std::uintmax_t kMostFile = 1 << 20;  // a wall's file is some hundred bytes

bool Done(const Answer& answer) { return answer.exit == Exit::kDone; }

}  // namespace

Answer WallDevice::Connect() {
  if (context_.options.target.device != ZEPH_MCUC::JSHL_TypeSender) {
    return {Exit::kWrongUse, "a wall is the sending card's; leave out --device", {}};
  }
  auto client = context_.Connect();
  if (!client) {
    const bool wrong = client.error().trouble == quivord::Trouble::kWrongUse;
    return {wrong ? Exit::kWrongUse : Exit::kNoAnswer, client.error().text, {}};
  }
  client_ = std::move(client.value());
  return {};
}

Answer WallDevice::Read(Scope scope) {
  for (const DeviceBytes::Part& part : bytes.Parts()) {
    const auto length = static_cast<std::uint16_t>(part.bytes.size());
    Answer answer = ReadRegister(context_.options, *client_, part.address, length);
    if (!Done(answer)) return answer;
    if (answer.data.size() != part.bytes.size()) {
      return {Exit::kRefused, "the device answers with too few bytes", {}};
    }
    std::copy(answer.data.begin(), answer.data.end(), part.bytes.begin());
    if (scope == Scope::kRecord) break;  // the record comes first
  }
  return {};
}

Answer WallDevice::Write(std::uint32_t address, std::vector<std::uint8_t> data) {
  if (auto obstacle = WriteObstacle(context_.options, address, data.size())) {
    return {Exit::kRefused, "not sent: " + *obstacle, {}};
  }
  return WriteRegister(context_.options, *client_, address, std::move(data));
}

Answer WallDevice::WriteRecord(std::uint32_t begin, std::uint32_t end) {
  return Write(shortcut::kBase + begin, {bytes.record.begin() + begin, bytes.record.begin() + end});
}

Answer WallDevice::Submit() {
  return Write(shortcut::kBase + shortcut::kStatus, {shortcut::kSubmit});
}

Answer WallDevice::Await(Scope scope, const Missing& missing) {
  using Clock = std::chrono::steady_clock;
  const auto settling = scope == Scope::kAll ? kSettled : kSettled.zero();
  const auto begin = Clock::now();
  auto absent = begin;  // when it was last seen not to be there
  while (true) {
    if (Answer answer = Read(scope); !Done(answer)) return answer;
    const auto what = missing(bytes);
    const auto now = Clock::now();
    if (what.has_value()) absent = now;
    if (!what.has_value() && now - absent >= settling) return {};
    if (what.has_value() && now - begin >= kPatience) {
      return {Exit::kRefused, "the device took it, but after 5 seconds " + *what, {}};
    }
    std::this_thread::sleep_for(kLook);
  }
}

WallRead ReadWall(Context& context, WallDevice::Scope scope) {
  const auto device = std::make_unique<WallDevice>(context);
  Answer answer = device->Connect();
  if (Done(answer)) answer = device->Read(scope);
  if (!Done(answer)) return {answer, {}};
  return {answer, quivord::wall::Understand(device->bytes)};
}

quivord::Result<quivord::wall::WallFile> LoadWall(const std::filesystem::path& file) {
  const auto wrong = [&file](const std::string& text) {
    return quivord::Error{quivord::Trouble::kWrongUse, file.string() + ": " + text};
  };
  std::error_code failed;
  const std::uintmax_t size = std::filesystem::file_size(file, failed);
  if (failed) return wrong(failed.message());
  if (size > kMostFile) return wrong("far too large for a wall");
  std::ifstream stream(file);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  auto read = quivord::wall::ParseFile(text);
  if (!read) return wrong(read.error().text);
  return read;
}

}  // namespace ctl
