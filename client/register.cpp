#include "register.h"

#include "numbers.h"
#include "proto/registerspace_names.h"

namespace ctl {
namespace {

using ZEPH_MCUC::Meets;
using ZEPH_MCUC::Prospect;

bool ForTheSender(const Options& options) {
  return options.target.device == ZEPH_MCUC::JSHL_TypeSender;
}

Exit ExitFor(const quivord::Error& error) {
  return error.trouble == quivord::Trouble::kWrongUse ? Exit::kWrongUse : Exit::kNoAnswer;
}

// An ack in words. Behind a port the one for a command that isn't known says something else.
std::string Refusal(const Options& options, std::uint8_t ack) {
  const bool noLink = !ForTheSender(options) && ack == ZEPH_MCUC::JSHL_invalidCMD;
  const std::string text = noLink ? "the port has no link, or no such device answers there"
                                  : std::string(quivord::AckText(ack));
  return "refused: " + text + " (ack " + std::to_string(ack) + ")";
}

// An answer that has come, as far as its ack tells.
Answer Judge(const Options& options, const quivord::Result<quivord::Reply>& reply) {
  if (!reply) return {ExitFor(reply.error()), reply.error().text, {}};
  if (reply.value().ack != 0) return {Exit::kRefused, Refusal(options, reply.value().ack), {}};
  return {Exit::kDone, "", reply.value().data};
}

}  // namespace

Answer ReadRegister(const Options& options, quivord::Client& client, std::uint32_t address,
                    std::uint16_t length) {
  Answer answer =
      Judge(options, client.Call({.target = options.target, .address = address, .length = length},
                                 options.timeout));
  if (answer.exit != Exit::kDone || !answer.data.empty() || length == 0) return answer;
  if (!ForTheSender(options)) return {Exit::kRefused, "refused: the reply has no data", {}};
  const Prospect prospect = ZEPH_MCUC::ForeseeRead(address, length);
  if (prospect.meets == Meets::kNothing) return {Exit::kDone, "no data: " + prospect.text, {}};
  const bool foreseen = prospect.meets != Meets::kServed;
  return {Exit::kRefused, "refused: " + (foreseen ? prospect.text : "the reply has no data"), {}};
}

std::optional<std::string> WriteObstacle(const Options& options, std::uint32_t address,
                                         std::size_t length) {
  if (length == 0) return "nothing to write";
  if (!ForTheSender(options) || length > INT32_MAX) return std::nullopt;
  const Prospect prospect = ZEPH_MCUC::ForeseeWrite(address, static_cast<std::int32_t>(length));
  if (prospect.meets == Meets::kServed || prospect.meets == Meets::kNothing) return std::nullopt;
  return prospect.text;
}

Answer WriteRegister(const Options& options, quivord::Client& client, std::uint32_t address,
                     std::vector<std::uint8_t> data) {
  const auto length = static_cast<std::int32_t>(data.size());
  Answer answer = Judge(options, client.Call({.operation = quivord::Operation::kWrite,
                                              .target = options.target,
                                              .address = address,
                                              .data = std::move(data)},
                                             options.timeout));
  if (answer.exit != Exit::kDone || !ForTheSender(options)) return answer;
  const Prospect prospect = ZEPH_MCUC::ForeseeWrite(address, length);
  if (prospect.meets == Meets::kNothing) answer.text = prospect.text;
  return answer;
}

}  // namespace ctl
