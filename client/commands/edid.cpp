// The EDID that an input shows: read, set to a mode, written from a file, saved to one.
#include <platform/edid.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "commands.h"
#include "commands/edid_device.h"
#include "file_fault.h"
#include "number_check.h"
#include "process/calc_inputsource.h"
#include "subcommands.h"
#include "table.h"
#include "video/edid_facts.h"
#include "video/mode.h"
#include "written_files.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;
namespace video = quivord::video;

constexpr char kNothingShown[] =
    "this input shows no EDID: no board was found there, or it doesn't answer; quivordctl inputs "
    "looks for boards";

struct Words {
  std::string file;
  std::string mode;
  std::optional<int> group;
};

CLI::Option* DeclareGroup(CLI::App& app, Words& words) {
  return app
      .add_option("--group", words.group,
                  "Input group, 0 to 2 (default: the current one). Another one is made current "
                  "for as long as it takes")
      ->type_name("G")
      ->check(NumberFrom(0, kReachableGroups - 1));
}

// Connects, selects the group of the command line, runs `work(device, group)` and puts the input
// back.
template <class Work>
Exit OnGroup(const Context& context, const Words& words, Work work) {
  Exit exit = Exit::kDone;
  const auto device = EdidDevice::Open(context, exit);
  if (device == nullptr) return exit;
  std::uint8_t group = 0;
  Answer answer = words.group ? device->Select(static_cast<std::uint8_t>(*words.group))
                              : device->Current(group);
  if (!answer.done()) return context.Fail(answer);
  exit = work(*device, words.group ? static_cast<std::uint8_t>(*words.group) : group);
  answer = device->PutBack();
  return answer.done() ? exit : context.Fail(answer);
}

// The EDID in a file: 128 bytes or 256, or the first 256 of more.
quivord::Result<std::vector<std::uint8_t>> LoadEdid(const std::string& path) {
  const auto wrong = [](const std::string& text) {
    return quivord::Error{quivord::Trouble::kWrongUse, text};
  };
  std::error_code failed;
  const std::uintmax_t size = std::filesystem::file_size(path, failed);
  if (failed) return wrong(quivord::CannotRead(path, failed.value()));
  if (size == 0 || size % edid::kBlock != 0 || size > 256 * edid::kBlock) {
    return wrong(path + ": an EDID has 128 bytes, or a multiple of that");
  }
  std::vector<std::uint8_t> bytes(std::min<std::size_t>(size, edid::kSize));
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file) return wrong(quivord::CannotRead(path, errno));
  return bytes;
}

void ShowFacts(const Context& context, std::span<const std::uint8_t> bytes,
               std::optional<int> group) {
  const auto facts = *video::ReadEdid(bytes);
  auto object = video::EdidJson(facts);
  if (group) object["group"] = *group;
  const std::string title = group ? "group " + std::to_string(*group) + "\n" : "";
  context.out.Show(title + Columns(video::EdidRows(facts)), object);
}

Exit Show(Context& context, const Words& words) {
  if (!words.file.empty()) {
    const auto bytes = LoadEdid(words.file);
    if (!bytes) return context.Fail(bytes.error());
    ShowFacts(context, bytes.value(), std::nullopt);
    return Exit::kDone;
  }
  return OnGroup(context, words, [&](EdidDevice& device, int group) {
    EdidImage image{};
    const Answer answer = device.Read(image);
    if (!answer.done()) return context.Fail(answer);
    if (!HasEdid(image)) return context.Fail(Exit::kRefused, kNothingShown);
    ShowFacts(context, image, group);
    return Exit::kDone;
  });
}

// What the first timing of an image says.
std::string FirstTiming(std::span<const std::uint8_t> image) {
  return video::TimingText(
      DecodeDescriptor(image.subspan(edid::kPreferred).first<kDescriptorSize>()));
}

Exit Send(const Context& context, EdidDevice& device, int group, const EdidImage& image,
          const VideoMode& mode) {
  EdidImage before{};
  Answer answer = device.Read(before);
  if (!answer.done()) return context.Fail(answer);
  if (!HasEdid(before))
    return context.Fail(Exit::kRefused, std::string("not sent: ") + kNothingShown);
  answer = device.Write(image, mode);
  if (!answer.done()) {
    const std::string shown = answer.data.empty() ? answer.text
                                                  : "sent, but after 5 seconds the input shows " +
                                                        FirstTiming(answer.data);
    return context.Fail(answer.exit, shown);
  }
  context.out.Show("group " + std::to_string(group) + " shows " + FirstTiming(answer.data) +
                       " (was " + FirstTiming(before) + ")",
                   {{"group", group},
                    {"width", mode.width},
                    {"height", mode.height},
                    {"rate_hz", mode.rate / 100.0}});
  return Exit::kDone;
}

EdidImage Model() {
  ModifyEDIDData_t request{};
  request.EDIDType = HDMI_4K1K;
  EdidImage image{};
  ModifyEDID_API.Modify_EDID(request, image.data());
  return image;
}

Exit Set(Context& context, const Words& words) {
  const auto mode = video::ParseMode(words.mode);
  if (!mode) return context.Fail(Exit::kWrongUse, video::kModeRule);
  const auto image = video::EdidForMode(Model(), *mode);
  if (!image) {
    return context.Fail(Exit::kWrongUse,
                        "no EDID can say " + video::ModeText(*mode) + " as the device reads it");
  }
  return OnGroup(context, words, [&](EdidDevice& device, int group) {
    return Send(context, device, group, *image, *mode);
  });
}

Exit Write(Context& context, const Words& words) {
  const auto bytes = LoadEdid(words.file);
  if (!bytes) return context.Fail(bytes.error());
  EdidImage image{};
  std::copy(bytes.value().begin(), bytes.value().end(), image.begin());
  const std::string fault = video::FaultText(*video::ReadEdid(bytes.value()));
  if (!fault.empty()) return context.Fail(Exit::kWrongUse, words.file + ": " + fault);
  const auto mode = PreferredMode(std::span(image).first<edid::kRead>());
  if (!mode) {
    return context.Fail(Exit::kRefused,
                        "not sent: its first timing is none that the device can show");
  }
  return OnGroup(context, words, [&](EdidDevice& device, int group) {
    return Send(context, device, group, image, *mode);
  });
}

Exit Save(Context& context, const Words& words) {
  return OnGroup(context, words, [&](EdidDevice& device, int group) {
    EdidImage image{};
    const Answer answer = device.Read(image);
    if (!answer.done()) return context.Fail(answer);
    if (!HasEdid(image)) return context.Fail(Exit::kRefused, kNothingShown);
    const Exit written = WriteFile(context, words.file, image);
    if (written != Exit::kDone) return written;
    context.out.Show("wrote " + words.file, {{"file", words.file}, {"group", group}});
    return Exit::kDone;
  });
}

using Work = Exit (*)(Context&, const Words&);

Run With(CLI::App& app, const std::shared_ptr<Words>& words, Work work) {
  DeclareGroup(app, *words);
  return [words, work](Context& context) { return work(context, *words); };
}

Run DeclareShow(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  auto* const file =
      app.add_option("FILE", words->file, "An EDID in a file, instead of an input's");
  DeclareGroup(app, *words)->excludes(file);
  return [words](Context& context) { return Show(context, *words); };
}

Run DeclareSet(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("--mode", words->mode, "The mode, such as 1920x1080@59.94")
      ->type_name("WxH@HZ")
      ->required();
  return With(app, words, Set);
}

Run DeclareWrite(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  app.add_option("FILE", words->file, "The EDID whose preferred mode is taken")->required();
  return With(app, words, Write);
}

Run DeclareSave(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  WritesFile(app.add_option("FILE", words->file, "Where the 256 bytes go"))->required();
  return With(app, words, Save);
}

constexpr Command kShow{"show", "Show an input's EDID, or one in a file, in words",
                        "  quivordctl edid show\n"
                        "  quivordctl edid show --group 1\n"
                        "  quivordctl edid show monitor.bin\n",
                        DeclareShow};
constexpr Command kSet{"set", "Let an input show an EDID for a mode",
                       "  quivordctl edid set --mode 1920x1080@59.94\n"
                       "  quivordctl edid set --mode 3840x1080 --group 1\n",
                       DeclareSet};
constexpr Command kWrite{
    "write", "Let an input show an EDID for the mode that a file prefers",
    "  quivordctl edid write monitor.bin\n"
    "The device takes the preferred mode alone and makes an EDID of its own.\n",
    DeclareWrite};
constexpr Command kSave{"save", "Save an input's EDID as a file",
                        "  quivordctl edid save now.bin && edid-decode now.bin\n", DeclareSave};

Run Declare(CLI::App& app) {
  static constexpr const Command* kCommands[] = {&kShow, &kSet, &kWrite, &kSave};
  return DeclareSubcommands(app, kCommands, &kShow);
}

}  // namespace

const Command kEdidCommand{
    "edid",
    "Show and change the EDID that a source is shown",
    "  quivordctl edid show\n"
    "  quivordctl edid set --mode 1920x1080@59.94\n",
    Declare,
};

}  // namespace ctl
