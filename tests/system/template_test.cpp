// The daemon on the template platform, the state in which a port begins. It uses the real paths of
// a device, so it runs in a root of its own: a folder with the programs of this machine mounted
// into it, seen by that one process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

#include "support/board_kit.h"
#include "support/process.h"
#include "support/run.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

// Arguments: the root, the folder of the program, the program and its arguments.
constexpr const char* kEnter = R"(
set -e
root=$1 programs=$2
shift 2
cd "$root"
mkdir -p programs etc/init.d root tmp var/run
for folder in usr bin lib lib64 proc dev; do
  [ -e /$folder ] || continue
  if [ -L /$folder ]; then cp -P /$folder .; continue; fi
  mkdir $folder
  mount --rbind /$folder $folder
done
mount --bind "$programs" programs
exec chroot . /programs/"$@"
)";

bool NamespacesAreAllowed() {
  return support::Run({"/usr/bin/unshare", "--user", "--map-root-user", "--mount", "true"})
             .status == 0;
}

std::string TextOf(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// What the trace log holds.
std::string Log(const fs::path& root) {
  std::string text;
  std::error_code none;
  for (const auto& file : fs::directory_iterator(root / "log", none)) text += TextOf(file);
  return text;
}

bool Eventually(const std::function<bool()>& condition) {
  const auto deadline = steady_clock::now() + std::chrono::seconds(60);
  while (!condition()) {
    if (steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

TEST(Template, DaemonStartsLogsWhatIsMissingAndStays) {
  if (!NamespacesAreAllowed()) GTEST_SKIP() << "this machine allows no namespaces of one's own";
  const fs::path root = board_kit::Named() / "root";
  fs::create_directories(root);
  const auto said = board_kit::Named() / "said";
  std::FILE* const output = std::fopen(said.c_str(), "w");
  support::Process daemon(
      {{"/usr/bin/unshare", "--user", "--map-root-user", "--mount", "sh", "-c", kEnter, "sh", root,
        support::Built(""), "quivord-on-template", "-debug"},
       {},
       -1,
       fileno(output)});
  std::fclose(output);
  ASSERT_TRUE(Eventually([&] { return Log(root).find("Finish main init") != std::string::npos; }))
      << TextOf(said) << Log(root);
  EXPECT_EQ(TextOf(root / "var/run/quivord-on-template.pid"), std::to_string(daemon.pid()));
  for (const char* const component :
       {"the message bus", "the environment store", "the flash stores", "the FPGA bus"}) {
    EXPECT_NE(TextOf(said).find(std::string("platform: not here: ") + component), std::string::npos)
        << component;
  }
  for (const char* const line :
       {"=== udp_port_init === fail!!!!", "Error when openning env!", "brmpara file fail"}) {
    EXPECT_NE(Log(root).find(line), std::string::npos) << line;
  }
  // Told that the FPGA has loaded, it goes on without one: the loop runs, the process stays.
  std::ofstream(root / "etc/init.d/flag_fpgaload") << "";
  EXPECT_TRUE(Eventually([&] { return Log(root).find("load flag to OWD") != std::string::npos; }))
      << TextOf(said);
  EXPECT_EQ(daemon.Wait(std::chrono::seconds(2)), std::nullopt) << Log(root);
}

}  // namespace
