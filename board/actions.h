// What the subcommands do to a board folder. Each throws a `Refusal` where it can't.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "status.h"

namespace board_tool {

// A refusal on its way to the end of the program.
struct Refusal : std::runtime_error {
  Refusal(Status refusal_status, const std::string& reason)
      : std::runtime_error(reason), status(refusal_status) {}
  Status status;
};

// What the command line said; each subcommand fills and reads its own part.
struct Words {
  std::string folder;  // --board, or the positional DIR
  std::vector<std::string> settings;
  int fpga = 1;
  std::string address, length = "1", name, number, state;
  std::vector<std::string> bytes;
  bool list = false;
  std::string file;
  bool once = false;
};

// The number in `text`; a refusal that calls it `what` where it is none from `least` to `most`.
std::uint32_t Number(const std::string& text, std::uint32_t least, std::uint32_t most,
                     const char* what);

// Makes the folder that was named, if one was, the one that the board's functions work on.
void ChooseBoard(const Words& words);

// The same for a board that there has to be; one is made by `create` and `run`, not by a slip.
void UseBoard(const Words& words);

// A subcommand each.
void Create(const Words& words);
void Peek(const Words& words);
void Poke(const Words& words);
void SetFault(const Words& words);
void SetLux(const Words& words);
void Link(const Words& words);
void Fiber(const Words& words);
void FiberStatus(const Words& words);
void PowerUpBoard(const Words& words);

}  // namespace board_tool
