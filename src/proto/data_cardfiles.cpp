// Replay of configuration files to the receiving cards.
#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_cardfiles.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {
namespace {

// The package form: a total length, then packages of a head and data at fixed places.
namespace package {
constexpr uint32_t kTotal = 4;
constexpr uint32_t kHead = 64;  // from the package's start
constexpr uint32_t kHeadBytes = 16;
constexpr uint32_t kData = 96;
constexpr uint32_t kLeast = 65;  // bytes that must be left for another package
}  // namespace package

// Reads at `offset` of the image in flash; false, logged, where that can't be read or isn't inside.
bool ReadImage(uint32_t offset, std::span<uint8_t> into) {
  const auto length = static_cast<uint32_t>(into.size());
  const bool inside = offset <= cardfiles::kImage && length <= cardfiles::kImage - offset;
  if (inside && DriverUtil::getInstance()->ReadBytesFromFlash(flash::kCardFiles + offset, length,
                                                              into.data()) == 0) {
    return true;
  }
  MCUC_LOG(kLogError,
           "=== ReadRVConfigFileSpace ===Read from flash failed when reading RVConfigFile ! ");
  return false;
}

struct Package {
  uint32_t length;
  bool hasDelay;
  uint32_t reg;
  uint32_t dataLength;
  uint16_t delay_ms;
};

Package ReadPackage(std::span<const uint8_t, package::kHeadBytes> head) {
  return {DWQ_DECDW(&head[0]), DWQ_DECWD(&head[4]) != 0, DWQ_DECDW(&head[6]), DWQ_DECDW(&head[10]),
          DWQ_DECWD(&head[14])};
}

}  // namespace

int32_t DriverUtil::LoadRvCfgToRecvCard(uint32_t load_index) {
  const std::vector<uint8_t> file = ReadRvFile(load_index);
  CardPackReader packs(file);
  while (const auto pack = packs.Next()) SendCardPack(pack->reg, pack->data, pack->delay_ms);
  return 0;
}

int32_t Data_Global::LoadRvCfgFromFlash(uint8_t number) {
  std::array<uint8_t, 4> offset{};
  std::array<uint8_t, 2> count{};
  if (!ReadImage(cardfiles::kHeaderEntry + cardfiles::kHeaderEntrySize * number, offset)) return 0;
  uint32_t at = DWQ_DECDW(offset.data());
  if (!ReadImage(at, count)) return 0;
  at += cardfiles::kFirstPack;
  for (uint32_t left = DWQ_DECWD(count.data()); left > 0; --left) {
    std::array<uint8_t, cardfiles::kPackHead> head{};
    if (!ReadImage(at, head)) return 0;
    const CardPackHead pack = ReadCardPackHead(head);
    if (pack.length > cardfiles::kMostPackData) return 0;
    std::vector<uint8_t> data(pack.length);
    if (!data.empty() && !ReadImage(at + cardfiles::kPackHead, data)) return 0;
    DriverUtil::getInstance()->SendCardPack(pack.reg, data, pack.delay_ms);
    at += cardfiles::kPackHead + pack.length;
  }
  return 0;
}

int Data_Global::LoadRecvCardFile(const char* buff) {
  DriverUtil* driver = DriverUtil::getInstance();
  std::array<uint8_t, 4> size{};
  if (driver->ReadBytesFromrecvcard(1, package::kTotal, size.size(), size.data(), buff) != 0) {
    return -1;
  }
  const uint32_t total = DWQ_DECDW(size.data());
  MCUC_LOG(kLogInfo, "ParaFilelengh = " << total);
  for (uint32_t pos = 0; total - pos >= package::kLeast;) {
    std::array<uint8_t, package::kHeadBytes> head{};
    if (driver->ReadBytesFromrecvcard(1, pos + package::kHead, head.size(), head.data(), buff) !=
        0) {
      return -1;
    }
    const Package pack = ReadPackage(head);
    if (pack.dataLength > cardfiles::kMostPackData) return -1;
    std::vector<uint8_t> data(pack.dataLength);
    if (driver->ReadBytesFromrecvcard(1, pos + package::kData, pack.dataLength, data.data(),
                                      buff) != 0) {
      return -1;
    }
    driver->SendCardPack(pack.reg, data, pack.hasDelay ? pack.delay_ms : 0);
    if (pack.length == 0) return -1;
    pos += std::min(pack.length, total - pos);  // one that says more than is left is the last
  }
  return 0;
}

}  // namespace ZEPH_MCUC
