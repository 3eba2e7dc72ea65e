// The register spaces by name: where they lie, what their rows are called, which lengths they take
// and how far their bytes go. The daemon's spaces, its clients and its tools all read these tables.
// Pure and constant-initialised, so it may be used before `main` and from any thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace ZEPH_MCUC {

// A row of the top table: the key of a space, its short name and description.
struct TopRow {
  uint32_t key = 0;
  const char* cmdStr = nullptr;
  const char* cmdExp = nullptr;
};

// A row of a space's own table: the address after the space's mask, short name, description.
// `cmdStr` and `cmdExp` are shown and logged as they stand.
struct RowNames {  // NOLINT(*.Padding): in the order in which a row is read
  uint32_t key;
  const char* cmdStr;
  const char* cmdExp;
  int32_t leastWritten = 1;  // bytes that a write of this row needs
};

// What becomes of an access that passes the checks.
enum class Service : uint8_t {
  kServed,   // bytes come back, or are taken
  kNothing,  // answered, but no bytes come back, or none are kept
  kRefused,  // not this way
};

// What becomes of an access that isn't wholly inside one area.
enum class Outside : uint8_t {
  kRefused,  // nothing is done, the reply has no data
  kDropped,  // answered like any other, yet the bytes outside go nowhere
};

// A stretch of offsets, `begin` inclusive, `end` exclusive.
struct Area {
  uint32_t begin;
  uint32_t end;
};

// An offset and length with a rule of its own: applies where (offset & mask) == `offset`.
struct Exact {
  uint32_t mask;
  uint32_t offset;
  int32_t length;
  Service service;
};

// The rule for reads, or for writes, of a space.
struct AccessRule {
  Service service = Service::kServed;
  Outside outside = Outside::kRefused;
  int32_t most = 0;  // bytes at most, beyond the row's own limit; 0 is no such limit
  std::span<const Area> areas =
      {};  // the access lies wholly in one of these; none is no such limit
  std::span<const Exact> exact = {};  // looked at before anything else in this rule
};

inline constexpr uint32_t kNoMask = 0xFFFFFFFF;

struct SpaceNames {
  const char* className;
  std::array<TopRow, 2> top;  // the second one's `cmdStr` is null where there is one key only
  uint32_t mask;              // applied to the address before a row is looked up
  uint32_t offsetMask;        // the address bits that say where in the space an access begins
  int32_t least;              // bytes in one access, fewest and most
  int32_t most;
  bool rowsChecked = true;   // false: no row is looked up and `least` and `most` are not checked
  bool saysAddress = false;  // what the rows refuse is logged with its address
  std::span<const RowNames> rows = {};
  AccessRule read = {};
  AccessRule write = {};

  // The address that the space shows as its own.
  constexpr uint32_t base() const { return top[0].key; }
};

// All spaces in the order of the top table; a space with two keys has them one after the other.
extern const std::array<const SpaceNames*, 20> kSpaces;

// The key under which the top table is searched for `address`: four spaces take 16 MiB each, all
// others are found by their block of 64 KiB.
constexpr uint32_t TopTableKey(uint32_t address) {
  const uint32_t top = address & 0xFF000000;
  const bool large =
      top == 0x0E000000 || top == 0x0F000000 || top == 0xF0000000 || top == 0xF1000000;
  return large ? top : address & 0xFFFF0000;
}

// The space that serves `address`, or null.
const SpaceNames* FindSpace(uint32_t address);

// The row of `space` for `address`; a space that looks up none has its first row for every address.
// Null: no such row.
const RowNames* FindRow(const SpaceNames& space, uint32_t address);

// What an access would meet.
enum class Meets : uint8_t {
  kServed,   // fine
  kNothing,  // fine, but a read brings no data and a write keeps none
  kNoSpace,  // no space has this address
  kNoRow,    // the space has no row for it
  kLength,   // fewer or more bytes than the row takes
  kPastEnd,  // not wholly inside what the space holds
  kDropped,  // would be answered, yet bytes outside would go nowhere, or not come
  kRefused,  // the space takes no reads, or no writes, here
};

struct Prospect {
  Meets meets;
  const SpaceNames* space;  // null for `kNoSpace`
  std::string text;         // one sentence without a full stop
};

// What a read or a write of `length` bytes at `address` would meet, sent to the sending card.
Prospect ForeseeRead(uint32_t address, int32_t length);
Prospect ForeseeWrite(uint32_t address, int32_t length);

// The spaces by name, for whoever needs one of them.
extern const SpaceNames kHwBasicInfoSpace;
extern const SpaceNames kPluginCardInfoSpace;
extern const SpaceNames kCommandSpace;
extern const SpaceNames kFeatureSpace;
extern const SpaceNames kScreenInfoEchoSpace;
extern const SpaceNames kHCInteractionSpace;
extern const SpaceNames kBackupInfoSpace;
extern const SpaceNames kIntelligentBrightnessSpace;
extern const SpaceNames kCabinetRotationSpace;
extern const SpaceNames kShortcutConfigScreenSpace;
extern const SpaceNames kCoordinateScanBoardSpace;
extern const SpaceNames kNumberFunCardPortSpace;
extern const SpaceNames kSoftwareTableSpace;
extern const SpaceNames kEDIDSpace;
extern const SpaceNames kBrightnessSpace;
extern const SpaceNames kTestPrinfSpace;
extern const SpaceNames kRGBGammaSpace;
extern const SpaceNames kScreenPatternGenSpace;
extern const SpaceNames kRVConfigFileSpace;
extern const SpaceNames kCardProgmaSpace;

}  // namespace ZEPH_MCUC
