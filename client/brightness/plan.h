// A brightness plan, as a file says it and as a device holds it. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "proto/calc_brightness_table.h"

namespace quivord::brightness {

namespace table = ZEPH_MCUC::brightness;

using Bytes = std::vector<std::uint8_t>;

enum class Kind {
  kNone,
  kList,      // a list of times
  kSensor,    // the light sensor
  kMix,       // times and sensor
  kSerial,    // an outside device; the cards are told of silence
  kHardware,  // an outside device; the mix takes over in silence
};

// By the word that a file has for it; by the mode byte that a table begins with.
struct KindRow {
  Kind kind;
  const char* word;
  std::uint8_t mode;
  const char* text;  // what it is, for people
};
const KindRow& RowOf(Kind kind);
const KindRow& RowOfMode(std::uint8_t mode);
const KindRow* RowOfWord(const std::string& word);

constexpr bool IsMixFamily(Kind kind) { return kind >= Kind::kMix; }

// Bytes of a table that no field of a plan says.
struct Extra {
  std::uint16_t at = 0;
  Bytes bytes;

  bool operator==(const Extra&) const = default;
};

struct Plan {
  Kind kind = Kind::kNone;

  // Of a list: each node's ports, brightness 0 to 255 and colours.
  std::vector<table::ListNode> list;
  bool colours = false;

  // Of sensor and mix.
  std::vector<table::Sensor> sensors;
  table::LuxRange range;  // sensor alone

  // Of the mix family. The header's positions and length are where a table has them; `Settle` fills
  // them in for a new one.
  table::MixHeader header;
  std::vector<table::MixNode> nodes;
  std::vector<table::LuxItem> map;
  table::Fallback fallback;

  std::vector<Extra> extra;

  bool operator==(const Plan&) const = default;
};

// Puts header, nodes, sensors, lux map and fallback one behind the other.
void Settle(Plan& plan);

// The table of `plan`: 512 bytes for list and sensor, the header's file length for the mix family.
// What doesn't fit into it is left out.
Bytes TableOf(const Plan& plan);

// The plan of a table; `TableOf` gives the table back. Sub-tables that a daemon would find absent
// are empty.
Plan PlanOf(std::span<const std::uint8_t> table);

// The stretches of `bytes`, of the length of the plan's table or more, that `plan` doesn't say.
std::vector<Extra> ExtraOf(const Plan& plan, std::span<const std::uint8_t> bytes);

// Bytes of the table that begins with `head`, at least a header: how much there is to read.
std::size_t TableSize(std::span<const std::uint8_t> head);

}  // namespace quivord::brightness
