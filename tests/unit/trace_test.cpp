// The trace log: its files, their change by day and size, and that it never stops anybody.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <platform/system.h>
#include <unistd.h>

#include <cstdlib>
#include <regex>
#include <set>
#include <thread>

#include "board/files.h"
#include "mcuctrace.h"
#include "support/board_kit.h"
#include "support/device.h"

namespace {

using namespace ZEPH_MCUC;
namespace fs = std::filesystem;

constexpr std::size_t kHeader = 32;
constexpr time_t kNoon = 1'700'049'600;  // 15 November 2023, 12:00 UTC
constexpr time_t kDay = 86'400;

using device::SetClock;

// A run with `level` logged, on a board whose clock stands at noon.
void Begin(int level) {
  setenv("TZ", "UTC", 1);
  SetClock(kNoon);
  g_logLevel = level;
}

std::string Read(const fs::path& path) { return board::ReadWhole(path).value_or(""); }

// The log file of `date` (as in its name) with number `number`.
fs::path File(const std::string& date, int number) {
  return board_kit::Named() / "log" /
         (std::string(CTrace::instance()->get_process_name()) + "_info_" + date + "_" +
          std::to_string(number) + "." + std::to_string(getpid()) + ".log");
}

std::string Today() { return Read(File("11152023", 0)); }

// The lines behind a file's header, each from the level's name on.
std::vector<std::string> Lines(const std::string& content) {
  std::vector<std::string> lines;
  std::istringstream text(content.substr(std::min(kHeader, content.size())));
  for (std::string line; std::getline(text, line);)
    lines.push_back(line.substr(line.find("] ") + 2));
  return lines;
}

using Texts = std::vector<std::string>;

void Log(const char* text) { CTrace::instance()->trace_string(kLogError, text); }

TEST(Trace, FileIsHeaderAndLines) {
  Begin(0);
  MCUC_LOG(kLogError, "first " << 7);
  const int line = __LINE__ - 1;
  Log("second");
  const std::string content = Today();
  EXPECT_EQ(content.substr(0, kHeader),
            std::to_string(content.size()) + std::string(28, ' ') + "\n");
  const std::string front =
      R"(\[11/15/2023 12:00:\d\d\.\d{3} pid=)" + std::to_string(getpid()) + R"( uuid=0x0\] )";
  const std::regex form(front + "Error:trace_test.cpp : " + std::to_string(line) + " first 7\n" +
                        front + "Error:second\n");
  EXPECT_TRUE(std::regex_match(content.substr(kHeader), form)) << content;
}

TEST(Trace, FilterSaysWhichLevelsAreLogged) {
  Begin(kLogNothing);
  CTrace::instance();
  bool formed = false;
  MCUC_LOG(kLogError, (formed = true, "text"));
  EXPECT_FALSE(formed);
  EXPECT_EQ(Today(), "32" + std::string(29, ' ') + "\n") << "the file is there all the same";
  const std::vector<std::pair<int, std::string>> cases = {{0, "Error:0 Warning:0 "},
                                                          {2, "Error:2 Warning:2 Debug:2 "},
                                                          {3, "Error:3 Warning:3 Debug:3 Info:3 "},
                                                          {4, ""}};
  for (const auto& [filter, expected] : cases) {
    g_logLevel = filter;
    const std::size_t before = Lines(Today()).size();
    for (const unsigned long level : {0, 1, 2, 3, 5, 6}) {
      CTrace::instance()->trace_string(level, std::to_string(filter).c_str());
    }
    std::string logged;
    const auto lines = Lines(Today());
    for (std::size_t i = before; i < lines.size(); ++i) logged += lines[i] + " ";
    EXPECT_EQ(logged, expected);
  }
}

TEST(Trace, LineIsCutBehind960Characters) {
  Begin(0);
  for (const std::size_t length : {959U, 960U, 961U, 5000U}) {
    char buffer[1024];
    std::fill_n(buffer, sizeof buffer, '#');
    CTrace::CLogRecorder recorder(buffer, sizeof buffer);
    recorder << std::string(length - 1, 'x').c_str() << "y" << 12345;
    Log(recorder);
    EXPECT_EQ(std::string(buffer).size(), 960U);
    EXPECT_EQ(Lines(Today()).back(),
              "Error:" + (std::string(length - 1, 'x') + "y1").substr(0, 960));
  }
  EXPECT_EQ(Today().back(), '\n');
}

TEST(Trace, NewDayBeginsAFileBehindItsFirstLine) {
  Begin(0);
  Log("one");
  SetClock(kNoon + kDay);
  Log("two");
  Log("three");
  SetClock(kNoon + kDay + 3600);
  Log("four");
  EXPECT_EQ(Lines(Today()), (Texts{"Error:one", "Error:two"}));
  EXPECT_EQ(Lines(Read(File("11162023", 0))), (Texts{"Error:three", "Error:four"}));
}

// The writer goes by the header, so a file is full as soon as its header says so.
void Fill(const fs::path& path) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file << "20971520";
}

TEST(Trace, FullFileMakesRoomAndTenNumbersGoRound) {
  Begin(0);
  Log("begin");
  for (int i = 0; i < 10; ++i) {
    const fs::path full = File("11152023", i);
    Fill(full);
    Log("last line of a full file");
    EXPECT_GT(fs::file_size(full), 20971520U) << i;
    Log(("first of the one behind " + std::to_string(i)).c_str());
    EXPECT_EQ(Lines(Read(File("11152023", (i + 1) % 10))).back(),
              "Error:first of the one behind " + std::to_string(i));
  }
  std::set<fs::path> files;
  for (const auto& entry : fs::directory_iterator(board_kit::Named() / "log")) {
    files.insert(entry.path());
  }
  EXPECT_EQ(files.size(), 10U);
  EXPECT_LT(fs::file_size(File("11152023", 0)), 1000U);  // overwritten by the eleventh
}

TEST(Trace, FolderThatTakesNoFileLosesLinesOnly) {
  Begin(0);
  const fs::path folder = board_kit::Named() / "log";
  fs::remove_all(folder);
  std::ofstream(folder) << "in the way";
  Log("lost");
  EXPECT_EQ(Read(folder), "in the way");
  fs::remove(folder);
  SetClock(kNoon + kDay);
  Log("lost too");
  Log("kept");
  EXPECT_EQ(Lines(Read(File("11162023", 0))), (Texts{"Error:kept"}));
}

TEST(Trace, LinesOfManyThreadsStayWhole) {
  Begin(0);
  const std::string text(300, 'z');
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 50; ++n) Log(text.c_str());
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Lines(Today()), Texts(200, "Error:" + text));
}

TEST(Trace, SharedFileIsWrittenInTurnsAndBeginsAnewWhereItIsFull) {
  setenv("TZ", "UTC", 1);
  const std::string name = board_kit::Named() / "shared.log";
  CTraceFile first(name.c_str(), 220, 1, 1);
  EXPECT_EQ(Read(name), "32" + std::string(29, ' ') + "\n");
  CTraceFile second(name.c_str(), 220, 1, 1);
  first.write("Error", "one");
  second.write("Error", "two");  // behind what another wrote since this one was opened
  first.write("Error", "three");
  EXPECT_EQ(Lines(Read(name)), (Texts{"Error:one", "Error:two", "Error:three"}));
  second.write("Error", "four");
  first.write("Error", "five");
  EXPECT_EQ(Lines(Read(name)).front(), "Error:five");
}

// Puts `descriptor` in the place of standard output, as if the program had been started on it.
struct Output {
  explicit Output(int descriptor) : kept(dup(STDOUT_FILENO)) { dup2(descriptor, STDOUT_FILENO); }
  ~Output() { dup2(kept, STDOUT_FILENO); }
  const int kept;
};

// What stands in a pipe or terminal and can be read at once.
std::string Drain(int descriptor) {
  fcntl(descriptor, F_SETFL, O_NONBLOCK);
  std::string text;
  char bytes[4096];
  for (ssize_t n = 0; (n = read(descriptor, bytes, sizeof bytes)) > 0;) {
    text.append(bytes, static_cast<std::size_t>(n));
  }
  return text;
}

// Logs until standard output has long been full, and once more when it has been read.
void LogIntoFullOutput(int reader, int writer) {
  alarm(20);  // a thread that is stopped shows as a killed test
  Begin(0);
  const std::string text(900, 'x');
  const Output output(writer);
  for (int i = 0; i < 500; ++i) Log(text.c_str());
  EXPECT_EQ(Lines(Today()).size(), 500U);
  EXPECT_GT(Drain(reader).size(), 2000U);
  Log("room again");
  EXPECT_NE(Drain(reader).find("Error:room again"), std::string::npos);
}

TEST(Trace, FullPipeOnStandardOutputStopsNobody) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  LogIntoFullOutput(ends[0], ends[1]);
}

TEST(Trace, TerminalThatNobodyReadsStopsNobody) {
  const int reader = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_TRUE(reader >= 0 && grantpt(reader) == 0 && unlockpt(reader) == 0);
  LogIntoFullOutput(reader, open(ptsname(reader), O_RDWR | O_NOCTTY));
}

TEST(Trace, ClosedPipeOnStandardOutputStopsNobody) {
  Begin(0);
  signal(SIGPIPE, SIG_IGN);  // as `main` does
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Output output(ends[1]);
  Log("one");
  close(ends[0]);
  Log("two");
  EXPECT_EQ(Lines(Today()), (Texts{"Error:one", "Error:two"}));
}

}  // namespace
