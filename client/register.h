// Reading and writing one register, as commands do it: answers judged, refusals in words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "access/registers.h"
#include "command.h"

namespace ctl {

// What a read or a write came to.
struct Answer {
  Exit exit = Exit::kDone;
  std::string text;                // why not, or a remark; empty where there is nothing to say
  std::vector<std::uint8_t> data;  // of a read

  bool done() const { return exit == Exit::kDone; }
};

// The answer that says what went wrong, or that all went well.
Answer AnswerOf(const quivord::Error& error);
Answer AnswerOf(const quivord::Outcome& outcome);

// Why the options don't fit what is the sending card's alone; nothing where they do.
std::optional<std::string> SenderObstacle(const Options& options);

// Why they don't fit a read: many cards behind the ports would answer.
std::optional<std::string> ReadObstacle(const Options& options);

// Connects for what is the sending card's alone, `what`: "a wall".
quivord::Result<std::unique_ptr<quivord::Client>> ConnectForSender(const Context& context,
                                                                   const std::string& what);

// The registers that the options mean, over `client`.
quivord::access::Registers RegistersOf(const Options& options, quivord::Client& client);

// Reads `length` bytes at `address` of the target in the options. An answer without the bytes is a
// refusal, save where no bytes are to be had.
Answer ReadRegister(const Options& options, quivord::Client& client, std::uint32_t address,
                    std::uint16_t length);

// Why the sending card would refuse or lose a write of so many bytes: it would answer some of these
// like a success, so they are not sent. Nothing where the write may go out.
std::optional<std::string> WriteObstacle(const Options& options, std::uint32_t address,
                                         std::size_t length);

// Writes `data` at `address`, unless there is an obstacle.
Answer WriteRegister(const Options& options, quivord::Client& client, std::uint32_t address,
                     std::vector<std::uint8_t> data);

}  // namespace ctl
