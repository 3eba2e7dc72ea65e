// What an EDID says about a sink, before it becomes bytes: one description for all images.
#pragma once

#include <platform/edid.h>

#include <cstdint>
#include <span>
#include <string>

namespace edid {

// How the sink is reached.
enum class Link : std::uint8_t { kHdmi, kDvi, kDisplayPort, kVga };

// A detailed timing; each offset is a front porch. Both syncs are separate.
struct Timing {
  std::uint32_t clock;  // 10 kHz
  std::uint16_t width, h_blank, h_offset, h_sync;
  std::uint16_t height, v_blank, v_offset, v_sync;
  bool h_positive, v_positive;
};

// What the sink takes: Hz, kHz, MHz in steps of 10.
struct Range {
  std::uint8_t least_v, most_v;
  std::uint8_t least_h, most_h;
  std::uint16_t most_clock;
};

struct Description {
  std::string name;  // 13 characters at most
  Link link;
  std::uint8_t revision;  // of E-EDID 1
  InterfaceType_t interface;
  ColorSpace_t color_space;
  ColorDepth_t color_depth;
  Range range;
  std::span<const Timing> timings;     // the first is preferred; four of the rest fit the extension
  std::span<const std::uint8_t> vics;  // CEA-861 codes of the video data block
};

// The description that a template stands for; HDMI_2K1K for a value that is none.
Description DescriptionOf(EDIDTemplate_t which);

}  // namespace edid
