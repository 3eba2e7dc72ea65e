// The compiled half of the Python package: thin. Each call lets other Python threads run while it
// waits; what goes wrong is a `Fault` of two words, which the package turns into its exceptions.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "peer.h"
#include "proto/calc_brightness.h"
#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"
#include "proto/mosaic_walk.h"
#include "quivord/interface_version.h"

namespace py = pybind11;

namespace {

using namespace quivord::python;
using quivord::Trouble;
using Unlocked = py::call_guard<py::gil_scoped_release>;

constexpr auto kLook = std::chrono::milliseconds(100);

const char* TroubleWord(Trouble trouble) {
  switch (trouble) {
    case Trouble::kRefused:
      return "refused";
    case Trouble::kWrongUse:
      return "wrong-use";
    case Trouble::kNoDaemon:
      return "no-daemon";
    case Trouble::kTimeout:
      return "timeout";
    case Trouble::kDisconnected:
      return "disconnected";
    default:
      return "garbled";
  }
}

py::bytes BytesOf(const Bytes& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

py::bytes Read(const Peer& peer, const Whose& whose, std::int64_t address, std::int64_t length,
               double seconds) {
  Bytes data;
  {
    const py::gil_scoped_release unlocked;
    data = peer.Read(whose, address, length, seconds);
  }
  return BytesOf(data);
}

void Write(const Peer& peer, const Whose& whose, std::int64_t address, const py::bytes& data,
           double seconds) {
  const std::string_view bytes = data;
  Bytes copy(bytes.begin(), bytes.end());
  const py::gil_scoped_release unlocked;
  peer.Write(whose, address, std::move(copy), seconds);
}

// Waits in short looks, so that Ctrl-C ends it.
std::optional<quivord::Report> Await(Peer& peer, std::optional<double> seconds) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::duration<double>(seconds.value_or(0));
  while (true) {
    const std::chrono::duration<double> left = end - Clock::now();
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(left);
    std::optional<quivord::Report> report;
    {
      const py::gil_scoped_release unlocked;
      report =
          peer.inbox().Take(seconds.has_value() ? std::clamp(wait, kLook.zero(), kLook) : kLook);
    }
    if (report.has_value()) return report;
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    if (seconds.has_value() && Clock::now() >= end) return std::nullopt;
  }
}

py::object NextReport(Peer& peer, std::optional<double> seconds) {
  const auto report = Await(peer, seconds);
  if (!report.has_value()) return py::none();
  return py::make_tuple(report->address, BytesOf(report->data),
                        ZEPH_MCUC::ReportText(report->address, report->data));
}

py::tuple Cablings() {
  py::list names;
  for (const auto& mode : ZEPH_MCUC::kConnectionModes) names.append(mode.name);
  return py::tuple(names);
}

void BindPeer(py::module_& module) {
  py::class_<Whose>(module, "Whose")
      .def(py::init<std::string, std::optional<int>, std::optional<int>>());
  py::class_<Peer>(module, "Peer")
      .def(py::init<std::string, std::string>(), Unlocked())
      .def_property_readonly("board", [](const Peer& peer) { return peer.place().board.string(); })
      .def("read", Read)
      .def("write", Write)
      .def("show_wall", &Peer::ShowWall, Unlocked())
      .def("configure_wall", &Peer::ConfigureWall, Unlocked())
      .def("show_plan", &Peer::ShowPlan, Unlocked())
      .def("send_plan", &Peer::SendPlan, Unlocked())
      .def("next_report", NextReport);
}

}  // namespace

PYBIND11_MODULE(_native, module) {
  // Kept for good: errors may come as long as the interpreter runs.
  static const py::handle fault_type = py::exception<Fault>(module, "Fault").release();
  py::register_exception_translator([](std::exception_ptr pointer) {
    try {
      if (pointer) std::rethrow_exception(pointer);
    } catch (const Fault& fault) {
      const auto words = py::make_tuple(TroubleWord(fault.error().trouble), fault.error().text);
      PyErr_SetObject(fault_type.ptr(), words.ptr());
    }
  });
  module.attr("INTERFACE_VERSION") = quivord::kInterfaceVersion;
  module.attr("CABLINGS") = Cablings();
  module.attr("CARD_BRIGHTNESS") = ZEPH_MCUC::brightness::kCardBrightness;
  module.attr("CLOCK") = ZEPH_MCUC::feature::kBase + ZEPH_MCUC::feature::kClock;
  module.def("brightness_of", BrightnessOf);
  BindPeer(module);
}
