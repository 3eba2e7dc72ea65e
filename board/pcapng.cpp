#include "pcapng.h"

#include <string>
#include <vector>

namespace board_tool {
namespace {

constexpr std::uint32_t kSectionBlock = 0x0A0D0D0A;
constexpr std::uint32_t kInterfaceBlock = 1;
constexpr std::uint32_t kPacketBlock = 6;
constexpr std::uint32_t kByteOrder = 0x1A2B3C4D;  // read back as it is, the file's order is known
constexpr std::uint16_t kMajor = 1;
constexpr std::uint16_t kMinor = 0;
constexpr std::uint64_t kUnknownSize = UINT64_MAX;
constexpr std::uint32_t kNoLimit = 0;

constexpr std::uint16_t kNameOption = 2;         // of an interface
constexpr std::uint16_t kApplicationOption = 4;  // of a section
constexpr std::uint16_t kFlagsOption = 2;        // of a packet
constexpr std::uint16_t kEndOption = 0;

// A block as it grows. Numbers are little-endian, what has another length than a multiple of four
// is filled up.
class Block {
 public:
  void Number(std::uint64_t number, int bytes) {
    for (int i = 0; i < bytes; ++i) bytes_.push_back(static_cast<char>(number >> (8 * i)));
  }
  void Bytes(const void* data, std::size_t size) {
    bytes_.append(static_cast<const char*>(data), size);
    bytes_.append((4 - size % 4) % 4, '\0');
  }
  void Option(std::uint16_t code, std::string_view value) {
    Number(code, 2);
    Number(value.size(), 2);
    Bytes(value.data(), value.size());
  }

  // The block with its type in front and its length at both ends.
  std::string Whole(std::uint32_t type) const {
    Block whole;
    const auto length = bytes_.size() + 12;
    whole.Number(type, 4);
    whole.Number(length, 4);
    whole.bytes_ += bytes_;
    whole.Number(length, 4);
    return whole.bytes_;
  }

 private:
  std::string bytes_;
};

void Put(std::FILE* stream, const std::string& block) {
  std::fwrite(block.data(), 1, block.size(), stream);  // the stream remembers a fault until Flush
}

}  // namespace

Pcapng::Pcapng(std::FILE* stream, std::uint16_t link_type, std::string_view name)
    : stream_(stream) {
  Block section;
  section.Number(kByteOrder, 4);
  section.Number(kMajor, 2);
  section.Number(kMinor, 2);
  section.Number(kUnknownSize, 8);
  section.Option(kApplicationOption, "quivord-board");
  section.Option(kEndOption, "");
  Put(stream_, section.Whole(kSectionBlock));
  Block interface;
  interface.Number(link_type, 2);
  interface.Number(0, 2);
  interface.Number(kNoLimit, 4);
  interface.Option(kNameOption, name);
  interface.Option(kEndOption, "");
  Put(stream_, interface.Whole(kInterfaceBlock));
}

void Pcapng::Add(std::int64_t at_us, Direction direction, std::span<const std::uint8_t> packet) {
  const auto time = static_cast<std::uint64_t>(at_us);
  const char flags[4] = {static_cast<char>(direction), 0, 0, 0};
  Block block;
  block.Number(0, 4);  // the interface
  block.Number(time >> 32, 4);
  block.Number(time, 4);
  block.Number(packet.size(), 4);  // as kept and as it was
  block.Number(packet.size(), 4);
  block.Bytes(packet.data(), packet.size());
  block.Option(kFlagsOption, {flags, sizeof flags});
  block.Option(kEndOption, "");
  Put(stream_, block.Whole(kPacketBlock));
}

bool Pcapng::Flush() { return std::fflush(stream_) == 0 && std::ferror(stream_) == 0; }

}  // namespace board_tool
