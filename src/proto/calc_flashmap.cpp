#include "proto/calc_flashmap.h"

#include <algorithm>

namespace ZEPH_MCUC {
namespace {

using enum FlashOwner;

constexpr FlashRegion kRegions[] = {
    {flash::kBasicInfo, 256, kBasicInfo, "basic-info", "hardware basic information"},
    {flash::kDhcpFlag, 1, kNetwork, "dhcp", "DHCP flag"},
    {flash::kGenlockState, 1, kGenlock, "genlock", "genlock state"},
    {flash::k3DState, 1, kGenlock, "3d", "3D state"},
    {flash::kLauncher, 2, kLauncher, "launcher", "3D launcher settings"},
    {flash::kScene, 46080, kScene, "scene", "scene data of the video daemon"},
    {flash::kLauncherCopy, 2, kLauncher, "launcher-copy", "3D launcher settings, copy"},
    {flash::kEdidRecord, 72, kEdid, "edid", "input settings"},
    {flash::kBasicInfoCopy, 256, kBasicInfo, "basic-info-copy", "hardware basic information, copy"},
    {flash::kFeature, 512, kFeature, "feature", "feature image"},
    {flash::kPosition, 40960, kTables, "position", "position tables"},
    {flash::kNumber, 768, kTables, "number", "number table"},
    {flash::kMorSMode, 1, kRole, "role", "device role"},
    {flash::kParaTable, 512, kSave, "words", "word table"},
    {flash::kNewFlashTag, 4, kSave, "tag", "tag of a store that was saved to"},
    {flash::kBrightness, 0x1400, kBrightness, "brightness", "brightness plans"},
    {flash::kBackupInfo, 0x1000, kBackupInfo, "backup-info", "backup information"},
    {flash::kShortcut, 0x1000, kShortcut, "shortcut", "shortcut configuration"},
    {flash::kScreenSize, 8, kScreen, "screen-size", "screen size"},
    {flash::kCardSize, 8, kScreen, "card-size", "card size"},
    {flash::kSmartLed, 4, kScreen, "factory-layout", "factory layout"},
    {flash::kScreenPara, 15, kScreen, "screen-para", "screen parameters"},
    {flash::kHCInteraction, 0x1000, kHCInteraction, "hc", "HC interaction parameters"},
    {flash::kSoftware, 0x10000, kSoftware, "software", "software space, first block"},
    {flash::kSoftware2, 0x10000, kSoftware, "software-2", "software space, second block"},
    {flash::kGamma, 0x14000, kGamma, "gamma", "gamma tables, tags and values"},
    {flash::kWarmUp, 0x1000, kDeviceNames, "device-names", "device names, warm-up record in front"},
    {flash::kLastBrightness, 6, kCards, "last-brightness", "last brightness of the cards"},
    {flash::kScreenChanges, 1, kScreen, "screen-changes", "count of screen size changes"},
    {flash::kCardFiles, 0x100000, kCardFiles, "card-files", "receiving-card configuration files"},
};

}  // namespace

std::span<const FlashRegion> FlashRegions() { return kRegions; }

const FlashRegion* FindFlashRegion(std::string_view name) {
  const auto region = std::find_if(std::begin(kRegions), std::end(kRegions),
                                   [=](const FlashRegion& row) { return row.name == name; });
  return region == std::end(kRegions) ? nullptr : region;
}

bool FlashWriteAllowed(FlashOwner owner, uint32_t address, uint32_t length) {
  if (address >= flash::kStoreSize || length > flash::kStoreSize - address) return false;
  const uint32_t end = address + length;
  return std::none_of(std::begin(kRegions), std::end(kRegions), [=](const FlashRegion& region) {
    const bool touches = address < region.address + region.length && region.address < end;
    return touches && region.owner != owner;
  });
}

}  // namespace ZEPH_MCUC
