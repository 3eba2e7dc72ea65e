#include "board/cards.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "board/board.h"
#include "board/cardfile.h"
#include "board/cells.h"
#include "board/files.h"
#include "board/folder.h"
#include "board/sensor.h"

namespace board {
namespace {

constexpr std::uint32_t kPageSize = 256;

// One card: a sparse memory, of which some bytes lie in the shared record.
class Card {
 public:
  Card(std::size_t type, std::byte* record) : type_(type), record_(record) {}

  bool TakesPart() const { return Byte(card_record::kTakesPart).load() == 1; }

  void CountPacket() {
    auto* const count = reinterpret_cast<std::uint32_t*>(record_ + card_record::kPackets);
    std::atomic_ref<std::uint32_t>(*count).fetch_add(1, std::memory_order_relaxed);
  }

  void Write(std::uint32_t first, std::span<const std::uint8_t> data) {
    for (std::size_t i = 0; i < data.size(); ++i) {
      const std::uint32_t at = first + static_cast<std::uint32_t>(i);
      pages_[at / kPageSize][at % kPageSize] = data[i];
    }
    ForFields(first, data.size(), [&](std::size_t offset, std::size_t i) {
      Byte(offset).store(data[i], std::memory_order_relaxed);
    });
    if (first == kSensorRegister) sensor_asked_ = IsSensorRequest(data);
  }

  void Read(std::uint32_t first, std::span<std::uint8_t> data) {
    if (type_ == kMultiFunction && sensor_asked_ && first == kSensorRegister &&
        data.size() == kSensorAnswerSize) {
      const auto answer = SensorAnswer();
      std::copy(answer.begin(), answer.end(), data.begin());
      return;
    }
    for (std::size_t i = 0; i < data.size(); ++i) {
      const std::uint32_t at = first + static_cast<std::uint32_t>(i);
      const auto page = pages_.find(at / kPageSize);
      data[i] = page == pages_.end() ? 0 : page->second[at % kPageSize];
    }
    ForFields(first, data.size(), [&](std::size_t offset, std::size_t i) {
      data[i] = Byte(offset).load(std::memory_order_relaxed);
    });
  }

 private:
  static constexpr std::size_t kReceiving = 1;
  static constexpr std::size_t kMultiFunction = 2;

  std::atomic_ref<std::uint8_t> Byte(std::size_t offset) const {
    return std::atomic_ref<std::uint8_t>(*reinterpret_cast<std::uint8_t*>(record_ + offset));
  }

  // Calls `move(offset in the record, index)` for each register of a run that lies in the record.
  template <typename Move>
  void ForFields(std::uint32_t first, std::size_t length, Move move) const {
    for (const CardField& field : kCardFields) {
      if (field.receiving_only && type_ != kReceiving) continue;
      for (std::size_t i = 0; i < field.length; ++i) {
        const std::uint32_t index = field.first + static_cast<std::uint32_t>(i) - first;
        if (index < length) move(field.offset + i, index);
      }
    }
  }

  std::size_t type_;
  std::byte* record_;
  std::map<std::uint32_t, std::array<std::uint8_t, kPageSize>> pages_;
  bool sensor_asked_ = false;
};

// All cards that are wired, by type and port.
class Wall {
 public:
  Wall() {
    CreateCards();
    const Settings& settings = Config();
    const std::size_t size = NewCardFile(settings).size();
    std::byte* record = MapShared(Folder() / "cards", size) + kCardHeaderSize;
    for (std::size_t type = 0; type < kDeviceTypes; ++type) {
      for (std::size_t port = 0; port < kPorts; ++port) {
        for (std::size_t i = 0; i < settings.devices[port][type]; ++i) {
          cards_[type][port].emplace_back(type + 1, record);
          record += kCardRecordSize;
        }
      }
    }
  }

  // Calls `visit(card)` for each card there that the address means.
  template <typename Visit>
  void ForCards(const CardAddress& address, Visit visit) {
    const std::lock_guard hold(lock_);
    if (address.device_type < 1 || address.device_type > kDeviceTypes) return;
    const bool all_ports = address.port == kAllPorts;
    auto& by_port = cards_[address.device_type - 1U];
    for (std::size_t port = 0; port < kPorts; ++port) {
      if (!all_ports && port != address.port) continue;
      auto& on_port = by_port[port];
      for (std::size_t board = 0; board < on_port.size(); ++board) {
        if (address.board != kAllBoards && board != address.board) continue;
        if (on_port[board].TakesPart()) visit(on_port[board]);
      }
    }
  }

 private:
  std::mutex lock_;
  std::array<std::array<std::vector<Card>, kPorts>, kDeviceTypes> cards_;
};

Wall& TheWall() {
  static Wall& wall = *std::make_unique<Wall>().release();
  return wall;
}

}  // namespace

void CreateCards() {
  const auto path = Folder() / "cards";
  const std::string fresh = NewCardFile(Config());
  const FileHandle lock = LockFolder(Folder());
  const auto file = ReadWhole(path);
  if (file && ListsSameCards(*file, fresh)) return;
  if (!ReplaceWhole(path, fresh)) Fail("cannot create " + path.string());
  if (file) SetLinks(Config());
}

void OpenCards() { TheWall(); }

void WriteCards(const CardAddress& to, std::uint32_t first, std::span<const std::uint8_t> data) {
  TheWall().ForCards(to, [&](Card& card) {
    card.CountPacket();
    card.Write(first, data);
  });
}

void TouchCards(const CardAddress& to) {
  TheWall().ForCards(to, [](Card& card) { card.CountPacket(); });
}

bool ReadCard(const CardAddress& from, std::uint32_t first, std::span<std::uint8_t> data) {
  if (from.port == kAllPorts || from.board == kAllBoards) return false;
  bool answered = false;
  TheWall().ForCards(from, [&](Card& card) {
    card.CountPacket();
    card.Read(first, data);
    answered = true;
  });
  return answered;
}

}  // namespace board
