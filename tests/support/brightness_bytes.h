// Brightness tables as bytes, put together by hand.
#pragma once

#include <cstdint>
#include <vector>

namespace brightness_bytes {

using Data = std::vector<std::uint8_t>;

struct Node {
  int hour, minute;
  bool sensor;
  int weekdays;
  int percent;
  int valid = 1;
};

struct Sensor {
  int position, port, board, address;
};

struct Lux {
  int lux, percent;
};

inline int Bcd(int value) { return value / 10 * 16 + value % 10; }

inline void Put16(Data& bytes, std::size_t at, std::size_t value) {
  bytes[at] = static_cast<std::uint8_t>(value);
  bytes[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

inline void Append(Data& bytes, std::initializer_list<int> values) {
  for (const int value : values) bytes.push_back(static_cast<std::uint8_t>(value));
}

// A file of the mix family: header, then nodes, sensors, lux map and fallback one after the other.
struct Mix {
  int mode = 0x9A;
  std::vector<Node> nodes = {};
  std::vector<Sensor> sensors = {};
  std::vector<Lux> map = {};
  int fallback = -1;  // percent; none below 0
  int interval_s = 1;
  int readings = 1;
  bool on = true, runs = true, gradual = true;

  Data Bytes() const {
    Data bytes(18);
    bytes[0] = static_cast<std::uint8_t>(mode);
    Put16(bytes, 5, bytes.size());
    Append(bytes, {static_cast<int>(nodes.size())});
    for (const Node& node : nodes) {
      Append(bytes, {Bcd(node.hour), Bcd(node.minute), 0, node.sensor ? 1 : 0, node.weekdays,
                     node.percent, node.valid, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    Put16(bytes, 3, bytes.size());
    Append(bytes, {static_cast<int>(sensors.size())});
    for (const Sensor& sensor : sensors) {
      Append(bytes, {sensor.position, sensor.port, sensor.board & 0xFF, sensor.board >> 8,
                     sensor.address, 0, 0, 0});
    }
    Put16(bytes, 7, bytes.size());
    Append(bytes, {static_cast<int>(map.size())});
    for (const Lux& item : map) Append(bytes, {item.lux & 0xFF, item.lux >> 8, item.percent});
    Put16(bytes, 10, bytes.size());
    Append(bytes, {0, fallback < 0 ? 0 : 1, fallback < 0 ? 0 : fallback});
    bytes[12] = on ? 1 : 0;
    Put16(bytes, 13, static_cast<std::size_t>(interval_s));
    bytes[15] = static_cast<std::uint8_t>(readings);
    bytes[16] = runs ? 1 : 0;
    bytes[17] = gradual ? 1 : 0;
    Put16(bytes, 1, bytes.size());
    return bytes;
  }
};

// A list of times: 512 bytes, all nodes on the ports of `mask`.
struct ListNode {
  int hour, minute, brightness;
  int mask = 1;
};

inline Data List(const std::vector<ListNode>& nodes, bool colours = false) {
  Data bytes(512);
  bytes[0] = 0x5B;
  bytes[1] = static_cast<std::uint8_t>(nodes.size());
  bytes[2] = colours ? 0x5B : 0;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    bytes[0x20 + i] = static_cast<std::uint8_t>(Bcd(nodes[i].hour));
    bytes[0x40 + i] = static_cast<std::uint8_t>(Bcd(nodes[i].minute));
    bytes[0x80 + i] = static_cast<std::uint8_t>(nodes[i].mask);
    bytes[0xA0 + i] = static_cast<std::uint8_t>(nodes[i].brightness);
    for (std::size_t colour = 0; colour < 4; ++colour) {
      bytes[0xC0 + 0x20 * colour + i] = static_cast<std::uint8_t>(colour + 1);
    }
  }
  return bytes;
}

}  // namespace brightness_bytes
