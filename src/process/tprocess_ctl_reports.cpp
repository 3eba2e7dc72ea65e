// The change detectors: status registers polled on each pass of the loop, and what is sent when one
// changed.
#include "driverutil.h"
#include "mcuctrace.h"
#include "process/tprocess_ctl.h"
#include "proto/calc_feature.h"
#include "proto/data_common.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint8_t kLinkChanged = 1;

// Passes after a link change: when the card size is asked for, and when that is given up.
constexpr uint8_t kAskAfter = 4;
constexpr uint8_t kGiveUpAsking = 30;
constexpr uint8_t kGiveUpWaiting = 10;

Data_Global& Global() { return *Data_Global::getInstance(); }

template <std::size_t N>
std::array<uint8_t, N> ReadEach(const uint32_t (&addresses)[N]) {
  std::array<uint8_t, N> bytes;
  for (std::size_t i = 0; i < N; ++i) {
    bytes[i] = DriverUtil::getInstance()->FPGAC5_ReadOneWord(0, 0, addresses[i]);
  }
  return bytes;
}

template <std::size_t N>
std::array<uint8_t, N> ReadBlock(uint32_t address) {
  std::array<uint8_t, N> bytes{};
  DriverUtil::getInstance()->FPGAC5_ReadDataBlock(0, 0, address, N, bytes.data());
  return bytes;
}

// Runs `report` where `now` is not what `cache` holds, then takes it into the cache.
template <std::size_t N, class Report>
void OnChange(const char* what, const std::array<uint8_t, N>& now, SharedBytes<N>* cache,
              Report report) {
  if (now == cache->template snapshot<N>(0)) return;
  MCUC_LOG(kLogInfo, what << " changed");
  report();
  cache->write(0, now);
}

// Reports each byte to a register of its own, from that of `address` up.
template <std::size_t N>
void SendEach(uint32_t address, const std::array<uint8_t, N>& bytes) {
  for (uint32_t i = 0; i < N; ++i) {
    Global().SendDatetoOWD(feature::kBase + address + i, &bytes[i], 1);
  }
}

}  // namespace

void Tprocess_ctl::SendRedundtoOWD() {
  OnChange("redundancy",
           ReadEach({feature::kRedundancy, feature::kRedundancy4, feature::kRedundancy8,
                     feature::kRedundancy8 + 1}),
           &Global().SendRedundtoOWD_buff, [this] {
             SendRedundtoOWD1_4();
             SendRedundtoOWD5_8();
             SendRedundtoOWD9_16();
           });
  const auto groups = ReadBlock<6>(feature::kFiberRedundancy);
  OnChange("fiber redundancy of port groups", groups, &Global().SendOptRedundtoOWD_buff,
           [&] { SendEach(feature::kFiberRedundancy, groups); });
}

void Tprocess_ctl::SendNetLinktoOWD() {
  const auto links =
      ReadEach({feature::kNetLink, feature::kNetLink4, feature::kNetLink8, feature::kNetLink8 + 1});
  uint16_t ports = 0;
  for (std::size_t i = 0; i < links.size(); ++i) {
    ports = static_cast<uint16_t>(ports | (links[i] & 0x0F) << (4 * i));
  }
  Global().GigaPhyLinkSta = ports;
  OnChange("network links", links, &Global().SendNetLinktoOWD_buff, [this] {
    SendNetLinktoOWD1_4();
    SendNetLinktoOWD5_8();
    SendNetLinktoOWD9_16();
    Global().LinkStateChanged = kLinkChanged;
  });
}

void Tprocess_ctl::SendFiberLinktoOWD() {
  OnChange("fiber link", ReadEach({feature::kFiberLink}), &Global().fiberlink_buff,
           [] { Global().SendFiberLinkInfo(); });
}

void Tprocess_ctl::SendFiberBelowLinkStatustoOWD() {
  const auto links = ReadBlock<4>(feature::kBelowFiber1);
  const std::array<uint8_t, 2> first = {links[0], links[1]};
  const std::array<uint8_t, 2> second = {links[2], links[3]};
  OnChange("links below fiber 1", first, &Global().Fiber1BelowLinkStatus_buff, [&] {
    SendEach(feature::kBelowFiber1, first);
    Global().LinkStateChanged = kLinkChanged;
  });
  OnChange("links below fiber 2", second, &Global().Fiber2BelowLinkStatus_buff, [&] {
    SendEach(feature::kBelowFiber2, second);
    Global().LinkStateChanged = kLinkChanged;
  });
}

void Tprocess_ctl::SendFiberRedundtoOWD() {
  const auto status = ReadEach({feature::kOptPortMode});
  OnChange("fiber redundancy", status, &Global().fiberRedund_buff,
           [&] { SendEach(feature::kOptPortMode, status); });
}

void Tprocess_ctl::SendFiberToNetStatustoOWD() {
  const auto status = ReadBlock<2>(feature::kFiberToNet);
  OnChange("fiber to network", status, &Global().FiberToNetStatus_buff,
           [&] { SendEach(feature::kFiberToNet, status); });
}

void Tprocess_ctl::SendFiberCopyStatustoOWD() {
  const auto status = ReadEach({feature::kOptPortMode});
  OnChange("fiber copy", status, &Global().fiberCopyStatus_buff,
           [&] { SendEach(feature::kOptPortMode, status); });
}

// Shares its cache with the fiber link, so it fires only where that changed in between.
void Tprocess_ctl::SendGenLockLinktoOWD() {
  OnChange("genlock link", ReadEach({feature::kFiberLink}), &Global().fiberlink_buff,
           [] { Global().SendFiberLinkInfo(); });
}

void Tprocess_ctl::SendRecvCardParaToOwdByLinkChange() {
  Data_Global& global = Global();
  const uint8_t passes = global.LinkStateChanged;
  if (passes == 0) return;
  const bool linked = global.GigaPhyLinkSta != 0 || global.Fiber1BelowLinkStatus_buff.u16(0) != 0 ||
                      global.Fiber2BelowLinkStatus_buff.u16(0) != 0;
  const auto next = static_cast<uint8_t>(passes + 1);
  if (passes < kAskAfter || !global.mbus_connect_status || !linked) {
    global.LinkStateChanged = passes < kGiveUpWaiting ? next : 0;
    return;
  }
  if (global.GetRecvCardSize_EnvNew() == 0) {
    global.SendRVCardWHtoOWD();
    global.LinkStateChanged = 0;
  } else {
    global.LinkStateChanged = next > kGiveUpAsking ? 0 : next;
  }
}

void Tprocess_ctl::SendRedundtoOWD1_4() { Global().SendRedundtoOWD1_4(); }
void Tprocess_ctl::SendRedundtoOWD5_8() { Global().SendRedundtoOWD5_8(); }
void Tprocess_ctl::SendRedundtoOWD9_16() { Global().SendRedundtoOWD9_16(); }
void Tprocess_ctl::SendNetLinktoOWD1_4() { Global().SendStatusToOWD(feature::kNetLink, 1); }
void Tprocess_ctl::SendNetLinktoOWD5_8() { Global().SendStatusToOWD(feature::kNetLink4, 1); }
void Tprocess_ctl::SendNetLinktoOWD9_16() { Global().SendStatusToOWD(feature::kNetLink8, 2); }
void Tprocess_ctl::SendMStoOWD1_4() { Global().SendMStoOWD1_4(); }
void Tprocess_ctl::SendMStoOWD5_8() { Global().SendMStoOWD5_8(); }
void Tprocess_ctl::SendMStoOWD9_16() { Global().SendMStoOWD9_16(); }
void Tprocess_ctl::Send9DtoOWD() { Global().Send9DtoOWD(); }
void Tprocess_ctl::SendBandWidthInfo() { Global().SendBandWidthInfo(); }
void Tprocess_ctl::SendFiberLinkInfo() { Global().SendFiberLinkInfo(); }
void Tprocess_ctl::SendFiberRedundInfo() { Global().SendFiberLinkInfo(); }

}  // namespace ZEPH_MCUC
