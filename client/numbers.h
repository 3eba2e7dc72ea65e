// Numbers and bytes as people write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ctl {

// A number from 0 to `most`: 0x and hexadecimal digits, or decimal digits without a leading zero.
std::optional<std::uint64_t> ParseNumber(std::string_view word, std::uint64_t most);

// Bytes in hexadecimal, in words of one byte (`5`, `05`, `0x05`) or of several (`0a0b0c`).
std::optional<std::vector<std::uint8_t>> ParseBytes(const std::vector<std::string>& words);

// What is said about a word that is no address.
inline constexpr char kAddressRule[] =
    "ADDRESS is 0x and hexadecimal digits, or decimal without a leading zero, up to 0xFFFFFFFF";

// "0x%08X".
std::string AddressText(std::uint32_t address);

// Bytes as lower-case hexadecimal without blanks.
std::string HexText(const std::vector<std::uint8_t>& bytes);

// Bytes for people: sixteen a line behind their address, characters at the end.
std::string HexDump(std::uint32_t address, const std::vector<std::uint8_t>& bytes);

}  // namespace ctl
