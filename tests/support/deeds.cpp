#include "support/deeds.h"

#include <platform/edid.h>

#include <algorithm>
#include <string_view>

#include "process/calc_edid.h"
#include "proto/calc_identity.h"
#include "proto/calc_shortcut.h"
#include "support/brightness_bytes.h"
#include "support/wall_bytes.h"

namespace deeds {
namespace {

namespace shortcut = ZEPH_MCUC::shortcut;
using brightness_bytes::Mix;

const Bytes kSerial = {0x13, 0x03, 0x0D, 0x00, 0x00, 0x00, 0x00, 0x42};

Deed Plan() {
  const Mix mix{.nodes = {{6, 0, false, 0x7F, 30}, {18, 0, true, 0x7F, 0}},
                .sensors = {{0, 0, 0, 1}},
                .map = {{100, 20}, {1000, 90}},
                .fallback = 50};
  return {0x0A000000, mix.Bytes()};
}

// A write of register after register that shows where it was written.
Deed Kept(std::uint32_t address, const Bytes& data) { return {address, data, {address, data}}; }

// Of the whole area, which sets the serial number alone.
Deed Identity() {
  Bytes area(ZEPH_MCUC::basicinfo::kSize);
  std::ranges::copy(kSerial, area.begin() + ZEPH_MCUC::basicinfo::kSerial);
  return {0, area, {ZEPH_MCUC::basicinfo::kSerial, kSerial}};
}

// Twelve cabinets on one cable: what port 0 must show of them.
Deed Layout() {
  constexpr std::size_t kCabinets = 12;
  const auto wall = wall_bytes::With({.rows = 4, .columns = 3, .perCable = kCabinets, .mode = 2});
  const auto& record = wall->record;
  const auto& positions = wall->positions;
  return {shortcut::kBase + shortcut::kMode,
          {record.begin() + shortcut::kMode, record.begin() + shortcut::kBoxNumber + 2},
          {0x03000000, {positions.begin(), positions.begin() + 4 * kCabinets}}};
}

// The image that a board is given for a mode: sent to the device, it is what the device makes of
// it.
Deed Edid() {
  ModifyEDIDData_t request{};
  request.EDIDType = HDMI_4K1K;
  request.ModifyState = 15;
  request.InterfaceType = Typ_HDMI_a;
  request.ColorDepth = Col_8Bit;
  std::ranges::copy(std::string_view("ZEPH DUAL_DVI"), request.ProductName);
  ZEPH_MCUC::EdidImage model{}, image{};
  ModifyEDID_API.Modify_EDID(request, model.data());
  static_cast<void>(ZEPH_MCUC::BuildEdid(model, 1280, 720, 6000, &image));
  return Kept(0x08000000, {image.begin(), image.end()});
}

}  // namespace

std::vector<Deed> All() {
  return {Plan(),
          {0x0A000000, {0x00}},  // no plan any more
          {0x02200117, {0x58}},  // HDR10, HLG, neither
          {0x02200117, {0x59}},
          {0x02200117, {0x00}},
          Kept(0x0220012C, {1, 30}),        // warm-up
          {0x0E002000, Bytes(1024, 7)},     // a piece of a gamma table
          Kept(0x0E300000, {24}),           // the value that goes with it
          Kept(0x02810900, Bytes(256, 3)),  // behind the records of the ports
          {0x12010000, Bytes(0x20, 1), {0x12010006, Bytes(0x14, 1)}},  // a pattern
          Kept(0x0F008000, Bytes(1024, 9)),                            // a card's file
          Kept(0x02100010, Bytes(16, 5)),                              // of the screen parameters
          {0x02400000, {0x01, 0x00}},
          {0x01000018, {0x01}},                                // mapping
          {0x01000001, {0x01}},                                // save
          {0x02000011, {0x26, 0x11, 0x25, 0x10, 0x20, 0x30}},  // the clock
          Identity(),
          Layout(),
          Edid(),
          {0x02000001, {0x80}, {}, {ZEPH_MCUC::JSHL_TypeReceiver, 0, 0}}};
}

}  // namespace deeds
