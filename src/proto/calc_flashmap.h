// The map of the flash store: what lies where and whose it is. Addresses are stored state: they are
// not to be renumbered.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace ZEPH_MCUC {

// Where what is stored begins. A name of a region, or of a byte inside one.
namespace flash {
inline constexpr uint32_t kStoreSize = 0x1000000;

inline constexpr uint32_t kBasicInfo = 0x001000;     // `BasicHardWareReg`
inline constexpr uint32_t kSerialNumber = 0x001016;  // 8 bytes inside the above
inline constexpr uint32_t kBasicValid = 0x00101F;    // 0x55 where the area is valid
inline constexpr uint32_t kDhcpFlag = 0x00201A;
inline constexpr uint32_t kGenlockState = 0x00202A;
inline constexpr uint32_t k3DState = 0x002400;  // 0x28 is off
inline constexpr uint32_t kLauncher = 0x002407;
inline constexpr uint32_t kScene = 0x003000;  // of the video daemon
inline constexpr uint32_t kLauncherCopy = 0x00F557;
inline constexpr uint32_t kEdidRecord = 0x200000;
inline constexpr uint32_t kBasicInfoCopy = 0xA01000;
inline constexpr uint32_t kFeature = 0xA3B100;  // `SendParameterReg`
inline constexpr uint32_t kPosition = 0xA3C000;
inline constexpr uint32_t kNumber = 0xA5C000;
inline constexpr uint32_t kMorSMode = 0xA60010;
inline constexpr uint32_t kParaTable = 0xA61000;
inline constexpr uint32_t kNewFlashTag = 0xB88000;
inline constexpr uint32_t kBrightness = 0xB8B000;
inline constexpr uint32_t kBackupInfo = 0xB98000;
inline constexpr uint32_t kShortcut = 0xB99000;
inline constexpr uint32_t kScreenSize = 0xC20000;
inline constexpr uint32_t kCardSize = 0xC20008;
inline constexpr uint32_t kSmartLed = 0xC20030;
inline constexpr uint32_t kScreenPara = 0xC20040;
inline constexpr uint32_t kHCInteraction = 0xC21000;
inline constexpr uint32_t kSoftware = 0xC30000;
inline constexpr uint32_t kSoftware2 = 0xC90000;
inline constexpr uint32_t kSlaveMark = 0xC95000;  // inside the above; cleared by a role write
inline constexpr uint32_t kGamma = 0xD00000;
inline constexpr uint32_t kWarmUp = 0xD14000;  // also the start of the device names
inline constexpr uint32_t kLastBrightness = 0xD15000;
inline constexpr uint32_t kScreenChanges = 0xD17000;
inline constexpr uint32_t kCardFiles = 0xE00000;
}  // namespace flash

// Where a register of a space that is a store lies in flash.
constexpr uint32_t BackupFlash(uint32_t reg) { return reg - 0x01768000; }
constexpr uint32_t SoftwareFlash(uint32_t reg) { return reg - 0x043D0000; }

// Who a region belongs to.
enum class FlashOwner : uint8_t {
  kBasicInfo,
  kNetwork,
  kGenlock,
  kLauncher,
  kScene,
  kEdid,
  kFeature,
  kTables,
  kRole,
  kSave,
  kBrightness,
  kBackupInfo,
  kShortcut,
  kScreen,
  kHCInteraction,
  kSoftware,
  kGamma,
  kDeviceNames,
  kCards,
  kCardFiles,
};

struct FlashRegion {
  uint32_t address;
  uint32_t length;
  FlashOwner owner;
  std::string_view name;  // for the client
  const char* content;
};

// All regions, by address; none overlaps another.
std::span<const FlashRegion> FlashRegions();

// The region of that name, or null.
const FlashRegion* FindFlashRegion(std::string_view name);

// Whether a write of `length` bytes at `address` by `owner` stays inside the store and touches no
// byte that belongs to another owner. Bytes that no region names are anybody's.
bool FlashWriteAllowed(FlashOwner owner, uint32_t address, uint32_t length);

}  // namespace ZEPH_MCUC
