// What a frame is about, in the words of the daemon's tables. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "proto/feature_names.h"
#include "stub/frame_layout.h"

namespace quivord::trace {

// The feature register, or the FPGA cell by the same name, in which an address of the sending card
// lies; null for any other address or device.
const ZEPH_MCUC::FeatureRegister* FeatureOf(const ZEPH_MCUC::FrameHead& head);

// What the tables call an address of the sending card: a feature register's name, else what its
// space says; empty where there is nothing to say.
std::string RegisterName(std::uint32_t address);

// "0x02000001 lightness": the address of a register and, of the sending card's, its name.
std::string PlaceText(const ZEPH_MCUC::FrameHead& head);

// "output = open", "the position tables, 1024 bytes": what a request or a report is about. `data`
// are the bytes that it brings, if any.
std::string SubjectText(const ZEPH_MCUC::FrameHead& head, std::span<const std::uint8_t> data);

// "owd", "kye", "moirad", else the number of the task as 0x%06X; without the slot.
std::string PeerText(std::uint32_t peer);

// " 0a 0b": each byte with a blank in front.
std::string HexWords(std::span<const std::uint8_t> bytes);

}  // namespace quivord::trace
