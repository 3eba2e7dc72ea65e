// Video modes, timings and rectangles as people write and read them. Pure.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "process/calc_edid.h"
#include "process/scaler.h"

namespace quivord::video {

using ZEPH_MCUC::DetailedTiming;
using ZEPH_MCUC::VideoMode;

// "1920x1080@59.94", "1920x1080" for 60 Hz: sizes from 1 to 65535, rates from 0.01 to 655.35 Hz
// with at most two decimals. Nothing for any other text.
std::optional<VideoMode> ParseMode(std::string_view text);
inline constexpr char kModeRule[] =
    "a mode is WIDTHxHEIGHT@RATE, such as 1920x1080@59.94: sizes up to 65535, rates up to "
    "655.35 Hz with two decimals";

// "1920 × 1080 at 59.94 Hz"; "59.94 Hz".
std::string ModeText(const VideoMode& mode);
std::string RateText(double rate_Hz);

// "1920x1080", "1920x1080+10-20": a size, and where it begins, 0 if not said; up to 65535 each.
std::optional<ZEPH_MCUC::pos_t> ParseRectangle(std::string_view text);
inline constexpr char kRectangleRule[] =
    "a rectangle is WIDTHxHEIGHT or WIDTHxHEIGHT+X+Y, such as 960x540+0-20";
std::string RectangleText(const ZEPH_MCUC::pos_t& rectangle);

// The rate that clock and totals give, 0 for a timing without pixels.
double RateOf_Hz(const DetailedTiming& timing);

// "1920 × 1080 at 60.00 Hz, 148.50 MHz"; what lies around the picture; all of it for programs.
std::string TimingText(const DetailedTiming& timing);
std::string BlankingText(const DetailedTiming& timing);
nlohmann::ordered_json TimingJson(const DetailedTiming& timing);

// A client's EDID in which the device finds exactly this mode: a valid image of 256 bytes. Nothing
// where the device would find another one, or refuse it.
std::optional<ZEPH_MCUC::EdidImage> EdidForMode(const ZEPH_MCUC::EdidImage& model,
                                                const VideoMode& mode);

}  // namespace quivord::video
