#include "brightness/file.h"
#include "commands/brightness_commands.h"
#include "json/load.h"

namespace ctl {
namespace {

using Library = quivord::access::BrightnessDevice;

quivord::Result<std::unique_ptr<quivord::Client>> ConnectForPlan(const Context& context) {
  return ConnectForSender(context, "a plan");
}

}  // namespace

Answer BrightnessDevice::Connect() {
  auto client = ConnectForPlan(context_);
  if (!client) return AnswerOf(client.error());
  client_ = std::move(client.value());
  return {};
}

Answer BrightnessDevice::WriteTable(const quivord::brightness::Bytes& table,
                                    const Progress& progress) {
  return AnswerOf(Library(RegistersOf(context_.options, *client_)).WriteTable(table, progress));
}

PlanRead ReadPlan(Context& context) {
  const auto client = ConnectForPlan(context);
  if (!client) return {AnswerOf(client.error()), {}, {}};
  Library device(RegistersOf(context.options, *client.value()));
  const auto table = device.ReadTable();
  if (!table) return {AnswerOf(table.error()), {}, {}};
  return {{}, quivord::brightness::PlanOf(table.value()), device.ReadClock()};
}

quivord::Result<quivord::brightness::Plan> LoadPlan(const std::filesystem::path& file) {
  return quivord::json::Load(file, "a plan", quivord::brightness::ParsePlan);
}

}  // namespace ctl
