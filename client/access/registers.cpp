#include "access/registers.h"

#include "proto/registerspace_names.h"

namespace quivord::access {
namespace {

using ZEPH_MCUC::Meets;
using ZEPH_MCUC::Prospect;

bool IsSender(const Target& target) { return target.device == ZEPH_MCUC::JSHL_TypeSender; }

Error Refused(const std::string& why) { return {Trouble::kRefused, "refused: " + why}; }

// An ack in words. Behind a port the one for a command that isn't known says something else.
Error Refusal(const Target& target, std::uint8_t ack) {
  const bool noLink = !IsSender(target) && ack == ZEPH_MCUC::JSHL_invalidCMD;
  const std::string text =
      noLink ? "the port has no link, or no such device answers there" : std::string(AckText(ack));
  return Refused(text + " (ack " + std::to_string(ack) + ")");
}

// An answer that has come, as far as its ack tells.
Result<Served> Judge(const Target& target, const Result<Reply>& reply) {
  if (!reply) return reply.error();
  if (reply.value().ack != 0) return Refusal(target, reply.value().ack);
  return Served{reply.value().data, ""};
}

}  // namespace

std::optional<std::string> WriteObstacle(const Target& target, std::uint32_t address,
                                         std::size_t length) {
  if (length == 0) return "nothing to write";
  if (!IsSender(target) || length > INT32_MAX) return std::nullopt;
  const Prospect prospect = ZEPH_MCUC::ForeseeWrite(address, static_cast<std::int32_t>(length));
  if (prospect.meets == Meets::kServed || prospect.meets == Meets::kNothing) return std::nullopt;
  return prospect.text;
}

Result<Served> Registers::Read(std::uint32_t address, std::uint16_t length) const {
  auto served = Judge(
      target_, client_->Call({.target = target_, .address = address, .length = length}, timeout_));
  if (!served || !served.value().data.empty() || length == 0) return served;
  if (!IsSender(target_)) return Refused("the reply has no data");
  const Prospect prospect = ZEPH_MCUC::ForeseeRead(address, length);
  if (prospect.meets == Meets::kNothing) return Served{{}, "no data: " + prospect.text};
  const bool foreseen = prospect.meets != Meets::kServed;
  return Refused(foreseen ? prospect.text : "the reply has no data");
}

Result<std::vector<std::uint8_t>> Registers::ReadWhole(std::uint32_t address,
                                                       std::size_t length) const {
  auto served = Read(address, static_cast<std::uint16_t>(length));
  if (!served) return served.error();
  if (served.value().data.size() == length) return std::move(served.value().data);
  return Refused("the device answers with too few bytes");
}

Result<Served> Registers::Write(std::uint32_t address, std::vector<std::uint8_t> data) const {
  if (const auto obstacle = WriteObstacle(target_, address, data.size())) {
    return Error{Trouble::kRefused, "not sent: " + *obstacle};
  }
  const auto length = static_cast<std::int32_t>(data.size());
  auto served = Judge(target_, client_->Call({.operation = Operation::kWrite,
                                              .target = target_,
                                              .address = address,
                                              .data = std::move(data)},
                                             timeout_));
  if (!served || !IsSender(target_)) return served;
  const Prospect prospect = ZEPH_MCUC::ForeseeWrite(address, length);
  if (prospect.meets == Meets::kNothing) served.value().remark = prospect.text;
  return served;
}

}  // namespace quivord::access
