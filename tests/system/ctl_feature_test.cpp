// The client's commands about the device itself against a running daemon: what is set shows, what
// can't be is refused before it is sent, and status and reports read as words.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <optional>

#include "board/files.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/eventually.h"
#include "support/on_daemon.h"

namespace {

using board_kit::Configure;
using board_kit::Named;
using board_kit::RunTool;
using support::Built;
using support::Ctl;
using support::CtlJson;
using support::CtlOut;
using support::Eventually;
using support::RunResult;
using namespace std::chrono_literals;

class CtlFeature : public support::OnDaemon {
 protected:
  void StartLoaded() {
    Start();
    Load();
  }
};

TEST_F(CtlFeature, SettersReadBackUntilTheValueShows) {
  StartLoaded();
  for (const auto& row : support::Rows(2, R"(
      output show                        | output is closed
      output open                        | output is open (was closed)
      output open                        | output is open
      feature get output                 | open
      feature set offset-x 0x64          | offset-x is 100 px (was 0 px)
      feature get offset-x               | 100
      feature set uart-overtime 60       | uart-overtime is 60 s (was 40 s)
      feature show                       | # leaves what only the daemon keeps as it is
      feature get uart-overtime          | 60
      feature set role slave             | role is slave (was master)
      feature get port-9-role            | backup
      feature set bypass on              | bypass is on (was off)
      feature set bypass-offset -50,20   | bypass-offset is -50,20 px (was 0,0 px)
      feature get bypass                 | service
      feature get screen-width           | 178
      feature set bypass off             | bypass is off (was service)
    )")) {
    const std::string out = CtlOut(support::WordsOf(row[0]));
    if (row[1][0] != '#') {
      EXPECT_EQ(out, row[1]) << row[0];
    }
  }
  EXPECT_EQ(CtlJson({"feature", "set", "high-speed", "on"}),
            (nlohmann::json{{"name", "high-speed"}, {"value", "on"}, {"was", "off"}}));
  EXPECT_EQ(CtlJson({"feature", "show"}).at("high-speed"), "on");
  EXPECT_EQ(CtlJson({"feature", "show", "bypass-offset"}).at("address"), 0x020001F0);
}

TEST_F(CtlFeature, ClockIsSetAndSeenToGoOn) {
  Configure("speed = 200\n");
  StartLoaded();
  EXPECT_EQ(CtlOut({"time", "set", "2031-12-31T09:00:00"}).substr(0, 18), "time is 2031-12-31");
  EXPECT_TRUE(Eventually(
      [] { return CtlJson({"time"}).at("time").get<std::string>() > "2031-12-31 09:00:30"; }));
  EXPECT_EQ(CtlJson({"time"}).at("weekday"), "Wednesday");
  CtlOut({"time", "set", "now"});
  EXPECT_LT(CtlJson({"time"}).at("time").get<std::string>(), "2031");
  EXPECT_EQ(Ctl({"feature", "set", "time", "2028-02-29", "12:00"}).status, 0);
}

TEST_F(CtlFeature, RefusesWhatCannotBe) {
  Configure("trace = bus\n");
  StartLoaded();
  const auto sent = [] {
    const auto lines = board_kit::TraceLines();
    return std::count_if(lines.begin(), lines.end(),
                         [](const std::string& line) { return line.starts_with("bus >"); });
  };
  const auto before = sent();
  for (const auto& row : support::Rows(3, R"(
      feature set offset-x 3841       | 2 | 0 to 3840 px
      feature set uart-overtime 1     | 2 | 2 to 119 s
      feature set bypass service      | 2 | shown only
      feature set bypass-offset 50    | 2 | x,y
      feature set input-mode 1020     | 2 | a byte
      feature set link-0-3 1          | 1 | hardware alone
      feature set hdr loaded          | 1 | daemon alone
      feature set role                | 2 | VALUE is required; see quivordctl feature set --help
      output ajar                     | 2 | see quivordctl output --help
      outptu open                     | 2 | no command is called 'outptu', but one is called 'output'; see
      output opne                     | 2 | 'open'; see quivordctl output --help
      output open wide                | 2 | not expected: wide
      status --jsno                   | 2 | no option is called '--jsno', but one is called '--json'; see
      anything                        | 2 | no command is called 'anything'; see quivordctl --help
      time set 2027-02-29T12:00:00    | 2 | no value of time
      time set 2026-07-03T12:00:00Z   | 2 | no value of time
      --device receiver status        | 2 | --device
      store dump                      | 1 | the daemon runs
      store put role 01               | 1 | the daemon runs
    )")) {
    const RunResult run = support::ExpectCtl(row);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(sent(), before);
  EXPECT_GT(before, 0);
  daemon_.reset();
  EXPECT_EQ(Ctl({"status"}).status, 3);
  EXPECT_EQ(Ctl({"output", "open"}).status, 3);
}

TEST_F(CtlFeature, SaysAfterFiveSecondsWhatItFound) {
  RunTool("create " + Named().string());
  ASSERT_EQ(Ctl({"store", "put", "3d", "00"}).status, 0);  // with 3D on, bypass bars low delay
  StartLoaded();
  CtlOut({"feature", "set", "bypass", "on"});
  const RunResult run = Ctl({"feature", "set", "low-delay", "1"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "quivordctl: low-delay was written, but after 5 seconds it reads 0\n");
}

TEST_F(CtlFeature, StatusSaysInWordsWhatIsLinked) {
  Configure("port.1.cards = 0\n");
  Start();
  EXPECT_EQ(CtlJson({"status"}).at("fpga_restored"), false);
  EXPECT_NE(CtlOut({"status"}).find("not loaded yet"), std::string::npos);
  Load();
  for (const char* change :
       {"link 3 up", "fiber 1 3 up", "fiber 2 12 up", "fiber-status 0xA0", "poke 0x9E 0x20"}) {
    ASSERT_EQ(RunTool(change).status, 0) << change;
  }
  CtlOut({"feature", "set", "port-5-offset-x", "128"});
  const std::string text = CtlOut({"status"});
  for (const char* line : {
           "\nscreen  128 x 128 px\n",
           "\noutput  closed; 'quivordctl output open' opens it\n",
           "\nfibers  link none, copy 0x00, to network 0x00 0x00\n",
           "\n0     master  copper           -           128 x 128 at 0,0\n",
           "\n1     master  -                -           128 x 128 at 0,0\n",
           "\n3     master  copper, fiber 1  -           128 x 128 at 0,0\n",
           "\n6     master  -                set         128 x 128 at 0,0\n",
           "\n12    master  fiber 2          -           128 x 128 at 0,0\n",
           "\n5     master  -                -           128 x 128 at 128,0\n",
       }) {
    EXPECT_NE(text.find(line), text.npos) << line << "is not in\n" << text;
  }
  const auto state = CtlJson({"status"});
  EXPECT_EQ(state.at("fpga_restored"), true);
  EXPECT_EQ(state.at("ports").at(3).at("fibers"), nlohmann::json{1});
  EXPECT_EQ(state.at("ports").at(3).at("copper"), true);
  EXPECT_EQ(state.at("ports").at(5).at("window").at("x"), 128);
}

// A running `quivordctl monitor`.
class Monitor {
 public:
  Monitor() : file_(Named() / "monitor") {
    const int out = open(file_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    process_.emplace(support::Start{.command = {Built("quivordctl"), "monitor"}, .out = out});
    close(out);
  }
  std::string Text() const { return board::ReadWhole(file_).value_or(""); }
  bool Has(const char* text) const { return Text().find(text) != std::string::npos; }
  bool Shows(const char* text) const {
    return Eventually([&] { return Has(text); });
  }
  std::optional<int> Interrupt() {
    process_->Signal(SIGINT);
    return process_->Wait(20s);
  }

 private:
  const std::filesystem::path file_;
  std::optional<support::Process> process_;
};

TEST_F(CtlFeature, MonitorPrintsReportsInWords) {
  Start();
  Monitor monitor;
  // Passed on at once to whoever is the service daemon by then.
  ASSERT_TRUE(Eventually([&] {
    CtlOut({"feature", "set", "service-note", "7"});
    return monitor.Has("0x0200004A 07  service-note 7\n");
  }));
  Load();
  for (const char* line : {"0x14000000 02  ready: the FPGA is loaded and has its parameters\n",
                           "0x0200001F 03  ports with a copper link, of 0 to 3: 0 1\n",
                           "0x02100006 80008000  size of the receiving cards: 128 x 128 px\n"}) {
    EXPECT_TRUE(monitor.Shows(line)) << line << "is not in\n" << monitor.Text();
  }
  RunTool("link 3 up");
  EXPECT_TRUE(monitor.Shows("0x0200001F 0b  ports with a copper link, of 0 to 3: 0 1 3\n"))
      << monitor.Text();
  EXPECT_EQ(monitor.Interrupt(), 0);
}

TEST_F(CtlFeature, StoreIsReadAndWrittenWhileNoDaemonRuns) {
  EXPECT_EQ(Ctl({"--board", Named() / "none", "store", "dump"}).status, 1);
  RunTool("create " + Named().string());
  for (const auto& row : support::Rows(3, R"(
      get card-size                        | 0 | 8000000080000000
      put card-size 40000000               | 0 | 4 bytes put at 0x00C20008 (card-size) of the live
      get card-size                        | 0 | 4000000080000000
      get card-size --store factory        | 0 | 8000000080000000
      put card-size -- 112233445566778899  | 2 | 9 bytes do not fit
      dump                     | 0 | 0x00C20008  8        card-size        4000000080000000    card size
      put 0xFFFFFF a5                      | 0 | 1 byte put at 0x00FFFFFF (unused)
      put 0xFFFFFF a5 5a                   | 2 | behind the store's 16 MiB
      get 0xFFFFFF 2                       | 2 | inside the 16 MiB
      get 0xFFFFFF 1                       | 0 | a5
      get 0xFFFFFF                         | 2 | LENGTH is needed
      get 0 0x1000000 --file %/copy        | 0 | 16777216 bytes
      put 0xFFFFFF ff                      | 0 | 1 byte
      put 0 --file %/copy                  | 0 | more than one region
      get 0xFFFFFF 1                       | 0 | a5
      put 1 --file %/copy                  | 2 | 16777216 bytes from 0x00000001 end behind
      put 1 --file %/none                  | 2 | can't be read
      dump --store tmp                     | 1 | brmpara_factory_tmp can't be read: No such
    )")) {
    support::ExpectCtl(row, {"store"});
  }
  EXPECT_EQ(CtlOut({"store", "dump", "0xC20006", "4"}), "0x00C20006  00 00 40 00  |..@.|");
  EXPECT_EQ(std::filesystem::file_size(Named() / "usr/zeph/etc/envcfg/brmpara"), 16U << 20);
  Start();  // no lock is left behind
}

}  // namespace
