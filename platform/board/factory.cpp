// The content of a new factory store: a device that lights one card of 128 by 128 pixels, is a
// master, and has its brightness control off.
#include <algorithm>

#include "board/stores.h"

namespace board {
namespace {

using Bytes = std::string_view;
using namespace std::string_view_literals;  // for their suffix

constexpr unsigned kCardSize = 128;
constexpr Bytes kSize16 = "\x80\x00"sv;          // 128 as 16 bits
constexpr Bytes kSize32 = "\x80\x00\x00\x00"sv;  // 128 as 32 bits
static_assert(kCardSize == 0x80);

// Stretches of one value.
struct Fill {
  std::size_t address;
  std::size_t length;
  char value;
};

constexpr std::size_t kFeatures = 0xA3B100;
constexpr std::size_t kNumbers = 0xA5C000;

constexpr Fill kFills[] = {
    {kFeatures, 512, 0},  // feature image
    {kFeatures + 0x23, 1, 0x20},
    {kFeatures + 0x3F, 1, 0x28},
    {0xA3C000, 0x20000, 0},  // position tables
    {kNumbers, 768, 0},      // number table
    {0xA60010, 1, 0},        // role: master
    {0xD17000, 1, 0},        // changes of the screen size
    {0x201A, 1, 0},          // DHCP off
    {0x202A, 1, 0},          // genlock off
    {0x2400, 1, 0x28},       // 3D off
    {0xB99000, 0x1000, 0},   // shortcut configuration
    {0xB99016, 3, 1},        // one row, one column, one card
    {0xB8B000, 0x1400, 0},   // brightness: no plan
    {0x200000, 72, 0},       // input settings
};

// Short texts of bytes.
struct Patch {
  std::size_t address;
  Bytes bytes;
};

constexpr Patch kPatches[] = {
    {kFeatures + 0x24, kSize16},   // real width
    {kFeatures + 0x26, kSize16},   // real height
    {kFeatures + 0x2C, kSize16},   // width as set
    {kFeatures + 0x1EC, kSize16},  // screen width
    {kFeatures + 0x1EE, kSize16},  // screen height
    {0xC20000, kSize32},           // screen size: width; height is as large
    {0xC20004, kSize32},
    {0xC20008, kSize32},  // card size
    {0xC2000C, kSize32},
    {0xC20030, "\x00\x01\x01\x01"sv},
    {0xC20040, "\x01\x55\x00\x00\x00\x00\x80\x00\x80\x00\x01\x01\x00\x01\x00"sv},
};

// Windows of four ports each, 9 bytes a port: width, height, offsets.
constexpr std::size_t kWindowGroups[] = {0x51, 0xB1, 0x131, 0x155};
constexpr std::size_t kWindowsInGroup = 4;
constexpr std::size_t kWindowSize = 9;

constexpr std::size_t kCountedPorts = 10;
constexpr std::size_t kNumberRecord = 32;

constexpr std::size_t kInputGroups = 9;
constexpr Bytes kInputMode = "\x80\x07\x38\x04\x70\x17"sv;  // 1920, 1080, 60.00 Hz

void Put(std::string& image, std::size_t address, Bytes bytes) {
  std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(address));
}

// Ports 8 and 9 stand apart from the first eight.
std::size_t NumberRecord(std::size_t port) {
  return port < 8 ? port * kNumberRecord : 0x200 + (port - 8) * kNumberRecord;
}

}  // namespace

std::string FactoryImage() {
  std::string image(kStoreSize, '\xFF');
  for (const Fill& fill : kFills) Put(image, fill.address, std::string(fill.length, fill.value));
  for (const Patch& patch : kPatches) Put(image, patch.address, patch.bytes);
  for (const std::size_t group : kWindowGroups) {
    for (std::size_t port = 0; port < kWindowsInGroup; ++port) {
      const auto window = kFeatures + group + port * kWindowSize;
      Put(image, window, kSize16);
      Put(image, window + 2, kSize16);
    }
  }
  for (std::size_t port = 0; port < kCountedPorts; ++port) {
    Put(image, kNumbers + NumberRecord(port), "\x01"sv);
  }
  for (std::size_t group = 0; group < kInputGroups; ++group) {
    Put(image, 0x200000 + group * kInputMode.size(), kInputMode);
  }
  return image;
}

}  // namespace board
