// The tables of `registerspace_names.h`: one block a space, in the order of the top table.
#include "proto/registerspace_names.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kBlockMask = 0xFFFF0000;   // a space whose only row is its 64 KiB block
constexpr uint32_t kLargeMask = 0xFF000000;   // the same for the spaces of 16 MiB
constexpr uint32_t kOffsetMask = 0x0000FFFF;  // offsets inside a block
constexpr uint32_t kLargeOffsetMask = 0x00FFFFFF;

constexpr AccessRule kNothing{.service = Service::kNothing};

constexpr RowNames kHwBasicInfoRows[] = {{0, "HwInfo", "Hardware Basic Infomation"}};
constexpr Area kHwBasicInfoAreas[] = {{0, 256}};

constexpr RowNames kPluginCardInfoRows[] = {
    {0x00010000, "plugin card info", "plugin card info register"}};

constexpr RowNames kCommandRows[] = {
    {0, "sort", "Controller sort"},
    {1, "saveParasForSendCard", "save paras for sendcard"},
    {2, "ReturnFactorySet", "Return Factory Set"},
    {3, "TestPointCommand", "Test Point Command", 5},  // four address bytes and the value
    {4, "ReloadSendCardProgram", "Reload Send Card Program"},
    {5, "ChipEraseCommand", "Chip Erase Command"},
    {24, "MappingCommand", "Mapping conmmand for sender"},
    {32, "DebugCommandForFPGA", "Debug command for FPGA"},
    {255, "ReloadrecvCardProgram", "Reload recvCard Program"},
};

constexpr RowNames kFeatureRows[] = {{0x02000000, "feature info", "feature info register"}};
constexpr Area kFeatureAreas[] = {{0, 512}};
constexpr Exact kFeatureReads[] = {{0x0FFF, 0x4B, 1, Service::kServed}};  // always one byte 0

constexpr RowNames kScreenInfoEchoRows[] = {{0x02100000, "screen info echo", "screen info echo"}};
constexpr Area kScreenInfoEchoReads[] = {{0, 0x188}};
constexpr Area kScreenInfoEchoWrites[] = {{0, 32}};

constexpr RowNames kHCInteractionRows[] = {
    {0x02200000, "human-computer interaction info", "human-computer interaction info register"}};
constexpr Area kHCInteractionWrites[] = {{0, 0x1FF}};

constexpr RowNames kBackupInfoRows[] = {{0x02300000, "backup info", "backup info register"}};
constexpr Area kBackupInfoWrites[] = {{0, 0x1000}};  // behind it lies the shortcut record

constexpr RowNames kIntelligentBrightnessRows[] = {
    {0x02400000, "intelligent brightness", "intelligent brightness register"}};

constexpr RowNames kCabinetRotationRows[] = {
    {0x02700000, "cabinet rotation", "cabinet rotation register"}};

constexpr RowNames kShortcutConfigScreenRows[] = {
    {0x02810000, "shortcut config screen info", "shortcut config screen info register"}};
constexpr Area kShortcutConfigScreenWrites[] = {{0, 0x1000}};

constexpr RowNames kCoordinateScanBoardRows[] = {{0x03000000, "pos port", "Position of Net Port"}};
constexpr Area kCoordinateScanBoardAreas[] = {{0, 40960}};

constexpr RowNames kNumberFunCardPortRows[] = {
    {0x03100000, "number of function card port", "number of function card port"}};
constexpr Area kNumberFunCardPortAreas[] = {{0, 768}};

constexpr RowNames kSoftwareTableRows[] = {
    {0x05000000, "software table info", "software table info register"},
    {0x05060000, "software table info", "software table info register"}};

constexpr RowNames kEDIDRows[] = {{0x08000000, "edid space info", "edid space info register"}};
constexpr Exact kEDIDReads[] = {
    {kOffsetMask, 0, 1, Service::kNothing},  // looks which input boards are there
    {kOffsetMask, 0, 128, Service::kServed},
    {kOffsetMask, 0, 256, Service::kServed},
};

constexpr RowNames kBrightnessRows[] = {{0x0A000000, "lightAdjustType", "lightAdjustType"}};
constexpr Area kBrightnessWrites[] = {{0, 0x1400}};

constexpr RowNames kTestPrinfRows[] = {{0xF0000000, "testprintf", "testprintf Infomation"}};
constexpr Area kTestPrinfWrites[] = {{0, 0x10000000}};  // the FPGA's bus addresses

constexpr RowNames kRGBGammaRows[] = {{0x0E000000, "RGBGamma info", "RGBGamma info register"}};
constexpr Area kRGBGammaWrites[] = {
    {0x000000, 0x002000}, {0x002000, 0x004000},  // red, 12 and 10 bits
    {0x100000, 0x102000}, {0x102000, 0x104000},  // green
    {0x200000, 0x202000}, {0x202000, 0x204000},  // blue
    {0x300000, 0x300001}, {0x302000, 0x302001},  // gamma value, 10 and 12 bits
};

constexpr RowNames kScreenPatternGenRows[] = {
    {0x12010000, "ScreenPatternGen info", "ScreenPatternGen info register"}};
constexpr Area kScreenPatternGenAreas[] = {{0, 0x3F}};

constexpr RowNames kRVConfigFileRows[] = {
    {0x0F000000, "RVConfig File Space info", "RVConfig File Space info register"}};
constexpr Area kRVConfigFileWrites[] = {
    {0x000000, 0x100000},  // header, name list and files
    {0x800000, 0x801000},  // device names
    {0xF00000, 0xF00120},  // control
};

constexpr RowNames kCardProgmaRows[] = {
    {0, "sendcard program update", "sendcard program update"},
    {0x1000, "sendcard program update", "sendcard program update"}};

}  // namespace

constinit const SpaceNames kHwBasicInfoSpace{
    .className = "Addr_HwBasicInfoRegister",
    .top = {{{0x00000000, "factory", "factory hardware register"}}},
    .mask = kNoMask,
    .offsetMask = kOffsetMask,
    .least = 2,
    .most = 512,
    .rowsChecked = false,
    .rows = kHwBasicInfoRows,
    .read = {.areas = kHwBasicInfoAreas},
    .write = {.areas = kHwBasicInfoAreas},
};

constinit const SpaceNames kPluginCardInfoSpace{
    .className = "Addr_PluginCardInfoRegister",
    .top = {{{0x00010000, "plug in card info", "plug in card register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 512,
    .rows = kPluginCardInfoRows,
    .read = kNothing,
    .write = kNothing,
};

constinit const SpaceNames kCommandSpace{
    .className = "Addr_CMDRegister",
    .top = {{{0x01000000, "command", "command register"}}},
    .mask = 0x0000FFFF,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 512,
    .rows = kCommandRows,
    .read = kNothing,
};

constinit const SpaceNames kFeatureSpace{
    .className = "Addr_FeatureRegister",
    .top = {{{0x02000000, "feature", "feature register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 1024,
    .rows = kFeatureRows,
    .read = {.areas = kFeatureAreas, .exact = kFeatureReads},
    .write = {.areas = kFeatureAreas},
};

constinit const SpaceNames kScreenInfoEchoSpace{
    .className = "Addr_ScreenInfoEchoRegister",
    .top = {{{0x02100000, "screen info echo", "screen info echo"}}},
    .mask = kBlockMask,
    .offsetMask = 0x000000FF,
    .least = 1,
    .most = 1024,
    .rows = kScreenInfoEchoRows,
    .read = {.outside = Outside::kDropped, .areas = kScreenInfoEchoReads},
    .write = {.outside = Outside::kDropped, .areas = kScreenInfoEchoWrites},
};

constinit const SpaceNames kHCInteractionSpace{
    .className = "Addr_HCInteractionRegister",
    .top = {{{0x02200000, "screen info echo", "screen info echo"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 512,
    .rows = kHCInteractionRows,
    .write = {.areas = kHCInteractionWrites},
};

constinit const SpaceNames kBackupInfoSpace{
    .className = "Addr_BackupInfoRegister",
    .top = {{{0x02300000, "backup", "backup info register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 512,
    .rows = kBackupInfoRows,
    .write = {.areas = kBackupInfoWrites},
};

constinit const SpaceNames kIntelligentBrightnessSpace{
    .className = "Addr_IntelligentBrightnessRegister",
    .top = {{{0x02400000, "Intelligent brightness",
              "Intelligent brightness sent by screen register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 512,
    .rows = kIntelligentBrightnessRows,
    .read = kNothing,
};

constinit const SpaceNames kCabinetRotationSpace{
    .className = "Addr_CabinetRotationRegister",
    .top = {{{0x02700000, "cabinet rotation", "cabinet rotation register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 69632,
    .rows = kCabinetRotationRows,
    .read = kNothing,
    .write = kNothing,
};

constinit const SpaceNames kShortcutConfigScreenSpace{
    .className = "Addr_ShortcutConfigScreenRegister",
    .top = {{{0x02810000, "shortcut config screen", "shortcut config screen register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 1500,
    .rows = kShortcutConfigScreenRows,
    .write = {.areas = kShortcutConfigScreenWrites},
};

constinit const SpaceNames kCoordinateScanBoardSpace{
    .className = "Addr_CoordinateScanBoardRegister",
    .top = {{{0x03000000, "netscanborad", "network scanborad position register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 0,
    .most = 65537,
    .rows = kCoordinateScanBoardRows,
    .read = {.areas = kCoordinateScanBoardAreas},
    .write = {.outside = Outside::kDropped, .areas = kCoordinateScanBoardAreas},
};

constinit const SpaceNames kNumberFunCardPortSpace{
    .className = "Addr_NumberFunCardPortRegister",
    .top = {{{0x03100000, "netborad", "network scanborad register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 0,
    .most = 2048,
    .rows = kNumberFunCardPortRows,
    .read = {.areas = kNumberFunCardPortAreas},
    .write = {.areas = kNumberFunCardPortAreas},
};

constinit const SpaceNames kSoftwareTableSpace{
    .className = "Addr_SoftwareTableRegister",
    .top = {{{0x05000000, "softwarespace", "software space register"},
             {0x05060000, "softwarespace", "software space register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 1,
    .most = 32768,
    .rows = kSoftwareTableRows,
};

constinit const SpaceNames kEDIDSpace{
    .className = "Addr_EDIDSpaceRegister",
    .top = {{{0x08000000, "edid", "edid space register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 0,
    .most = 2048,
    .rows = kEDIDRows,
    .read = {.service = Service::kRefused, .exact = kEDIDReads},
};

constinit const SpaceNames kBrightnessSpace{
    .className = "Addr_HardWareBrightnessAdjust",
    .top = {{{0x0A000000, "brightness", "brightness space register"}}},
    .mask = kBlockMask,
    .offsetMask = kLargeOffsetMask,
    .least = 1,
    .most = 512,
    .saysAddress = true,
    .rows = kBrightnessRows,
    .write = {.areas = kBrightnessWrites},
};

constinit const SpaceNames kTestPrinfSpace{
    .className = "Addr_TestPrinfRegister",
    .top = {{{0xF0000000, "testprintf", "testprintf Infomation"},
             {0xF1000000, "testprintf", "testprintf Infomation"}}},
    .mask = kNoMask,
    .offsetMask = 0x0FFFFFFF,
    .least = 1,
    .most = 2048,
    .rowsChecked = false,
    .rows = kTestPrinfRows,
    .read = {.most = 4095},
    .write = {.most = 4096, .areas = kTestPrinfWrites},
};

constinit const SpaceNames kRGBGammaSpace{
    .className = "Addr_RGBGammaRegister",
    .top = {{{0x0E000000, "RGB Gamma", "RGB Gamma register"}}},
    .mask = kLargeMask,
    .offsetMask = kLargeOffsetMask,
    .least = 1,
    .most = 1024,
    .rows = kRGBGammaRows,
    .write = {.outside = Outside::kDropped, .areas = kRGBGammaWrites},
};

constinit const SpaceNames kScreenPatternGenSpace{
    .className = "Addr_ScreenPatternGenregister",
    .top = {{{0x12010000, "ScreenPatternGen info", "ScreenPatternGen info register"}}},
    .mask = kBlockMask,
    .offsetMask = kOffsetMask,
    .least = 0,
    .most = 2048,
    .rows = kScreenPatternGenRows,
    .read = {.areas = kScreenPatternGenAreas},
    .write = {.areas = kScreenPatternGenAreas},
};

constinit const SpaceNames kRVConfigFileSpace{
    .className = "Addr_RVConfigFileSpace",
    .top = {{{0x0F000000, "RVConfig File Space info", "RVConfig File Space info register"}}},
    .mask = kLargeMask,
    .offsetMask = kLargeOffsetMask,
    .least = 0,
    .most = 2048,
    .rows = kRVConfigFileRows,
    .write = {.areas = kRVConfigFileWrites},
};

constinit const SpaceNames kCardProgmaSpace{
    .className = "Addr_CardProgmaSpaceRegister",
    .top = {{{0x18000000, "cardprogspace", "sendcard programm space register"},
             {0x18200000, "ccardprogspace", "csendcard programm space register"}}},
    .mask = 0x0000FFFF,
    .offsetMask = kOffsetMask,
    .least = 256,
    .most = 4096,
    .rows = kCardProgmaRows,
    .write = {.service = Service::kRefused},
};

constinit const std::array<const SpaceNames*, 20> kSpaces = {
    &kHwBasicInfoSpace,
    &kPluginCardInfoSpace,
    &kCommandSpace,
    &kFeatureSpace,
    &kScreenInfoEchoSpace,
    &kHCInteractionSpace,
    &kBackupInfoSpace,
    &kIntelligentBrightnessSpace,
    &kCabinetRotationSpace,
    &kShortcutConfigScreenSpace,
    &kCoordinateScanBoardSpace,
    &kNumberFunCardPortSpace,
    &kSoftwareTableSpace,
    &kEDIDSpace,
    &kBrightnessSpace,
    &kTestPrinfSpace,
    &kRGBGammaSpace,
    &kScreenPatternGenSpace,
    &kRVConfigFileSpace,
    &kCardProgmaSpace,
};

}  // namespace ZEPH_MCUC
