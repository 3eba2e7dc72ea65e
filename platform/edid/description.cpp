#include "edid/description.h"

#include <iterator>

namespace edid {
namespace {

constexpr Timing k1920x1080{14850, 1920, 280, 88, 44, 1080, 45, 4, 5, true, true};
constexpr Timing k1920x1200{15400, 1920, 160, 48, 32, 1200, 35, 3, 6, true, false};
constexpr Timing k2560x1600{26850, 2560, 160, 48, 32, 1600, 46, 3, 6, true, false};
constexpr Timing k3840x1080{26664, 3840, 160, 48, 32, 1080, 31, 3, 10, true, false};
constexpr Timing k3840x2160At30{29700, 3840, 560, 176, 88, 2160, 90, 8, 10, true, true};
constexpr Timing k3840x2160At60{59400, 3840, 560, 176, 88, 2160, 90, 8, 10, true, true};

constexpr Timing k2K1K[] = {k1920x1080, k1920x1200};
constexpr Timing k4K1K[] = {k3840x1080, k2560x1600, k1920x1200, k1920x1080};
constexpr Timing k4K2K[] = {k3840x2160At30, k3840x1080, k2560x1600, k1920x1200, k1920x1080};
constexpr Timing k4K2KFast[] = {k3840x2160At60, k3840x2160At30, k3840x1080, k2560x1600, k1920x1080};

constexpr std::uint8_t kHighDefinition[] = {16, 31, 34};     // 1080p at 60, 50, 30 Hz
constexpr std::uint8_t kWide[] = {16, 90, 31, 34};           // and 2560 x 1080
constexpr std::uint8_t kUltraHigh[] = {16, 97, 96, 95, 31};  // 2160p at 60, 50, 30 Hz

// A wall takes whatever its mode is set to, so the range promises all that a range can say.
constexpr Range kAnything{1, 255, 1, 255, 2550};

struct Template {
  EDIDTemplate_t which;
  Link link;
  const char* name;
  std::span<const Timing> timings;
  std::span<const std::uint8_t> vics;
};

constexpr Template kTemplates[] = {
    {HDMI_2K1K, Link::kHdmi, "ZEPH HDMI", k2K1K, kHighDefinition},
    {HDMI_4K1K, Link::kHdmi, "ZEPH HDMI1.4", k4K1K, kWide},
    {HDMI_4K2K, Link::kHdmi, "ZEPH HDMI2.0", k4K2K, kWide},
    {DVI_2K1K, Link::kDvi, "ZEPH DVI", k2K1K, {}},
    {DVI_4K1K, Link::kDvi, "ZEPH DUAL DVI", k4K1K, {}},
    {DP_2K1K, Link::kDisplayPort, "ZEPH DP1.1", k2K1K, {}},
    {DP_4K1K, Link::kDisplayPort, "ZEPH DP1.1", k4K1K, {}},
    {DP_4K2K, Link::kDisplayPort, "ZEPH DP1.2", k4K2KFast, {}},
    {VGA_2K1K, Link::kVga, "ZEPH VGA", k2K1K, {}},
    {HDMI_4K2K_VIC, Link::kHdmi, "ZEPH HDMI2.0", k4K2KFast, kUltraHigh},
    {HDMI_4K2K_WideRes, Link::kHdmi, "ZEPH HDMI2.0", k4K2KFast, kWide},
    {DP_4K2K_VIC, Link::kDisplayPort, "ZEPH DP1.2", k4K2KFast, kUltraHigh},
    {DP_4K2K_WideRes, Link::kDisplayPort, "ZEPH DP1.2", k4K2KFast, kWide},
    {HDMI2DP_4K2K, Link::kHdmi, "ZEPH HDMI2DP", k4K2K, kWide},
};

InterfaceType_t InterfaceOf(Link link) {
  switch (link) {
    case Link::kHdmi:
      return Typ_HDMI_a;
    case Link::kDvi:
      return Typ_DVI;
    case Link::kDisplayPort:
      return Typ_DP;
    case Link::kVga:
      break;
  }
  return Typ_Undef;
}

}  // namespace

Description DescriptionOf(EDIDTemplate_t which) {
  const auto index = static_cast<std::size_t>(which);
  const Template& chosen = kTemplates[index < std::size(kTemplates) ? index : 0];
  // HDMI asks for a base block of revision 3; analog needs nothing newer.
  const bool modern = chosen.link == Link::kDvi || chosen.link == Link::kDisplayPort;
  return {.name = chosen.name,
          .link = chosen.link,
          .revision = static_cast<std::uint8_t>(modern ? 4 : 3),
          .interface = InterfaceOf(chosen.link),
          .color_space = RGB444,
          .color_depth = Col_8Bit,
          .range = kAnything,
          .timings = chosen.timings,
          .vics = chosen.vics};
}

}  // namespace edid
