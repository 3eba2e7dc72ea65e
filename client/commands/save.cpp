// Parameters from memory to flash and from flash to memory.
#include "commands.h"
#include "device.h"

namespace ctl {
namespace {

constexpr std::uint32_t kSave = 0x01000001;
constexpr std::uint32_t kReload = 0x01000004;

// Asks for the work at `address` and waits until it is done.
Exit Do(const Context& context, std::uint32_t address, const char* done) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  Answer answer = device->Send(address, {1});
  if (answer.done()) answer = device->AwaitWork();
  if (!answer.done()) return context.Fail(answer);
  context.out.Show(done, {{"done", done}});
  return Exit::kDone;
}

// No register shows whether flash took it.
Exit Save(const Context& context) {
  return Do(context, kSave, "carried out; a write that the flash refuses stands in the log alone");
}

Exit Reload(const Context& context) {
  return Do(context, kReload, "reloaded what is stored; the output is closed");
}

}  // namespace

const Command kSaveCommand{
    "save",
    "Store what only memory holds: position and number tables, and all else with them",
    "  quivordctl save\n",
    [](CLI::App& /*app*/) -> Run { return Save; },
};

const Command kReloadCommand{
    "reload",
    "Take the stored parameters again, as a start does, and close the output",
    "  quivordctl reload\n"
    "  quivordctl reload && quivordctl output open\n",
    [](CLI::App& /*app*/) -> Run { return Reload; },
};

}  // namespace ctl
