#include "register.h"

namespace ctl {
namespace {

using quivord::access::Registers;
using quivord::access::Served;

Answer AnswerOf(quivord::Result<Served> served) {
  if (!served) return ctl::AnswerOf(served.error());
  return {Exit::kDone, std::move(served.value().remark), std::move(served.value().data)};
}

}  // namespace

Answer AnswerOf(const quivord::Error& error) { return {ExitFor(error.trouble), error.text, {}}; }

Answer AnswerOf(const quivord::Outcome& outcome) {
  return outcome ? Answer{} : AnswerOf(outcome.error());
}

std::optional<std::string> SenderObstacle(const Options& options) {
  const bool sender = options.target.device == ZEPH_MCUC::JSHL_TypeSender;
  if (sender && !options.portGiven && !options.cardGiven) return std::nullopt;
  return "this is about the sending card; leave out --device, --port and --card";
}

std::optional<std::string> ReadObstacle(const Options& options) {
  const quivord::Target& target = options.target;
  const bool many = target.port == kAllPorts || target.board == kAllCards;
  if (target.device == ZEPH_MCUC::JSHL_TypeSender || !many) return std::nullopt;
  return "one card is asked at a time; name it by --port and --card";
}

quivord::Result<std::unique_ptr<quivord::Client>> ConnectForSender(const Context& context,
                                                                   const std::string& what) {
  if (!SenderObstacle(context.options)) return context.Connect();
  return quivord::Error{quivord::Trouble::kWrongUse,
                        what + " is the sending card's; leave out --device, --port and --card"};
}

Registers RegistersOf(const Options& options, quivord::Client& client) {
  return {client, options.target, options.timeout};
}

Answer ReadRegister(const Options& options, quivord::Client& client, std::uint32_t address,
                    std::uint16_t length) {
  return AnswerOf(RegistersOf(options, client).Read(address, length));
}

std::optional<std::string> WriteObstacle(const Options& options, std::uint32_t address,
                                         std::size_t length) {
  return quivord::access::WriteObstacle(options.target, address, length);
}

Answer WriteRegister(const Options& options, quivord::Client& client, std::uint32_t address,
                     std::vector<std::uint8_t> data) {
  return AnswerOf(RegistersOf(options, client).Write(address, std::move(data)));
}

}  // namespace ctl
