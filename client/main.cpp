// quivordctl: asks the daemon of a board over its message bus, one command a call.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "command_tree.h"
#include "hidden.h"
#include "unknown_word.h"

namespace {

int Ctl(int argc, char** argv) {
  ctl::CommandTree tree;
  const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  if (const auto exit = ctl::RunHidden(tree, words)) return static_cast<int>(*exit);
  try {
    tree.app().parse(argc, argv);
    return tree.Run();
  } catch (const CLI::Success& shown) {
    return tree.app().exit(shown);  // help
  } catch (const CLI::ParseError& error) {
    const std::string unknown = ctl::UnknownWord(tree.app());
    ctl::Output(tree.words().json)
        .Fault((unknown.empty() ? error.what() : unknown) + "; see " + tree.Called() + " --help",
               static_cast<int>(ctl::Exit::kWrongUse));
    return static_cast<int>(ctl::Exit::kWrongUse);
  }
}

// The status that goes with `status` where not all that was printed has gone out.
int Ended(int status) {
  const std::string lost = ctl::LostOutput();
  if (lost.empty()) return status;
  const int failed = status != 0 ? status : static_cast<int>(ctl::Exit::kWrongUse);
  ctl::Output(false).Fault(lost, failed);
  return failed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Ended(Ctl(argc, argv));
  } catch (const std::exception& fault) {  // out of memory and the like
    std::fprintf(stderr, "quivordctl: %s\n", fault.what());
    return static_cast<int>(ctl::Exit::kNoAnswer);
  }
}
