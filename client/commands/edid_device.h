// The EDIDs of a board's inputs, read and written as commands do it.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "device.h"
#include "held_signals.h"
#include "process/calc_edid.h"

namespace ctl {

class EdidDevice {
 public:
  // Connects; where it can't, the reason has been said and the exit status is in `exit`.
  static std::unique_ptr<EdidDevice> Open(const Context& context, Exit& exit);

  // The input that was current is so again.
  ~EdidDevice();

  // Looks which input boards there are and shows them their stored modes.
  Answer Detect();

  // Makes a group, 0 to 2, the current one until `PutBack`, or until the end of this object. The
  // device stores and passes on which it is, like every feature register. Ctrl-C waits meanwhile.
  Answer Select(std::uint8_t group);
  Answer PutBack();

  // The group that is current.
  Answer Current(std::uint8_t& group);

  // The current group's EDID; all zeros where it has no source, or shows none.
  Answer Read(ZEPH_MCUC::EdidImage& image);

  // Sends an EDID to the current group and waits until it shows `mode`. A refusal with data says
  // that it doesn't; the data is what it shows.
  Answer Write(const ZEPH_MCUC::EdidImage& image, const ZEPH_MCUC::VideoMode& mode);

 private:
  explicit EdidDevice(std::unique_ptr<Device> device) : device_(std::move(device)) {}
  Answer WriteSourceId(std::uint8_t source_id);

  std::unique_ptr<Device> device_;
  std::optional<std::uint8_t> before_;  // source ID to put back
  std::optional<HeldSignals> held_;     // as long as there is one
};

// Whether any byte is there.
bool HasEdid(const ZEPH_MCUC::EdidImage& image);

}  // namespace ctl
