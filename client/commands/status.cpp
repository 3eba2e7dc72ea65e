// The state of a board at a glance.
#include "commands.h"
#include "commands/feature_value.h"
#include "device.h"
#include "proto/calc_feature_words.h"
#include "table.h"

namespace ctl {
namespace {

using namespace ZEPH_MCUC;

// The ports whose bit is set in one of these registers.
std::vector<int> Ports(const FeaturePage& page, std::initializer_list<const char*> names) {
  std::vector<int> ports;
  for (const char* name : names) {
    const FeatureRegister& row = *FindFeature(name);
    const auto more = FeaturePorts(row, page.Bytes(row));
    ports.insert(ports.end(), more.begin(), more.end());
  }
  return ports;
}

bool Has(const std::vector<int>& ports, int port) {
  return std::find(ports.begin(), ports.end(), port) != ports.end();
}

// What is shown of a port.
struct Port {
  int number;
  bool copper;
  std::vector<int> fibers;
  bool redundant;
  std::string role;
  std::uint32_t width, height, x, y;
};

// What is shown of the board.
struct State {
  std::string time, role, output, bypass, fiber_link, fiber_copy, fiber_to_net;
  std::uint32_t width, height;
  bool restored;
  std::vector<Port> ports;
};

std::string Value(const FeaturePage& page, const char* name) {
  const FeatureRegister& row = *FindFeature(name);
  return FeatureText(row, page.Bytes(row));
}

std::uint32_t PortNumber(const FeaturePage& page, int port, const char* suffix) {
  return FeatureNumber(page.Bytes(*FindPortFeature(port, suffix)));
}

std::vector<Port> PortsOf(const FeaturePage& page) {
  const auto copper = Ports(page, {"link-0-3", "link-4-7", "link-8-15"});
  const auto redundant = Ports(page, {"redundancy-0-3", "redundancy-4-7", "redundancy-8-15"});
  const std::vector<int> fibers[] = {Ports(page, {"fiber-1-links"}),
                                     Ports(page, {"fiber-2-links"})};
  std::vector<Port> ports;
  for (int n = 0; n < static_cast<int>(kPortPlaces.size()); ++n) {
    const FeatureRegister& role = *FindPortFeature(n, "role");
    Port port{n,
              Has(copper, n),
              {},
              Has(redundant, n),
              FeatureText(role, page.Bytes(role)),
              PortNumber(page, n, "width"),
              PortNumber(page, n, "height"),
              PortNumber(page, n, "offset-x"),
              PortNumber(page, n, "offset-y")};
    for (int fiber = 0; fiber < 2; ++fiber) {
      if (Has(fibers[fiber], n)) port.fibers.push_back(fiber + 1);
    }
    ports.push_back(port);
  }
  return ports;
}

State StateOf(const FeaturePage& page) {
  return {.time = Value(page, "time"),
          .role = Value(page, "role"),
          .output = Value(page, "output"),
          .bypass = Value(page, "bypass"),
          .fiber_link = Value(page, "fiber-link"),
          .fiber_copy = Value(page, "fiber-copy"),
          .fiber_to_net = Value(page, "fiber-to-net"),
          .width = FeatureNumber(page.Bytes(*FindFeature("screen-width"))),
          .height = FeatureNumber(page.Bytes(*FindFeature("screen-height"))),
          .restored = page.Restored(),
          .ports = PortsOf(page)};
}

std::string Links(const Port& port) {
  std::string text = port.copper ? "copper" : "";
  for (const int fiber : port.fibers) {
    text += (text.empty() ? "fiber " : ", fiber ") + std::to_string(fiber);
  }
  return text.empty() ? "-" : text;
}

std::string Window(const Port& port) {
  return std::to_string(port.width) + " x " + std::to_string(port.height) + " at " +
         std::to_string(port.x) + "," + std::to_string(port.y);
}

std::string OutputText(const std::string& output) {
  return output == "open" ? output : output + "; 'quivordctl output open' opens it";
}

std::string BoardText(const Options& options, const State& state) {
  std::vector<std::vector<std::string>> rows = {
      {"board", options.board.string() + ", slot " + std::to_string(options.slot)},
      {"time", state.time},
      {"screen", std::to_string(state.width) + " x " + std::to_string(state.height) + " px"},
      {"role", state.role},
      {"bypass", state.bypass},
      {"output", OutputText(state.output)},
      {"fibers", "link " + state.fiber_link + ", copy " + state.fiber_copy + ", to network " +
                     state.fiber_to_net},
  };
  if (!state.restored) {
    rows.insert(rows.begin() + 1, {"fpga", "not loaded yet, or silent: what it holds reads as 0"});
  }
  return Columns(rows);
}

std::string PortsText(const State& state) {
  std::vector<std::vector<std::string>> rows = {
      {"port", "role", "link", "redundancy", "window in px"}};
  for (const Port& port : state.ports) {
    rows.push_back({std::to_string(port.number), port.role, Links(port),
                    port.redundant ? "set" : "-", Window(port)});
  }
  return Columns(rows);
}

nlohmann::json PortJson(const Port& port) {
  return {
      {"port", port.number},
      {"role", port.role},
      {"copper", port.copper},
      {"fibers", port.fibers},
      {"redundancy", port.redundant},
      {"window", {{"width", port.width}, {"height", port.height}, {"x", port.x}, {"y", port.y}}}};
}

nlohmann::json StateJson(const Options& options, const State& state) {
  nlohmann::json ports = nlohmann::json::array();
  for (const Port& port : state.ports) ports.push_back(PortJson(port));
  return {{"board", options.board.string()},
          {"slot", options.slot},
          {"fpga_restored", state.restored},
          {"time", state.time},
          {"screen", {{"width", state.width}, {"height", state.height}}},
          {"role", state.role},
          {"bypass", state.bypass},
          {"output", state.output},
          {"fibers",
           {{"link", state.fiber_link},
            {"copy", state.fiber_copy},
            {"to_network", state.fiber_to_net}}},
          {"ports", ports}};
}

Exit Status(const Context& context) {
  Exit exit = Exit::kDone;
  const auto device = Device::Open(context, exit);
  if (device == nullptr) return exit;
  FeaturePage page;
  const Answer answer = device->ReadPage(page);
  if (!answer.done()) return context.Fail(answer);
  const State state = StateOf(page);
  context.out.Show(BoardText(context.options, state) + "\n\n" + PortsText(state),
                   StateJson(context.options, state));
  return Exit::kDone;
}

Run Declare(CLI::App& /*app*/) { return Status; }

}  // namespace

const Command kStatusCommand{
    "status",
    "Show the state of the device: links, redundancy, fibers, roles, output",
    "  quivordctl status\n"
    "  quivordctl --json status\n",
    Declare,
};

}  // namespace ctl
