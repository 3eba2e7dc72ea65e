// The light sensors, and what their light means.
#include "driverutil.h"
#include "mcuctrace.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_brightness_lux.h"

namespace ZEPH_MCUC {

using Brightness = Addr_HardWareBrightnessAdjust;

namespace {

using brightness::TableState;

constexpr u8 kBehindPort = 0;  // the position of a sensor on a card
constexpr u8 kMostPort = 9;
constexpr u8 kMostSensorAddress = 5;
constexpr int kAnswerTime_ms = 2;
constexpr u8 kDone = 1;
constexpr u8 kFailed = 0;

// The trimmed average over all sensors that answer.
u8 ReadAll(const std::vector<brightness::Sensor>& sensors, const char* failure, u16& average) {
  std::array<u16, brightness::sensor::kMostSensors> good{};
  u8 count = 0;
  for (const brightness::Sensor& sensor : sensors) {
    u16 lux = 0;
    if (Brightness::ReadEnvironmentLux(sensor.position, sensor.port, sensor.board, sensor.address,
                                       lux) == kDone) {
      good[count++] = lux;
    }
  }
  if (count == 0) {
    MCUC_LOG(kLogError, failure);
    return kFailed;
  }
  return Brightness::SortAndAverage(good.data(), count, average) == 0 ? kDone : kFailed;
}

u8 Give(std::optional<uint8_t> found, u8& into) {
  if (!found.has_value()) return kFailed;
  into = *found;
  return kDone;
}

}  // namespace

u8 Brightness::ReadEnvironmentLux(u8 Pos, u8 PortAddr, u16 BoardAddr, u8 SensorAddr, u16& lux) {
  if (PortAddr > kMostPort || SensorAddr > kMostSensorAddress || Pos != kBehindPort) return kFailed;
  DriverUtil* driver = DriverUtil::getInstance();
  const auto request = brightness::SensorRequest(SensorAddr);
  // Whether it got there shows in the answer.
  static_cast<void>(driver->SendCardPara(brightness::kCardSensor, PortAddr, BoardAddr,
                                         request.size(), request.data(), MultiCard));
  Delay(kAnswerTime_ms);
  std::array<uint8_t, brightness::kSensorReplySize> reply{};
  if (driver->ReadCardPara(brightness::kCardSensor, PortAddr, BoardAddr, reply.size(), reply.data(),
                           MultiCard) != 0) {
    MCUC_LOG(kLogError, "=== Read Sensor card failed, return ====");
    return kFailed;
  }
  const auto found = brightness::LuxOfReply(reply);
  if (!found.has_value()) {
    MCUC_LOG(kLogError, "=== Read Sensor card para error, return ====");
    return kFailed;
  }
  lux = *found;
  return kDone;
}

u8 Brightness::SortAndAverage(u16* p, u8 n, u16& AverageVal) {
  const auto average = brightness::TrimmedAverage({p, n});
  if (!average.has_value()) return 1;
  AverageVal = *average;
  return 0;
}

u8 Brightness::GetAverageLuxOneTime(u16& GetLuxVal) {
  const auto sensors = brightness::SensorsOf(TheImage());
  if (!sensors.has_value()) {
    LogAbsent("table of sensors", TableState::kCount);
    return kFailed;
  }
  return ReadAll(*sensors, "GetAverageLuxOneTime Fail", GetLuxVal);
}

u8 Brightness::GetMixAdjAverageLux(u16& GetLuxVal) {
  const auto sensors = brightness::ReadSensors(ReadArea, SensorInfoBaseAddr);
  if (sensors.state != TableState::kThere) {
    LogAbsent("table of sensors", sensors.state);
    return kFailed;
  }
  return ReadAll(sensors.table, "==============Read  EnvironmentLux Fail! ==========", GetLuxVal);
}

u8 Brightness::LuxToBrightnessLookupTable(u16 Lux, u8& Bright) {
  return Give(brightness::LookUpRange(brightness::LuxRangeOf(TheImage()), Lux), Bright);
}

u8 Brightness::MixAdjLuxToBriLookupTable(u16 Lux, u8& Bright) {
  const auto map = brightness::ReadLuxMap(ReadArea, LuxMapBaseAddr);
  if (map.state != TableState::kThere) {
    LogAbsent("lux map", map.state);
    return kFailed;
  }
  return Give(brightness::LookUpMap(map.table, Lux), Bright);
}

u8 Brightness::MixAdjFallback(u8& Bright) {
  const auto fallback = brightness::ReadFallback(ReadArea, SensorValidBaseAddr);
  if (fallback.state != TableState::kThere) {
    LogAbsent("fallback", fallback.state);
    return kFailed;
  }
  if (!fallback.table.enabled) return kFailed;
  Bright = fallback.table.percent;
  return kDone;
}

}  // namespace ZEPH_MCUC
