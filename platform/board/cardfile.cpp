#include "board/cardfile.h"

namespace board {
namespace {

constexpr std::string_view kMagic = "QVCARDS1";

void PutNumber(std::string& text, std::size_t at, std::uint32_t number, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) text[at + i] = static_cast<char>(number >> (8 * i));
}

std::string NewRecord(const Settings& settings, std::size_t type, std::size_t port,
                      std::uint32_t board) {
  constexpr std::size_t kBrightBytes = 5;  // the global one and four colours
  std::string record(kCardRecordSize, '\0');
  PutNumber(record, card_record::kType, static_cast<std::uint32_t>(type + 1), 1);
  PutNumber(record, card_record::kPort, static_cast<std::uint32_t>(port), 1);
  PutNumber(record, card_record::kBoard, board, 2);
  if (type == 0) {
    PutNumber(record, card_record::kSize, settings.card_width, 2);
    PutNumber(record, card_record::kSize + 2, settings.card_height, 2);
  }
  record.replace(card_record::kBrightness, kBrightBytes, kBrightBytes, '\xFF');
  record[card_record::kTakesPart] = 1;
  return record;
}

}  // namespace

std::string NewCardFile(const Settings& settings) {
  std::string file(kCardHeaderSize, '\0');
  std::uint32_t count = 0;
  for (std::size_t type = 0; type < kDeviceTypes; ++type) {
    for (std::size_t port = 0; port < kPorts; ++port) {
      for (std::uint32_t board = 0; board < settings.devices[port][type]; ++board, ++count) {
        file += NewRecord(settings, type, port, board);
      }
    }
  }
  file.replace(0, kMagic.size(), kMagic);
  PutNumber(file, kMagic.size(), count, 4);
  PutNumber(file, kMagic.size() + 4, kCardRecordSize, 4);
  return file;
}

bool ListsSameCards(std::string_view file, std::string_view fresh) {
  if (file.size() != fresh.size()) return false;
  if (file.substr(0, kCardHeaderSize) != fresh.substr(0, kCardHeaderSize)) return false;
  for (std::size_t at = kCardHeaderSize; at < fresh.size(); at += kCardRecordSize) {
    if (file.substr(at, card_record::kSize) != fresh.substr(at, card_record::kSize)) return false;
  }
  return true;
}

}  // namespace board
