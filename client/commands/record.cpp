// Keeps what goes over the bus, as the board's trace tells of it.
#include <cerrno>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <thread>

#include "board/board.h"
#include "board/settings.h"
#include "commands.h"
#include "counted.h"
#include "file_fault.h"
#include "number_check.h"
#include "record/recording.h"
#include "trace/busline.h"
#include "trace/follower.h"
#include "trace/interrupt.h"
#include "written_files.h"

namespace ctl {
namespace {

namespace record = quivord::record;
namespace trace = quivord::trace;
using Clock = std::chrono::steady_clock;

constexpr auto kLook = std::chrono::milliseconds(50);
constexpr double kMostSeconds = 366 * 24 * 3600.0;
constexpr auto kBusKind = static_cast<unsigned>(board::TraceKind::kBus);

struct Words {
  std::string file;
  double seconds = 0;  // 0: until Ctrl-C
  bool once = false;
};

// Why the board's trace has nothing to record; empty where it has. The daemon reads the
// configuration when it starts, so a change of it shows late.
std::string Obstacle(const std::filesystem::path& board) {
  std::ifstream file(board / "board.conf");
  if (!file) return quivord::NoBoardAt(board);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  board::Settings settings;
  std::string fault = board::ParseSettings(text, (board / "board.conf").string(), settings);
  if (!fault.empty() || (settings.trace_kinds >> kBusKind & 1U) != 0) return fault;
  return "the board's trace leaves the bus out; put 'trace = bus' into " +
         (board / "board.conf").string() + " and start its daemon again";
}

// Writes a recording frame by frame, so that what was kept is kept whatever happens.
class Keeper {
 public:
  Keeper(const std::string& file, std::uint8_t slot) {
    errno = 0;
    file_.open(file);
    file_ << record::HeadText(slot) << std::flush;
    if (!file_) fault_ = errno;
  }

  void Take(std::string_view line) {
    auto read = trace::ReadBusLine(line);
    if (!read.has_value()) return;
    if (read->frame.size() != read->length) {  // the disk was full, say
      ++broken_;
      return;
    }
    if (!begin_.has_value()) begin_ = read->at_us;
    file_ << record::FrameText({std::max<std::int64_t>(read->at_us - *begin_, 0),
                                read->towards_daemon, read->peer, std::move(read->frame)});
    peers_.insert(read->peer);
    ++frames_;
  }

  // False where the file can't be written; `fault` then says why, as an errno.
  bool Flush() {
    if (!file_) return false;
    errno = 0;
    if (!file_.flush()) fault_ = errno;
    return static_cast<bool>(file_);
  }
  int fault() const { return fault_; }
  std::size_t frames() const { return frames_; }
  std::size_t peers() const { return peers_.size(); }
  std::size_t broken() const { return broken_; }

 private:
  std::ofstream file_;
  int fault_ = 0;
  std::optional<std::int64_t> begin_;
  std::set<std::uint32_t> peers_;
  std::size_t frames_ = 0;
  std::size_t broken_ = 0;
};

std::string Summary(const Keeper& keeper, const Words& words) {
  using quivord::Counted;
  std::string text = "kept " + Counted(keeper.frames(), "frame") + " of " +
                     Counted(keeper.peers(), "peer") + " in " + words.file;
  if (keeper.broken() != 0) {
    text += "\nleft out " + std::to_string(keeper.broken()) + " that the trace has in part only";
  }
  if (keeper.frames() == 0) {
    text +=
        "\nnothing was on the bus, or the daemon was started before its trace was told to have it";
  }
  return text;
}

Exit Record(Context& context, const Words& words) {
  const std::string obstacle = Obstacle(context.options.board);
  if (!obstacle.empty()) return context.Fail(Exit::kRefused, obstacle);
  trace::WatchInterrupts();
  trace::Follower follower(context.options.board / "trace.log", words.once);
  Keeper keeper(words.file, context.options.slot);
  const auto begin = Clock::now();
  const std::chrono::duration<double> limit(words.seconds);
  for (bool last = false;; std::this_thread::sleep_for(kLook)) {
    last =
        words.once || trace::Interrupted() || (words.seconds > 0 && Clock::now() - begin >= limit);
    follower.Look([&](std::string_view line) { keeper.Take(line); });
    if (!keeper.Flush()) {
      return context.Fail(Exit::kWrongUse, quivord::CannotWrite(words.file, keeper.fault()));
    }
    if (last) break;
    context.out.Progress(std::to_string(keeper.frames()) + " frames; Ctrl-C ends it");
  }
  context.out.Show(Summary(keeper, words), {{"file", words.file},
                                            {"frames", keeper.frames()},
                                            {"peers", keeper.peers()},
                                            {"left_out", keeper.broken()}});
  return Exit::kDone;
}

Run Declare(CLI::App& app) {
  const auto words = std::make_shared<Words>();
  WritesFile(app.add_option("FILE", words->file,
                            "Where the recording goes; a file that is there is replaced"))
      ->required();
  app.add_option("--for", words->seconds, "End after so long (default: with Ctrl-C)")
      ->type_name("SECONDS")
      ->check(NumberFrom(0.001, kMostSeconds));
  app.add_flag("--once", words->once, "Keep what the trace has already, and end");
  return [words](Context& context) { return Record(context, *words); };
}

}  // namespace

const Command kRecordCommand{
    "record",
    "Keep what peers and daemon say to each other, until Ctrl-C",
    "  quivordctl record session.rec\n"
    "  quivordctl record session.rec --for 10\n"
    "  quivordctl record session.rec --once\n",
    Declare,
};

}  // namespace ctl
