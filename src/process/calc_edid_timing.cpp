#include "process/calc_edid_timing.h"

#include <algorithm>
#include <iterator>

#include "process/cvt.h"

namespace ZEPH_MCUC {
namespace {

constexpr int kTuningSteps = 100;
constexpr uint8_t kSeparateSync = 3;

// Rates that stand for a whole number of frames in 1.001 seconds.
constexpr uint16_t kFilmRates[] = {2398, 2997, 4795, 5994, 7193, 11988};

uint32_t Hertz(double value) {
  return value < 4294967295.0 ? static_cast<uint32_t>(value) : 0xFFFFFFFF;
}

uint16_t Word(int value) { return static_cast<uint16_t>(value); }

DetailedTiming TimingOfRow(const mode_table_t& row, uint16_t rate) {
  DetailedTiming timing{};
  timing.PixelClock = (uint32_t{rate} + 50) / 100 * row.h_total * row.v_total;
  if (std::find(std::begin(kFilmRates), std::end(kFilmRates), rate) != std::end(kFilmRates)) {
    timing.PixelClock = static_cast<uint32_t>(timing.PixelClock * 1000.0 / 1001.0);
  }
  timing.HorizActivePixels = Word(row.h_total - row.h_blanking);
  timing.HorizBlankingPixels = row.h_blanking;
  timing.VertActiveLines = Word(row.v_total - row.v_blanking);
  timing.VertBlankingLines = row.v_blanking;
  timing.HorizSyncOffset = Word(row.h_blanking - row.h_start);
  timing.HorizSyncPulseWidth = row.h_sync;
  timing.VertSyncOffset = Word(row.v_blanking - row.v_start);
  timing.VertSyncPulseWidth = row.v_sync;
  return timing;
}

DetailedTiming TimingOfCalculation(const cvt_mode& mode) {
  DetailedTiming timing{};
  timing.PixelClock = Hertz(mode.pclk * 1000000.0);
  timing.HorizActivePixels = Word(mode.hr);
  timing.HorizBlankingPixels = Word(mode.hfl - mode.hr);
  timing.VertActiveLines = Word(mode.vr);
  timing.VertBlankingLines = Word(mode.vfl - mode.vr);
  timing.HorizSyncOffset = Word(mode.hss - mode.hr);
  timing.HorizSyncPulseWidth = Word(mode.hse - mode.hss);
  timing.VertSyncOffset = Word(mode.vss - mode.vr);
  timing.VertSyncPulseWidth = Word(mode.vse - mode.vss);
  return timing;
}

uint8_t Low(unsigned value) { return static_cast<uint8_t>(value); }

// Bits 8 to 11 of two values in one byte.
uint8_t HighNibbles(unsigned high, unsigned low) {
  return Low((high >> 8 & 0x0F) << 4 | (low >> 8 & 0x0F));
}

uint16_t Joined(unsigned low, unsigned high) { return static_cast<uint16_t>(low | high << 8); }

}  // namespace

std::optional<ChosenTiming> ChooseTiming(uint16_t width, uint16_t height, uint16_t rate) {
  ChosenTiming chosen{{}, FindMode(width, height, static_cast<uint16_t>(rate / 10))};
  if (chosen.mode != INVALID_MODE) {
    chosen.timing = TimingOfRow(Modes()[chosen.mode], rate);
  } else {
    cvt_mode mode;
    const auto rate_Hz = static_cast<float>(rate / 100.0);
    if (!vert_refresh(width, height, rate_Hz, 0, 1, 0, 0, &mode)) return std::nullopt;
    chosen.timing = TimingOfCalculation(mode);
  }
  chosen.timing.SyncSignalDescription = kSeparateSync;
  return chosen;
}

uint16_t RateOf(const DetailedTiming& timing, uint32_t clock) {
  const double pixels = static_cast<double>(timing.vtotal()) * timing.htotal();
  if (pixels == 0) return 0;
  return static_cast<uint16_t>(static_cast<uint64_t>(clock * 10000.0 / pixels * 100.0));
}

uint32_t TuneClock(const DetailedTiming& timing, uint16_t rate) {
  auto clock = static_cast<uint32_t>((uint64_t{timing.PixelClock} + 5000) / kDescriptorClock_Hz);
  for (int i = 0; i < kTuningSteps; ++i) {
    const uint16_t now = RateOf(timing, clock);
    if (now == rate) break;
    clock = now > rate ? clock - 1 : clock + 1;
  }
  return clock;
}

bool FitsDescriptor(const DetailedTiming& timing, uint32_t clock) {
  const auto fits = [](unsigned value, unsigned least, unsigned most) {
    return value >= least && value <= most;
  };
  return fits(clock, 1, 0xFFFF) && fits(timing.HorizActivePixels, 1, 0xFFF) &&
         fits(timing.HorizBlankingPixels, 0, 0xFFF) && fits(timing.VertActiveLines, 1, 0xFFF) &&
         fits(timing.VertBlankingLines, 0, 0xFFF) && fits(timing.HorizSyncOffset, 0, 0x3FF) &&
         fits(timing.HorizSyncPulseWidth, 0, 0x3FF) && fits(timing.VertSyncOffset, 0, 0x3F) &&
         fits(timing.VertSyncPulseWidth, 0, 0x3F);
}

Descriptor EncodeDescriptor(const DetailedTiming& timing, uint32_t clock) {
  const DetailedTiming& t = timing;
  const unsigned syncs = (t.HorizSyncOffset >> 8 & 3U) << 6 |
                         (t.HorizSyncPulseWidth >> 8 & 3U) << 4 |
                         (t.VertSyncOffset >> 4 & 3U) << 2 | (t.VertSyncPulseWidth >> 4 & 3U);
  const unsigned flags = (t.StereoModeDecode & 1U) | (t.SyncSignalInfo & 3U) << 1 |
                         (t.SyncSignalDescription & 3U) << 3 | (t.StereoModeDecode >> 1 & 3U) << 5 |
                         (t.Interlaced ? 0x80U : 0U);
  return {Low(clock),
          Low(clock >> 8),
          Low(t.HorizActivePixels),
          Low(t.HorizBlankingPixels),
          HighNibbles(t.HorizActivePixels, t.HorizBlankingPixels),
          Low(t.VertActiveLines),
          Low(t.VertBlankingLines),
          HighNibbles(t.VertActiveLines, t.VertBlankingLines),
          Low(t.HorizSyncOffset),
          Low(t.HorizSyncPulseWidth),
          Low((t.VertSyncOffset & 0x0FU) << 4 | (t.VertSyncPulseWidth & 0x0FU)),
          Low(syncs),
          Low(t.HorizImageSize_mm),
          Low(t.VertImageSize_mm),
          HighNibbles(t.HorizImageSize_mm, t.VertImageSize_mm),
          t.HorizBorder,
          t.VertBorder,
          Low(flags)};
}

DetailedTiming DecodeDescriptor(std::span<const uint8_t, kDescriptorSize> bytes) {
  const auto& b = bytes;
  DetailedTiming t{};
  t.PixelClock = Joined(b[0], b[1]) * kDescriptorClock_Hz;
  t.HorizActivePixels = Joined(b[2], b[4] >> 4);
  t.HorizBlankingPixels = Joined(b[3], b[4] & 0x0F);
  t.VertActiveLines = Joined(b[5], b[7] >> 4);
  t.VertBlankingLines = Joined(b[6], b[7] & 0x0F);
  t.HorizSyncOffset = Joined(b[8], b[11] >> 6);
  t.HorizSyncPulseWidth = Joined(b[9], b[11] >> 4 & 3);
  t.VertSyncOffset = static_cast<uint16_t>(b[10] >> 4 | (b[11] >> 2 & 3) << 4);
  t.VertSyncPulseWidth = static_cast<uint16_t>((b[10] & 0x0F) | (b[11] & 3) << 4);
  t.HorizImageSize_mm = Joined(b[12], b[14] >> 4);
  t.VertImageSize_mm = Joined(b[13], b[14] & 0x0F);
  t.HorizBorder = b[15];
  t.VertBorder = b[16];
  t.StereoModeDecode = static_cast<uint8_t>((b[17] & 1) | (b[17] >> 5 & 3) << 1);
  t.SyncSignalInfo = b[17] >> 1 & 3;
  t.SyncSignalDescription = b[17] >> 3 & 3;
  t.Interlaced = (b[17] & 0x80) != 0;
  return t;
}

}  // namespace ZEPH_MCUC
