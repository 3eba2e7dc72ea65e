// The files that the client reads: plans, walls, card file descriptions, gamma tables and
// recordings. A text is refused with a reason or taken; what is taken is written as text again that
// reads the same.
#include <string_view>

#include "brightness/file.h"
#include "cardfiles/description.h"
#include "colour/gammaset.h"
#include "record/plan.h"
#include "wall/file.h"
#include "world.h"

namespace {

void ReadPlan(std::string_view text) {
  const auto plan = quivord::brightness::ParsePlan(text);
  Want(plan || !plan.error().text.empty());
}

void ReadWall(std::string_view text) {
  const auto file = quivord::wall::ParseFile(text);
  Want(file || !file.error().text.empty());
}

void ReadDescription(std::string_view text) {
  const auto none = [](const std::string&) { return std::optional<quivord::cardfiles::Bytes>(); };
  const auto file = quivord::cardfiles::Compile(text, none);
  Want(file || !file.error().text.empty());
}

void ReadGamma(std::string_view bytes) {
  const auto set = quivord::colour::ParseGamma(bytes);
  Want(set || !set.error().text.empty());
}

// What is taken reads the same once more when it is written.
void ReadSession(std::string_view text) {
  using namespace quivord::record;
  Recording recording;
  if (!ReadRecording(text, "file", recording).empty()) return;
  std::string written = HeadText(recording.slot);
  for (const Frame& frame : recording.frames) written += FrameText(frame);
  Recording again;
  Want(ReadRecording(written, "file", again).empty() && again == recording);
  Want(PlanOf(recording).size() == recording.frames.size());
}

}  // namespace

// The first byte chooses the kind of file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr void (*kReaders[])(std::string_view) = {ReadPlan, ReadWall, ReadDescription, ReadGamma,
                                                    ReadSession};
  if (size == 0) return 0;
  kReaders[data[0] % std::size(kReaders)]({reinterpret_cast<const char*>(data) + 1, size - 1});
  return 0;
}
