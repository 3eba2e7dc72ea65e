// Where a client stands: the board that is meant, and the words for tasks of its bus and for
// devices behind it.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include "quivord/messages.h"

namespace quivord::access {

// A board folder, and what its configuration says of the bus. A board that isn't there yet, or a
// configuration that the daemon would refuse, is the daemon's to tell.
struct Place {
  std::filesystem::path board;
  std::uint8_t slot = 0;
  std::uint32_t speed = 1;  // of the board's clock
};

// The board in folder `named`; where that is empty, the one that the daemon would take.
Place FindPlace(const std::filesystem::path& named);

template <class Value>
struct Word {
  const char* word;
  Value value;
};

inline constexpr std::array<Word<std::uint32_t>, 3> kTasks = {
    {{"owd", ZEPH_MCUC::task::kOwd},
     {"kye", ZEPH_MCUC::task::kKye},
     {"moirad", ZEPH_MCUC::task::kMoirad}}};

inline constexpr std::array<Word<ZEPH_MCUC::JSHL_ProtoDeviceType_e>, 5> kDevices = {{
    {"sender", ZEPH_MCUC::JSHL_TypeSender},
    {"receiver", ZEPH_MCUC::JSHL_TypeReceiver},
    {"multi", ZEPH_MCUC::JSHL_TypeMultiFunc},
    {"distribute", ZEPH_MCUC::JSHL_TypeDistribute},
    {"launcher", ZEPH_MCUC::JSHL_TypeLauncher3D},
}};

template <class Value, std::size_t N>
std::optional<Value> Look(const std::array<Word<Value>, N>& words, std::string_view word) {
  for (const auto& candidate : words) {
    if (word == candidate.word) return candidate.value;
  }
  return std::nullopt;
}

}  // namespace quivord::access
