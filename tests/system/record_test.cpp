// A session kept from the bus, and played to another board.
#include <fstream>

#include "board/files.h"
#include "record/recording.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/on_daemon.h"

namespace {

using quivord::record::Recording;
using support::Ctl;

std::string Example() {
  return board::ReadWhole(support::Source("examples/demo.rec")).value_or("");
}

Recording Understood(const std::string& text) {
  Recording recording;
  EXPECT_EQ(quivord::record::ReadRecording(text, "recording", recording), "");
  return recording;
}

// Seconds for the device to show what the recording has: all of them go by where it never does.
constexpr char kPatience[] = "12";

// What the peers of a recording sent, in order, and who.
std::vector<std::pair<std::uint32_t, quivord::record::Bytes>> Sent(const Recording& recording) {
  std::vector<std::pair<std::uint32_t, quivord::record::Bytes>> sent;
  for (const auto& frame : recording.frames) {
    if (frame.towards_daemon) sent.emplace_back(frame.peer, frame.bytes);
  }
  return sent;
}

class Replay : public support::OnDaemon {
 protected:
  void SetUp() override {
    board_kit::Configure("port.0.cards = 8\nport.1.cards = 8\ntrace = bus\n");
    Start();
    Load();
  }
};

TEST_F(Replay, TheDemoIsTheSameOnAFreshBoard) {
  const std::string kept = File("kept.rec");
  const auto before = Ctl({"record", kept, "--once"});
  ASSERT_EQ(before.status, 0) << before.err;
  const std::size_t setup = Sent(Understood(board::ReadWhole(kept).value())).size();

  // In the recorded rhythm no peer has to ask more often than it did.
  const auto run =
      Ctl({"replay", support::Source("examples/demo.rec"), "--compare", "--patience", "60"});
  EXPECT_EQ(run.status, 0) << run.out << run.err;
  EXPECT_TRUE(run.out.ends_with("the same\n")) << run.out;

  // The board saw the same peers send the same frames in the same order, but for reads that were
  // asked again.
  EXPECT_EQ(Ctl({"record", kept, "--once"}).status, 0);
  auto seen = Sent(Understood(board::ReadWhole(kept).value()));
  seen.erase(seen.begin(), seen.begin() + static_cast<std::ptrdiff_t>(setup));
  std::size_t at = 0;
  for (const auto& sent : Sent(Understood(Example()))) {
    while (at < seen.size() && seen[at] != sent) ++at;
    ASSERT_LT(at++, seen.size()) << "a frame is missing, or came too early";
  }
}

TEST_F(Replay, AChangedByteIsReported) {
  std::string text = Example();
  const std::string open = "de0100f001005a";  // the last answer about the output
  const auto at = text.rfind(open);
  ASSERT_NE(at, text.npos);
  text.replace(at, open.size(), "de0100f001005b");
  board_kit::Put("changed.rec", text);
  const std::string file = File("changed.rec");
  const auto run = Ctl({"--json", "replay", file, "--compare", "--patience", kPatience});
  EXPECT_EQ(run.status, 1) << run.out << run.err;
  const auto told = nlohmann::json::parse(run.out, nullptr, false);
  EXPECT_EQ(told["same"], false);
  std::vector<nlohmann::json> different;
  for (const auto& finding : told["findings"]) {
    if (finding["allowed"] == false) different.push_back(finding);
  }
  ASSERT_EQ(different.size(), 1U) << run.out;
  EXPECT_EQ(different[0]["kind"], "answer");
  EXPECT_EQ(different[0]["about"], "reads output, 1 byte");
  EXPECT_EQ(
      different[0]["places"][0],
      (nlohmann::json{
          {"where", "0xF00001DE output"}, {"recorded", "0x5b"}, {"now", "open"}, {"allowed", ""}}));
}

TEST(Record, SaysWhatIsMissing) {
  board_kit::Put("demo.rec", Example());
  board_kit::Put("text.rec", "no recording\n");
  // The command, how it ends, what it says, and what the board traces.
  for (const auto& row : support::Rows(4, R"(
      record x.rec --once             | 1 | leaves the bus out; put 'trace = bus' | fpga
      record x.rec --once             | 1 | board.conf:1:                         | buses
      record /no/such/folder/x --once | 2 | can't be written: No such file        | bus
      replay no.rec                   | 2 | no.rec can't be read: No such file    | bus
      replay %/text.rec               | 2 | this is no recording                  | bus
      replay %/demo.rec               | 3 | no daemon                             | bus
      replay %/demo.rec --speed -1    | 2 | --speed                               | bus
    )")) {
    board_kit::Configure("trace = " + row[3] + "\n");
    support::ExpectCtl(row);
  }
}

}  // namespace
