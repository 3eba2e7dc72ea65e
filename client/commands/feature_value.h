// Values of feature registers as people and programs write them.
#pragma once

#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "proto/feature_names.h"

namespace ctl {

// A value on its way to the device.
struct Parsed {
  std::vector<std::uint8_t> bytes;  // what is written
  std::vector<std::uint8_t> shown;  // what a read gives once that has taken effect
  std::string fault;                // why `word` is no value; empty where it is one
};

// Understands `word` as a value of `row`, in the form in which values are shown; numbers may be 0x
// and hexadecimal digits too.
Parsed ParseFeature(const ZEPH_MCUC::FeatureRegister& row, std::string_view word);

// Six BCD bytes from "2026-07-03 12:00:00", a T in place of the blank and seconds left out as well;
// empty for anything that is no time from 2000 to 2099.
std::vector<std::uint8_t> ParseTime(std::string_view word);

// The moment that six BCD bytes name, without a time zone; 1970 where they are no time.
std::chrono::sys_seconds TimePoint(std::span<const std::uint8_t> bcd);

// The value with its unit, for people.
std::string ValueText(const ZEPH_MCUC::FeatureRegister& row, std::span<const std::uint8_t> bytes);

// The value for programs: numbers, names and times as such, ports and offsets as lists.
nlohmann::json ValueJson(const ZEPH_MCUC::FeatureRegister& row,
                         std::span<const std::uint8_t> bytes);

}  // namespace ctl
