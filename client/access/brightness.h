// The brightness plan of a device, read and written, and the brightness of its cards.
#pragma once

#include <functional>
#include <optional>

#include "access/registers.h"
#include "brightness/plan.h"
#include "proto/calc_brightness_time.h"

namespace quivord::access {

// The sending card's brightness space, behind `registers`. Not for several threads at once.
class BrightnessDevice {
 public:
  explicit BrightnessDevice(const Registers& registers) : registers_(registers) {}

  // The whole table.
  Result<brightness::Bytes> ReadTable();

  // The device's clock; nothing where it can't be told.
  std::optional<ZEPH_MCUC::brightness::Moment> ReadClock();

  // Sends `table` so that it is stored and in force, in pieces of at most 512 bytes, and reads
  // until the device shows it, 5 seconds at most, and then whether it has stored it. `progress`
  // hears how many bytes have gone.
  using Progress = std::function<void(std::size_t sent)>;
  Outcome WriteTable(const brightness::Bytes& table, const Progress& progress);

 private:
  Outcome Write(std::size_t offset, brightness::Bytes data);
  Outcome WritePieces(const brightness::Bytes& table, const Progress& progress);
  Outcome Await(const brightness::Bytes& table);
  Outcome CheckStored(const brightness::Bytes& table);

  Registers registers_;
};

// The receiving cards that a brightness goes to where none is named: all of all ports.
Target AllCards();

}  // namespace quivord::access
