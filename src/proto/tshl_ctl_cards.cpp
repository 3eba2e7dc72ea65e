// Requests for devices behind the output ports: split into chunks, sent down the port, answered.
#include <platform/mbus.h>
#include <platform/system.h>

#include <algorithm>

#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "proto/tshl_ctl.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kBrightnessRegister = 0x02000001;
constexpr uint32_t kLauncherRegister2 = 0x02000002;
constexpr uint32_t kMappingRegister = 0x01000088;
constexpr uint32_t kCorrectionSpace = 0x07;  // top byte of the registers that go fast
constexpr uint32_t kLauncherReportOffset = 0x2000;
constexpr int32_t kNotLinked = -2;

// One kind of device.
struct Route {
  const char* name;
  CardType device;
  uint32_t chunk;     // bytes in one packet
  uint64_t pause_us;  // after each written chunk; a receiving card's depends on the register
  bool timesOut;      // a read that fails is a time-out unless the port has no link
};
constexpr Route kScanCard = {"Ssh_StartScanCard", RecvCard, 512, 10'000, true};
constexpr Route kMultiCard = {"Ssh_StartMultiCard", MultiCard, 256, 23'000, false};
constexpr Route kDistribute = {"Ssh_StartDistribute", Distribute, 256, 25'000, false};
constexpr Route kLauncher = {"Ssh_Start3DLauncher", Launcher3D, 512, 5'000, false};

Data_Global& Global() { return *Data_Global::getInstance(); }

bool FromService(const QMB_proto3rd& msg) {
  return msg.ipcHeader.uiid == TaskId(cardsel_bit_self(), task::kOwd);
}

int32_t Refuse(QMB_proto3rd* msg, JSHL_Type_e ack) {
  msg->proto.m_data.clear();
  msg->proto.m_ucAck = static_cast<uint8_t>(ack);
  return ack;
}

int32_t Read(QMB_proto3rd* msg, const Route& route) {
  auto& proto = msg->proto;
  const uint32_t length = proto.m_usValidDataLength;
  if (length > static_cast<uint32_t>(frame::kMostData)) return Refuse(msg, JSHL_invalidAddrLen);
  proto.m_data.assign(length, 0);
  for (uint32_t at = 0; at < length; at += route.chunk) {
    const uint32_t count = std::min(route.chunk, length - at);
    const int32_t result = DriverUtil::getInstance()->ReadCardPara(
        proto.m_uiRegisterUnitAddress + at, proto.m_ucPortAddress, proto.m_usBoardAddress,
        static_cast<uint16_t>(count), proto.m_data.data() + at, route.device);
    if (result == 0) continue;
    MCUC_LOG(kLogError, "=== " << route.name << " ===read failed! ret = " << result);
    const bool timedOut = route.timesOut && result != kNotLinked;
    return Refuse(msg, timedOut ? JSHL_Timeout : JSHL_invalidCMD);
  }
  proto.m_ucAck = JSHL_OK;
  return JSHL_OK;
}

// Sends the data chunk by chunk; `after(register, chunk)` runs behind each and gives the pause.
template <class After>
int32_t Write(const QMB_proto3rd& msg, const Route& route, After after) {
  const auto& data = msg.proto.m_data;
  uint32_t reg = msg.proto.m_uiRegisterUnitAddress;
  for (std::size_t at = 0; at < data.size(); at += route.chunk) {
    const std::size_t count = std::min<std::size_t>(route.chunk, data.size() - at);
    const std::span<const uint8_t> chunk(data.data() + at, count);
    // Whether anybody took it shows when the client reads back.
    static_cast<void>(DriverUtil::getInstance()->SendCardPara(
        reg, msg.proto.m_ucPortAddress, msg.proto.m_usBoardAddress, static_cast<uint16_t>(count),
        chunk.data(), route.device));
    const uint64_t pause_us = after(reg, chunk);
    reg += static_cast<uint32_t>(count);
    platform::SleepMicroseconds(pause_us);
  }
  MCUC_LOG(kLogInfo, route.name << " write finished");
  return JSHL_OK;
}

int32_t Write(const QMB_proto3rd& msg, const Route& route) {
  return Write(msg, route, [&](uint32_t, std::span<const uint8_t>) { return route.pause_us; });
}

int32_t DoNothing() {
  MCUC_LOG(kLogInfo, "=============================Do nothing !!! ==============================");
  return JSHL_OK;
}

template <class WriteOperation>
int32_t Serve(QMB_proto3rd* msg, const Route& route, WriteOperation write) {
  if (msg == nullptr) return JSHL_invalidCMD;
  switch (msg->proto.m_ucCode) {
    case JSHL_PROTOREAD:
      return Read(msg, route);
    case JSHL_PROTOWRITE:
      return write(msg);
    default:
      return DoNothing();
  }
}

// The brightness of all cards outlives a restart.
void KeepBrightness(QMB_proto3rd* msg) {
  const auto& data = msg->proto.m_data;
  if (msg->proto.m_uiRegisterUnitAddress != kBrightnessRegister || data.size() != 1) return;
  const int32_t result =
      DriverUtil::getInstance()->WriteDataToFlash(flash::kLastBrightness, 1, data.data());
  if (result != 0) {
    MCUC_LOG(kLogError, "Write BrightnessInfo to flash failed. ret = " << result);
  }
  msg->SyncWrite = 1;
}

// What follows a chunk to a receiving card: the report of what the service daemon has to know, and
// the pause, which goes by the register behind the chunk.
uint64_t AfterScanChunk(const QMB_proto3rd& msg, uint32_t reg, std::span<const uint8_t> chunk) {
  constexpr uint64_t kHighSpeed_us = 200;
  constexpr uint64_t kCorrection_us = 5'000;
  const bool mapping = reg == kMappingRegister && chunk.size() == 1;
  if (!FromService(msg) && (reg == kBrightnessRegister || mapping)) {
    Global().SendDatetoOWD(reg, chunk.data(), 1);
  }
  const auto next = static_cast<uint32_t>(reg + chunk.size());
  if (next >> 24 != kCorrectionSpace) return kScanCard.pause_us;
  return Global()._gCorroentHighSpeed == 1 ? kHighSpeed_us : kCorrection_us;
}

// Keeps a launcher's setting in both of its places.
void KeepLauncherSetting(const QMB_proto3rd& msg) {
  const uint32_t reg = msg.proto.m_uiRegisterUnitAddress;
  if (reg != kBrightnessRegister && reg != kLauncherRegister2) return;
  const uint32_t place = reg - kBrightnessRegister;
  const auto& data = msg.proto.m_data;
  const auto length = static_cast<uint32_t>(data.size());
  for (const uint32_t base : {flash::kLauncher, flash::kLauncherCopy}) {
    if (!FlashWriteAllowed(FlashOwner::kLauncher, base + place, length)) {
      MCUC_LOG(kLogError, "=== Ssh_Start3DLauncher ===not stored, length = " << length);
      return;
    }
  }
  DriverUtil* driver = DriverUtil::getInstance();
  driver->WriteDataToFlash(flash::kLauncher + place, length, data.data());
  driver->WriteDataToFlash(1, flash::kLauncherCopy + place, length, data.data());
}

// A link register of the FPGA; zeros where it can't be read.
template <std::size_t N>
std::array<uint8_t, N> ReadLinks(uint32_t address, const char* text) {
  std::array<uint8_t, N> bytes{};
  if (DriverUtil::getInstance()->ReadFPGABusBlock(address, bytes.data(), N) < 0) {
    MCUC_LOG(kLogError, "=== PortLinkVerify ===Read from FPGA basicPara failed when reading "
                            << text << " information! ");
    bytes.fill(0);
  }
  return bytes;
}

}  // namespace

int32_t Tshl_ctl::Ssh_StartScanCard(QMB_proto3rd* msg) {
  return Serve(msg, kScanCard, [](QMB_proto3rd* request) {
    KeepBrightness(request);
    return Write(*request, kScanCard, [&](uint32_t reg, std::span<const uint8_t> chunk) {
      return AfterScanChunk(*request, reg, chunk);
    });
  });
}

int32_t Tshl_ctl::Ssh_StartMultiCard(QMB_proto3rd* msg) {
  return Serve(msg, kMultiCard, [](QMB_proto3rd* request) { return Write(*request, kMultiCard); });
}

int32_t Tshl_ctl::Ssh_StartDistribute(QMB_proto3rd* msg) {
  if (msg != nullptr && msg->proto.m_ucCode == JSHL_PROTOREAD &&
      PortLinkVerify(msg->proto.m_ucPortAddress) == 0) {
    MCUC_LOG(kLogError,
             "=== Ssh_StartDistribute =========Ssh_StartDistribute====== The PortAddress isn't "
             "link, return! ");
    return Refuse(msg, JSHL_invalidCMD);
  }
  return Serve(msg, kDistribute,
               [](QMB_proto3rd* request) { return Write(*request, kDistribute); });
}

int32_t Tshl_ctl::Ssh_Start3DLauncher(QMB_proto3rd* msg) {
  return Serve(msg, kLauncher, [](QMB_proto3rd* request) {
    const auto& proto = request->proto;
    if (!FromService(*request)) {
      Global().SendDatetoOWD(proto.m_uiRegisterUnitAddress + kLauncherReportOffset,
                             proto.m_data.data(), static_cast<uint16_t>(proto.m_data.size()));
    }
    KeepLauncherSetting(*request);
    return Write(*request, kLauncher);
  });
}

uint8_t Tshl_ctl::PortLinkVerify(uint8_t PortAddr) {
  constexpr uint8_t kAllPorts = 0xFF;
  constexpr uint8_t kLastPort = 15;
  constexpr uint8_t kFibersDontCount = 0xA0;
  if (PortAddr == kAllPorts) {
    MCUC_LOG(kLogWarning, "=== PortLinkVerify === PortAddr = 0xFF, LinkVerify = 1 , return 1");
    return 1;
  }
  const auto copper = ReadLinks<4>(0x00F05100, "NetPortLink 0x00f05100");
  const auto fibers = ReadLinks<4>(0x00F04000, "FiberLink 0x00f04000");
  const auto status = ReadLinks<1>(0x000001D7, "FiberStatus 0x000001d7");
  if (PortAddr > kLastPort) {
    MCUC_LOG(kLogError, "=== PortLinkVerify ===NetPort = " << PortAddr << " is invalid! ");
    return 0;
  }
  if ((copper[PortAddr / 4] >> PortAddr % 4 & 1) != 0) return 1;
  const auto byInFiber = static_cast<std::size_t>(PortAddr / 8);
  const uint8_t maps = fibers[byInFiber] | fibers[byInFiber + 2];
  if (status[0] != kFibersDontCount && (maps >> PortAddr % 8 & 1) != 0) return 1;
  const int group = PortAddr / 4 * 4;
  MCUC_LOG(kLogInfo, "=== PortLinkVerify ===((PortAddr>=" << group << ")&&(PortAddr<=" << group + 3
                                                          << ")) no linked , return 0");
  return 0;
}

}  // namespace ZEPH_MCUC
