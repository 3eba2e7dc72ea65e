// The feature registers by name: what stands where, in which form and range, what it means, and
// what a write to it sets off. Client, documents and tools all read this table. Pure; safe from any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ZEPH_MCUC {

// How the bytes of a register are to be read. Numbers are little-endian.
enum class FeatureForm : uint8_t {
  kNumber,    // unsigned, 1 or 2 bytes
  kChoice,    // one byte, some of whose values have names
  kBytes,     // bytes whose bits are the hardware's business, 1 to 6
  kPortBits,  // a bit a port, as `portBits` says
  kTime,      // year since 2000, month, day, hour, minute, second, each in BCD
  kOffsets,   // x and y, each signed with 32 bits
};

// Who gives a register its value.
enum class FeatureOwner : uint8_t {
  kClient,    // clients write it
  kDaemon,    // the daemon writes it
  kHardware,  // the FPGA writes it
};

// Where the value is up to date. Register and FPGA cell have the same number, but behind 0x1F0 they
// have nothing else in common, and reports name cells.
enum class FeaturePlace : uint8_t {
  kImage,  // in the daemon, read at 0x02000000 + offset
  kCell,   // in the FPGA, read at 0xF0000000 + offset
};

// A value that has a name.
struct FeatureChoice {
  uint8_t shown;  // what a read gives
  const char* word;
  int written = kAsShown;  // what a client writes for it

  static constexpr int kAsShown = -1;
  static constexpr int kNever = -2;  // the daemon comes to this value by itself
};

// Which bits are whose: a byte holds `portsInByte` ports from its lowest bit up, `bitsOfPort` each,
// of which the highest is the one that counts.
struct FeaturePortBits {
  uint8_t firstPort = 0;
  uint8_t portsInByte = 4;
  uint8_t bitsOfPort = 1;
};

// A name in small letters with hyphens, kept in the table itself.
struct FeatureName {
  static constexpr std::size_t kMost = 23;
  char text[kMost + 1] = {};

  constexpr FeatureName(std::string_view name) {  // NOLINT: converts on purpose
    if (name.size() > kMost) throw "a feature's name is too long";
    for (std::size_t i = 0; i < name.size(); ++i) text[i] = name[i];
  }
  constexpr FeatureName(const char* name) : FeatureName(std::string_view(name)) {}  // NOLINT
  constexpr operator std::string_view() const { return text; }                      // NOLINT
};

struct FeatureRegister {
  FeatureName name;  // unique; port-3-width for a port's own
  uint32_t offset = 0;
  uint32_t width = 1;  // bytes
  FeatureForm form = FeatureForm::kNumber;
  FeatureOwner owner = FeatureOwner::kClient;
  FeaturePlace place = FeaturePlace::kImage;
  uint32_t least = 0;  // of a number that a client writes
  uint32_t most = 0;
  const char* unit = "";  // of a number
  std::span<const FeatureChoice> choices = {};
  FeaturePortBits portBits = {};
  const char* meaning = "";
  const char* effect = "";  // what a write sets off beyond being kept; empty for nothing
};

// Headings under which the registers are shown, in their order.
struct FeatureGroup {
  const char* title;
  std::span<const FeatureRegister> registers;
};

// All named registers. Those of a port stand together, port 0 first.
std::span<const FeatureGroup> FeatureGroups();

// The register of that name, or null.
const FeatureRegister* FindFeature(std::string_view name);

// The register in which the byte at `offset` lies, among those of `place`: the one that begins
// there, else the narrowest. Null where no register has it.
const FeatureRegister* FindFeatureAt(FeaturePlace place, uint32_t offset);

// The register of port 0 to 15 whose name ends in `suffix`, such as "width"; null for none.
const FeatureRegister* FindPortFeature(int port, std::string_view suffix);

}  // namespace ZEPH_MCUC
