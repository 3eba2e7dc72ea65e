// The wall of a device, read, asked for and waited for.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "access/registers.h"
#include "wall/model.h"

namespace quivord::access {

// What the sending card behind `registers` holds of the wall. Large: lives on the heap. Not for
// several threads at once.
class WallDevice {
 public:
  enum class Scope { kRecord, kAll };  // the record of the configuration alone, or all of the wall

  explicit WallDevice(const Registers& registers) : registers_(registers) {}

  // Brings `bytes` up to date.
  Outcome Read(Scope scope);

  // Asks for a wall of rows and columns. Waits until the device has taken the numbers or, with
  // `wait`, until it has laid the wall out. kRefused where it can't be, or isn't after 5 seconds.
  Outcome Configure(const wall::Smart& smart, bool wait);

  // The same for a wall of ports that are placed freely; always waits.
  Outcome Place(const wall::PortRecords& records);

  wall::DeviceBytes bytes;

 private:
  using Missing = std::function<std::optional<std::string>(const wall::DeviceBytes&)>;

  Outcome WriteRecord(std::uint32_t begin, std::uint32_t end);
  Outcome Await(Scope scope, const Missing& missing);

  Registers registers_;
};

}  // namespace quivord::access
