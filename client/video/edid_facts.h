// What an EDID says (VESA E-EDID with CEA-861 extension), read out of its bytes, for people and for
// programs. Pure; no byte that it may find does harm.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "process/calc_edid.h"
#include "process/calc_edid_timing.h"

namespace quivord::video {

struct RateRange {
  unsigned least_v_Hz, most_v_Hz;
  unsigned least_h_kHz, most_h_kHz;
  unsigned most_clock_MHz;
};

struct EdidFacts {
  bool header = false;
  std::vector<bool> sums;    // a block each: whether its closing byte is right
  std::string manufacturer;  // three letters
  unsigned product = 0;
  uint32_t serial = 0;
  unsigned week = 0;
  unsigned year = 0;
  std::string version;
  std::string input;  // "digital", "analog" and what is known of it
  std::string name;   // empty where none is given
  std::optional<RateRange> range;
  std::vector<ZEPH_MCUC::DetailedTiming> timings;  // the first is preferred
  std::vector<ZEPH_MCUC::VideoMode> standard;      // rates in 0.01 Hz
  std::vector<unsigned> vics;                      // codes of the video data block
  bool extension = false;
  bool basic_audio = false;
  bool hdmi = false;
};

// Reads 128 or 256 bytes; nothing for any other number.
std::optional<EdidFacts> ReadEdid(std::span<const uint8_t> bytes);

// The first thing that is wrong with header or sums; empty where nothing is.
std::string FaultText(const EdidFacts& facts);

// A row a fact: what, and in words which; the same for programs.
std::vector<std::vector<std::string>> EdidRows(const EdidFacts& facts);
nlohmann::ordered_json EdidJson(const EdidFacts& facts);

}  // namespace quivord::video
