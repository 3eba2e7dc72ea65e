// What goes to the daemon and what comes back.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "stub/mcucmessagestruct_layout.h"

namespace quivord {

enum class Operation : std::uint8_t {
  kRead = ZEPH_MCUC::JSHL_PROTOREAD,
  kWrite = ZEPH_MCUC::JSHL_PROTOWRITE,
};

// Whose registers are meant: the sending card's own, or those of a device behind an output port.
struct Target {
  ZEPH_MCUC::JSHL_ProtoDeviceType_e device = ZEPH_MCUC::JSHL_TypeSender;
  std::uint8_t port = 0;  // 0 to 15, 0xFF for all; not read for the sending card
  std::uint16_t board =
      0;  // place on the port, 0 up, 0xFFFF for all; not read for the sending card
};

struct Request {
  Operation operation = Operation::kRead;
  Target target = {};
  std::uint32_t address = 0;
  std::uint16_t length = 0;             // of a read: bytes asked for, 0 to 65516
  std::vector<std::uint8_t> data = {};  // of a write: at most 65516 bytes
};

struct Reply {
  std::uint8_t ack = 0;  // a JSHL_Type_e; 0 says that nothing is wrong with the request's form
  std::vector<std::uint8_t> data;
};

// What the daemon sends unasked.
struct Report {
  std::uint32_t address = 0;
  std::vector<std::uint8_t> data;
};

// An ack in words, for people.
std::string_view AckText(std::uint8_t ack);

}  // namespace quivord
