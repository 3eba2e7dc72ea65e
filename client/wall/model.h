// A wall as a device holds it: what was read from its registers, understood.
//
// Pure: bytes in, values out, any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "proto/calc_feature.h"
#include "proto/calc_porttables.h"
#include "proto/calc_shortcut.h"
#include "proto/mosaic.h"

namespace quivord::wall {

inline constexpr std::size_t kPorts = ZEPH_MCUC::kTablePorts;
inline constexpr std::size_t kRecordSize = ZEPH_MCUC::shortcut::PortRecord(kPorts);

// The feature registers that are read: not a byte more, or the device would first take its image
// back from the FPGA, which the screen size of an advanced wall never reaches.
inline constexpr std::size_t kFeatures = ZEPH_MCUC::feature::kBusEnd;

// The registers that tell of the wall, as they are read.
struct DeviceBytes {
  std::array<std::uint8_t, ZEPH_MCUC::kPositionSize> positions = {};
  std::array<std::uint8_t, ZEPH_MCUC::kNumberSize> numbers = {};
  std::array<std::uint8_t, kFeatures> features = {};
  std::array<std::uint8_t, kRecordSize> record = {};
  std::array<std::uint8_t, 4> cardSize = {};  // width, height

  // Which register each part comes from.
  struct Part {
    std::uint32_t address;
    std::span<std::uint8_t> bytes;
  };
  std::array<Part, 5> Parts();

  bool operator==(const DeviceBytes&) const = default;
};

// How the wall came about.
enum class Kind {
  kNone,      // nobody has configured one yet; the device lays out one card by itself
  kSmart,     // from rows, columns, cables and cabinets a cable
  kAdvanced,  // each port by its own record
  kSoftware,  // by a table that a configuration tool has written
};

// The four numbers of a smart wall.
struct Smart {
  std::uint8_t rows = 0;  // of cabinets
  std::uint8_t columns = 0;
  std::uint16_t perCable = 0;  // cabinets that one cable may carry
  std::uint8_t mode = 0;       // index into `kConnectionModes`

  bool operator==(const Smart&) const = default;
};

// A port's record in an advanced wall.
struct PortRecord {
  std::uint8_t mode = 0;
  std::uint8_t rows = 0;  // of cabinets; rows and columns 0: the port isn't part of the wall
  std::uint8_t columns = 0;
  std::uint16_t x = 0;  // pixels
  std::uint16_t y = 0;

  bool empty() const { return rows == 0 && columns == 0; }
  bool operator==(const PortRecord&) const = default;
};
using PortRecords = std::array<PortRecord, kPorts>;

struct Size {
  std::uint32_t width = 0;  // pixels
  std::uint32_t height = 0;

  bool empty() const { return width == 0 || height == 0; }
  bool operator==(const Size&) const = default;
};

// The upper left corner of a cabinet on the screen.
struct Corner {
  std::uint32_t x;  // pixels
  std::uint32_t y;

  bool operator==(const Corner&) const = default;
};

struct Port {
  std::uint8_t number = 0;
  std::uint16_t cards = 0;  // that hang on it
  ZEPH_MCUC::PortWindow window;
  std::vector<Corner> cabinets;  // in the order of the cable; empty where no table holds them
  std::optional<std::uint8_t> repeats;  // the first port that shows the very same
  std::optional<std::uint8_t> mode;     // of its cabling, where a record tells
  bool backup = false;                  // the port's role

  bool main() const { return !repeats.has_value(); }
};

struct Wall {
  Kind kind = Kind::kNone;
  Size screen;
  Size card;
  Smart smart;          // as recorded; what is shown only where `kind` says so
  PortRecords records;  // likewise
  std::vector<Port> ports;

  // Cabinets that are shown, those of repeating ports not counted again.
  std::size_t cabinets() const;
  std::size_t mainPorts() const;
};

// Understands what was read. Ports of an advanced wall whose record is empty are left out.
Wall Understand(const DeviceBytes& bytes);

// The bytes of a record, as the device stores them. Bytes that no field takes stay as they were.
void PutSmart(const Smart& smart, std::span<std::uint8_t, kRecordSize> record);
void PutRecords(const PortRecords& records, std::span<std::uint8_t, kRecordSize> record);

}  // namespace quivord::wall
