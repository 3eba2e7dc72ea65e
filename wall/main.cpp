// quivord-wall: shows in a browser what a board holds, while the daemon works on it.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "board/folder.h"
#include "live/server.h"

namespace {

enum Status : int { kDone = 0, kFailed = 1, kWrongUse = 2 };

constexpr int kUsualPort = 8181;

struct Words {
  std::string board;
  std::string address = "127.0.0.1";
  int port = kUsualPort;
  bool control = false;
};

void Declare(CLI::App& app, Words& words) {
  app.add_option("--board", words.board, "Board folder; else QUIVORD_BOARD, else the default one")
      ->type_name("DIR");
  app.add_option("--port", words.port, "Port; 0 takes any that is free")
      ->type_name("N")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  app.add_option("--address", words.address,
                 "Address to listen on; any other opens it to the network")
      ->type_name("ADDRESS")
      ->capture_default_str();
  app.add_flag("--control", words.control,
               "Let the page pull links, set the light, jump in time and inject faults");
  app.footer(
      "  quivord-wall --board /tmp/wall\n"
      "  quivord-wall --board /tmp/wall --port 0 --control\n"
      "Exit status: 0 ended by a signal, 1 the port can't be had, 2 wrong use.");
}

// SIGINT and SIGTERM wait for whoever asks for them.
sigset_t BlockEndSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

int Run(const Words& words) {
  if (!words.board.empty()) setenv("QUIVORD_BOARD", words.board.c_str(), 1);
  const auto folder = board::ChooseFolder();
  const sigset_t signals = BlockEndSignals();
  quivord::live::Server server({folder, words.address, words.port, words.control});
  if (!server.Bind()) {
    std::fprintf(
        stderr, "quivord-wall: can't listen on %s, port %d; %s\n", words.address.c_str(),
        words.port,
        words.port == 0 ? "--address has to be one of this machine" : "--port 0 takes a free one");
    return kFailed;
  }
  std::error_code ignored;
  if (!std::filesystem::is_directory(folder, ignored)) {
    std::fprintf(stderr, "quivord-wall: no board at %s yet; the page waits for it\n",
                 folder.c_str());
  }
  std::printf("http://%s:%d/ shows %s\n", words.address.c_str(), server.port(), folder.c_str());
  std::fflush(stdout);
  std::thread serving([&server] { server.Serve(); });
  int received = 0;
  sigwait(&signals, &received);
  server.Stop();
  serving.join();
  return kDone;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Shows the wall of a simulated board in a browser.", "quivord-wall");
  app.set_version_flag("--version", "quivord-wall " QUIVORD_VERSION, "Print the version");
  Words words;
  Declare(app, words);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "quivord-wall: %s; see 'quivord-wall --help'\n", error.what());
    return kWrongUse;
  }
  return Run(words);
}
