#include "video/mode.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace quivord::video {
namespace {

using namespace ZEPH_MCUC;

constexpr int kMostSize = 65535;
constexpr unsigned kMostRate = 65535;  // 0.01 Hz
constexpr int kMostWider = 256;        // pixels of blanking that are tried

template <class... Values>
std::string Format(const char* format, Values... values) {
  char text[160];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

// Takes a whole number without a leading zero off the front of `rest`.
std::optional<int> TakeNumber(std::string_view& rest, int most) {
  int number = 0;
  const auto [end, fault] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  const auto digits = static_cast<std::size_t>(end - rest.data());
  const bool padded = digits > 1 && rest.front() == '0';
  if (fault != std::errc() || rest.front() == '-' || padded || number > most) return std::nullopt;
  rest.remove_prefix(digits);
  return number;
}

bool Take(std::string_view& rest, char wanted) {
  if (rest.empty() || rest.front() != wanted) return false;
  rest.remove_prefix(1);
  return true;
}

struct Size {
  int width;
  int height;
};

std::optional<Size> TakeSize(std::string_view& rest) {
  const auto width = TakeNumber(rest, kMostSize);
  if (!width || !Take(rest, 'x')) return std::nullopt;
  const auto height = TakeNumber(rest, kMostSize);
  if (!height || *width == 0 || *height == 0) return std::nullopt;
  return Size{*width, *height};
}

// "59.94" as 5994.
std::optional<unsigned> TakeRate(std::string_view& rest) {
  const auto whole = TakeNumber(rest, kMostRate / 100);
  if (!whole) return std::nullopt;
  unsigned rate = static_cast<unsigned>(*whole) * 100;
  if (Take(rest, '.')) {
    if (rest.empty() || rest.size() > 2) return std::nullopt;
    for (unsigned place = 10; !rest.empty(); place /= 10) {
      if (rest.front() < '0' || rest.front() > '9') return std::nullopt;
      rate += static_cast<unsigned>(rest.front() - '0') * place;
      rest.remove_prefix(1);
    }
  }
  return rate;
}

// "+10" or "-20".
std::optional<int> TakePlace(std::string_view& rest) {
  const bool negative = !rest.empty() && rest.front() == '-';
  if (!negative && (rest.empty() || rest.front() != '+')) return std::nullopt;
  rest.remove_prefix(1);
  const auto number = TakeNumber(rest, kMostSize);
  if (!number) return std::nullopt;
  return negative ? -*number : *number;
}

EdidImage WithTiming(EdidImage image, const Descriptor& timing) {
  std::copy(timing.begin(), timing.end(), image.begin() + edid::kPreferred);
  image[edid::kSum] = BlockSum(std::span(image).first<edid::kBlock>());
  return image;
}

}  // namespace

std::optional<VideoMode> ParseMode(std::string_view text) {
  const auto size = TakeSize(text);
  unsigned rate = 6000;
  if (size && !text.empty()) {
    const auto said = Take(text, '@') ? TakeRate(text) : std::nullopt;
    rate = said.value_or(0);
  }
  if (!size || !text.empty() || rate == 0 || rate > kMostRate) return std::nullopt;
  return VideoMode{static_cast<uint16_t>(size->width), static_cast<uint16_t>(size->height),
                   static_cast<uint16_t>(rate)};
}

std::string RateText(double rate_Hz) { return Format("%.2f Hz", rate_Hz); }

std::string ModeText(const VideoMode& mode) {
  return Format("%u × %u at ", unsigned{mode.width}, unsigned{mode.height}) +
         RateText(mode.rate / 100.0);
}

std::optional<pos_t> ParseRectangle(std::string_view text) {
  const auto size = TakeSize(text);
  if (!size) return std::nullopt;
  if (text.empty()) return pos_t{0, 0, size->width, size->height};
  const auto x = TakePlace(text);
  const auto y = x ? TakePlace(text) : std::nullopt;
  if (!y || !text.empty()) return std::nullopt;
  return pos_t{*x, *y, size->width, size->height};
}

std::string RectangleText(const pos_t& rectangle) {
  return Format("%d × %d at (%d, %d)", rectangle.width, rectangle.height, rectangle.x, rectangle.y);
}

double RateOf_Hz(const DetailedTiming& timing) {
  const double pixels = static_cast<double>(timing.htotal()) * timing.vtotal();
  return pixels == 0 ? 0 : timing.PixelClock / pixels;
}

std::string TimingText(const DetailedTiming& timing) {
  return Format("%u × %u%s at ", unsigned{timing.HorizActivePixels},
                unsigned{timing.VertActiveLines}, timing.Interlaced ? " interlaced" : "") +
         RateText(RateOf_Hz(timing)) + Format(", %.3f MHz", timing.PixelClock / 1e6);
}

std::string BlankingText(const DetailedTiming& t) {
  const auto part = [](unsigned total, unsigned blank, unsigned front, unsigned sync) {
    return Format("%u (%u front, %u sync, %d back)", total, front, sync,
                  static_cast<int>(blank) - static_cast<int>(front + sync));
  };
  return "line " +
         part(t.htotal(), t.HorizBlankingPixels, t.HorizSyncOffset, t.HorizSyncPulseWidth) +
         ", frame " + part(t.vtotal(), t.VertBlankingLines, t.VertSyncOffset, t.VertSyncPulseWidth);
}

nlohmann::ordered_json TimingJson(const DetailedTiming& t) {
  return {{"pixel_clock_hz", t.PixelClock},
          {"rate_hz", RateOf_Hz(t)},
          {"interlaced", t.Interlaced},
          {"horizontal",
           {{"active", t.HorizActivePixels},
            {"blanking", t.HorizBlankingPixels},
            {"front_porch", t.HorizSyncOffset},
            {"sync", t.HorizSyncPulseWidth},
            {"total", t.htotal()},
            {"positive_sync", (t.SyncSignalInfo & 1) != 0}}},
          {"vertical",
           {{"active", t.VertActiveLines},
            {"blanking", t.VertBlankingLines},
            {"front_porch", t.VertSyncOffset},
            {"sync", t.VertSyncPulseWidth},
            {"total", t.vtotal()},
            {"positive_sync", (t.SyncSignalInfo & 2) != 0}}}};
}

std::optional<EdidImage> EdidForMode(const EdidImage& model, const VideoMode& mode) {
  const auto chosen = ChooseTiming(mode.width, mode.height, mode.rate);
  if (!chosen) return std::nullopt;
  DetailedTiming timing = chosen->timing;
  // Some published timings count their border as picture; what is meant is the size alone.
  timing.HorizActivePixels = mode.width;
  timing.VertActiveLines = mode.height;
  // A descriptor's clock goes by 10 kHz, so not every rate can be said with the same totals.
  for (int i = 0; i < kMostWider; ++i, ++timing.HorizBlankingPixels) {
    const uint32_t clock = TuneClock(timing, mode.rate);
    if (!FitsDescriptor(timing, clock)) return std::nullopt;
    const EdidImage image = WithTiming(model, EncodeDescriptor(timing, clock));
    if (PreferredMode(std::span(image).first<edid::kRead>()) == mode) return image;
  }
  return std::nullopt;
}

}  // namespace quivord::video
