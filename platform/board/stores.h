// The three flash stores: flat files of 16 MiB in the board folder, a byte's place its address.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace board {

inline constexpr std::size_t kStoreSize = 16U << 20;

enum class Store : std::uint8_t { kLive, kFactory, kTmp };

inline constexpr std::array<std::string_view, 3> kStoreNames = {"live", "factory", "tmp"};

// Where it lies in the folder of this process.
const std::filesystem::path& StorePath(Store store);

// The content of a new factory store: 0xFF but for what a device of one card of 128 by 128 needs.
std::string FactoryImage();

// Creates the factory store and the live one, its copy, where they are missing.
void CreateStores();

// Fills short stores up to their size, with a warning. False where one is no plain file.
bool CheckStores();

// What the boot loader does when a factory reset was asked for: the temporary store becomes the
// live one or, where it is missing or short, a copy of the factory store does. False where neither
// can be.
bool TakeFactoryStore();

}  // namespace board
