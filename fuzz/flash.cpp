// The flash of the fuzz targets, in the place of the board's files (see CMakeLists.txt): one store
// in memory. The factory's, which only a reset writes, take what comes.
#include <cstring>
#include <vector>

#include "board/stores.h"
#include "world.h"

namespace {

using Store = std::vector<std::uint8_t>;

const Store& NewStore() {
  static const Store bytes = [] {
    const std::string image = board::FactoryImage();
    return Store(image.begin(), image.end());
  }();
  return bytes;
}

Store& LiveStore() {
  static Store bytes = NewStore();
  return bytes;
}

bool Possible(std::uint32_t address, std::size_t length, const std::uint8_t* data) {
  return address <= board::kStoreSize && length <= board::kStoreSize - address &&
         (data != nullptr || length == 0);
}

// With no bytes there may be no place either.
void Move(std::uint8_t* to, const std::uint8_t* from, std::size_t length) {
  if (length != 0) std::memcpy(to, from, length);
}

// Takes the bytes and forgets them; a source that is too short is seen all the same.
std::int32_t Drop(std::uint32_t address, std::uint32_t length, const std::uint8_t* data) {
  static Store dropped(board::kStoreSize);
  if (!Possible(address, length, data)) return -1;
  Move(dropped.data(), data, length);
  return 0;
}

}  // namespace

namespace world {

void PutStore(std::uint32_t address, Bytes bytes) {
  Want(Possible(address, bytes.size(), bytes.data()));
  Move(LiveStore().data() + address, bytes.data(), bytes.size());
}

void ResetStore(std::uint32_t address, std::size_t length) {
  PutStore(address, Bytes(NewStore()).subspan(address, length));
}

}  // namespace world

extern "C" {

std::int32_t __wrap_Flash_Init() { return 0; }

std::int32_t __wrap_ReadDataFromFlashx(std::uint32_t address, std::uint32_t length,
                                       std::uint8_t* data) {
  if (!Possible(address, length, data)) return -1;
  Move(data, LiveStore().data() + address, length);
  return 0;
}

std::int32_t __wrap_WriteDataToFlashx(std::uint32_t address, std::uint32_t length,
                                      const std::uint8_t* data) {
  if (!Possible(address, length, data)) return -1;
  Move(LiveStore().data() + address, data, length);
  return 0;
}

std::int32_t __wrap_WriteDataToFactoryFlashx(std::uint32_t address, std::uint32_t length,
                                             const std::uint8_t* data) {
  return Drop(address, length, data);
}

std::int32_t __wrap_WriteDataToFactoryTmpFlashx(std::uint32_t address, std::uint32_t length,
                                                const std::uint8_t* data) {
  return Drop(address, length, data);
}
}
