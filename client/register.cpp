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

quivord::Result<std::unique_ptr<quivord::Client>> ConnectForSender(const Context& context,
                                                                   const std::string& what) {
  if (context.options.target.device == ZEPH_MCUC::JSHL_TypeSender) return context.Connect();
  return quivord::Error{quivord::Trouble::kWrongUse,
                        what + " is the sending card's; leave out --device"};
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
