// A plan's table as records. Positions and counts are compared with the area before they are used:
// a sub-table that doesn't fit is not there. Pure, given a pure reader.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "proto/calc_brightness.h"

namespace ZEPH_MCUC::brightness {

// --- The list of times, in the image -------------------------------------------------------------

struct ListNode {
  uint8_t hour = 0;  // BCD
  uint8_t minute = 0;
  uint8_t ports = 0;       // bit n drives port n
  uint8_t brightness = 0;  // 0 to 255, as the colours
  uint8_t red = 0;
  uint8_t green = 0;
  uint8_t blue = 0;
  uint8_t virtualRed = 0;

  bool operator==(const ListNode&) const = default;
};

// Nodes in use, 1 to 32.
uint8_t ListCount(const Image& image);
// Whether the nodes' colours are sent too.
bool ListHasColours(const Image& image);
// Node `index`; one without ports where there is none.
ListNode ListNodeAt(const Image& image, std::size_t index);

// --- The sensor mode, in the image ---------------------------------------------------------------

struct Sensor {
  uint8_t position = 0;  // 0 is on a card behind a port
  uint8_t port = 0;
  uint16_t board = 0;
  uint8_t address = 0;

  bool operator==(const Sensor&) const = default;
};

struct LuxRange {
  uint16_t mostLux = 0;
  uint16_t leastLux = 0;
  uint8_t atMost = 0;  // brightness, 0 to 255
  uint8_t atLeast = 0;
  uint8_t steps = 0;

  bool operator==(const LuxRange&) const = default;
};

LuxRange LuxRangeOf(const Image& image);
// Nothing where the count is above 8.
std::optional<std::vector<Sensor>> SensorsOf(const Image& image);

// --- The mix -------------------------------------------------------------------------------------

struct MixHeader {
  uint16_t fileLength = 0;
  uint16_t sensors = 0;  // positions of the sub-tables
  uint16_t nodes = 0;
  uint16_t luxMap = 0;
  uint16_t fallback = 0;
  bool on = false;
  uint16_t interval_s = 0;  // between two readings
  uint8_t readings = 0;     // for one average
  bool runs = false;
  bool gradual = false;

  bool operator==(const MixHeader&) const = default;
};

MixHeader HeaderOf(const Image& image);

struct MixNode {
  uint8_t hour = 0;  // BCD
  uint8_t minute = 0;
  bool sensor = false;  // hands over to the sensor; else `percent` is the brightness
  uint8_t weekdays = 0;
  uint8_t percent = 0;
  uint8_t valid = 0;  // 1 in use; any value but 0 counts in the search

  bool operator==(const MixNode&) const = default;
};

struct LuxItem {
  uint16_t lux = 0;
  uint8_t percent = 0;

  bool operator==(const LuxItem&) const = default;
};

// What is shown when all sensors fail.
struct Fallback {
  bool enabled = false;
  uint8_t percent = 0;

  bool operator==(const Fallback&) const = default;
};

// Reads bytes of the area from `offset` on; false where they can't be had. Asked only for bytes
// inside the area.
using AreaReader = std::function<bool(uint32_t offset, std::span<uint8_t> into)>;

enum class TableState : uint8_t {
  kThere,
  kUnread,   // the bytes can't be had
  kOutside,  // reaches past the area
  kCount,    // more records than may be, or none where one is needed
};

// For a log or a person.
const char* TextOf(TableState state);

// A sub-table, empty unless it is there.
template <class Table>
struct Found {
  TableState state = TableState::kThere;
  Table table{};
};

// The nodes at position `base`; a count of 0 is read as 1.
Found<std::vector<MixNode>> ReadNodes(const AreaReader& read, uint16_t base);
Found<MixNode> ReadNode(const AreaReader& read, uint16_t base, uint32_t index);
// At most 8 sensors, none included.
Found<std::vector<Sensor>> ReadSensors(const AreaReader& read, uint16_t base);
// 1 to 32 items.
Found<std::vector<LuxItem>> ReadLuxMap(const AreaReader& read, uint16_t base);
Found<Fallback> ReadFallback(const AreaReader& read, uint16_t base);

}  // namespace ZEPH_MCUC::brightness
