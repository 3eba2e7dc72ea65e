// The client's side of configuration files: built from a description, laid out for a device.
#include <gtest/gtest.h>

#include "board/files.h"
#include "cardfiles/description.h"
#include "cardfiles/image.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/run.h"

namespace {

using namespace quivord::cardfiles;
namespace daemon_side = ZEPH_MCUC::cardfiles;

std::optional<Bytes> OneFile(const std::string& name) {
  if (name != "three.bin") return std::nullopt;
  return Bytes{1, 2, 3};
}

std::string Head(int packs) {
  char text[8];
  std::snprintf(text, sizeof text, "%02x%02x", packs & 0xFF, packs >> 8);
  return text + std::string(60, '0');
}

TEST(Description, BecomesPacks) {
  const std::pair<const char*, std::string> kCases[] = {
      {"0x02000001 99", Head(1) + "010000020000010099"},
      {"# nothing\n\n  7 1 0x2 0a0b   # bytes\n", Head(1) + "070000000000040001020a0b"},
      {"1 fill ee 3 wait 258", Head(1) + "0100000002010300eeeeee"},
      {"1 file three.bin\n2 fill 00 0", Head(2) + "01000000000003000102030200000000000000"},
  };
  for (const auto& [text, wanted] : kCases) {
    const auto bytes = Compile(text, OneFile);
    ASSERT_TRUE(bytes) << text << ": " << bytes.error().text;
    EXPECT_EQ(device::Hex(bytes.value()), wanted) << text;
    EXPECT_EQ(Check(bytes.value()).fault, "");
  }
}

TEST(Description, LongDataGoInSeveralPacksAndTheLastOneWaits) {
  const auto bytes = Compile("0x1000 fill 01 8200 wait 5", OneFile);
  ASSERT_TRUE(bytes);
  ZEPH_MCUC::CardPackReader reader(bytes.value());
  std::string packs;
  while (const auto pack = reader.Next()) {
    packs += std::to_string(pack->reg) + " " + std::to_string(pack->data.size()) + " " +
             std::to_string(pack->delay_ms) + "\n";
  }
  EXPECT_EQ(packs, "4096 4096 0\n8192 4096 0\n12288 8 5\n");
  EXPECT_EQ(Check(bytes.value()).pauses_ms, 3U * 15 + 16 * 10 + 5);
}

TEST(Description, FaultNamesItsLine) {
  struct Case {
    const char* text;
    const char* fault;
  };
  constexpr Case kCases[] = {
      {"", "no line"},
      {"1 02\nx 03", "line 2: 'x'"},
      {"1", "line 1: there are no bytes"},
      {"1 0xZZ", "line 1: bytes are hexadecimal"},
      {"1 fill 0102 3", "line 1: 'fill'"},
      {"1 fill 01 1048577", "line 1: 'fill'"},
      {"1 file four.bin", "line 1: four.bin can't be read"},
      {"1 02 wait 65536", "line 1: 'wait'"},
      {"1 wait 5 02", "line 1: 'wait'"},
      {"1 fill 00 1048576", "line 1: larger"},
  };
  for (const Case& c : kCases) {
    const auto bytes = Compile(c.text, OneFile);
    ASSERT_FALSE(bytes) << c.text;
    EXPECT_TRUE(bytes.error().text.starts_with(c.fault)) << bytes.error().text;
  }
}

// --- The image
// ------------------------------------------------------------------------------------

// A file of one pack, so many bytes long in all.
File Sized(std::size_t size, const std::string& name = "a") {
  return {name, Compile("1 fill 5a " + std::to_string(size - 40), OneFile).value()};
}

// A file of many packs; some bytes longer than `size`.
File Large(std::size_t size) {
  std::string text;
  for (std::size_t at = 0; at + 32 < size; at += 4104) text += "1 fill 5a 4096\n";
  return {"large", Compile(text, OneFile).value()};
}

TEST(Image, PiecesRebuildEveryFileFromItsFirstByte) {
  const std::vector<File> files = {Sized(2049, "first"), Sized(40, "second"), Sized(2048, "third")};
  ASSERT_EQ(Obstacle(files), std::nullopt);
  Bytes image(daemon_side::kImage, 0xFF);
  std::optional<ZEPH_MCUC::CardFileTable> table;
  std::vector<std::uint32_t> begun;
  for (const Piece& piece : Upload(files)) {
    ASSERT_LE(piece.bytes.size(), kPiece);
    const std::uint32_t offset = piece.reg - daemon_side::kBase;
    std::copy(piece.bytes.begin(), piece.bytes.end(), image.begin() + offset);
    if (offset == 0) table = ZEPH_MCUC::ReadCardFileHeader(piece.bytes);
    ASSERT_TRUE(table.has_value()) << "the header comes first";
    const auto entry = table->EntryOf(piece.reg);
    if (piece.reg <= daemon_side::kNamesLast) continue;
    ASSERT_TRUE(entry.has_value());
    if (piece.reg == table->address[*entry]) begun.push_back(table->index[*entry]);
  }
  EXPECT_EQ(begun, (std::vector<std::uint32_t>{0, 1, 2}));
  const std::span all(image);
  const auto entries = Entries(all.first(kHeaderBytes), all.subspan(0x800, kNamesBytes));
  ASSERT_EQ(entries.size(), files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    EXPECT_EQ(entries[i].name, files[i].name);
    const auto kept = all.subspan(entries[i].offset, entries[i].length);
    EXPECT_EQ(Bytes(kept.begin(), kept.end()), files[i].bytes);
  }
  EXPECT_EQ(device::Hex(all.first(2)), "0103");
  EXPECT_EQ(device::Hex(all.subspan(36, 8)), "0020000001080000");
  EXPECT_EQ(device::Hex(all.subspan(36 + 32, 4)), "00290000");
}

TEST(Image, FilesThatADeviceCannotKeepAreNamed) {
  const std::size_t room = daemon_side::kImage - kFirstFile;
  File cut = Sized(100, "cut.rcfgx");
  cut.bytes.pop_back();
  File fits = Large(room - 4104);
  fits.bytes.resize(room);  // what follows the packs is no fault
  File over = fits;
  over.bytes.push_back(0);
  struct Case {
    const char* name;
    std::vector<File> files;
    const char* says;  // empty for no obstacle
  };
  const Case kCases[] = {
      {"sixteen", std::vector<File>(16, Sized(40)), ""},
      {"seventeen", std::vector<File>(17, Sized(40)), "16 files, not 17"},
      {"longest name", {Sized(40, std::string(63, 'n'))}, ""},
      {"longer name", {Sized(40, std::string(64, 'n'))}, "more than 63 bytes"},
      {"cut", {Sized(40), cut}, "cut.rcfgx is no configuration file: pack 1 of 1"},
      {"no file at all", {{"x", Bytes(31)}}, "shorter than"},
      {"all there is room for", {fits}, ""},
      {"a byte more", {over}, "1 bytes more"},
  };
  for (const Case& c : kCases) {
    const std::string obstacle = Obstacle(c.files).value_or("");
    EXPECT_EQ(obstacle.empty(), *c.says == '\0') << c.name << ": " << obstacle;
    EXPECT_NE(obstacle.find(c.says), std::string::npos) << obstacle;
  }
}

TEST(Image, OtherHeadersListWhatCanBeTold) {
  Bytes header(kHeaderBytes, 0xFF);
  Bytes names(kNamesBytes, 0xFF);
  EXPECT_TRUE(Entries(header, names).empty()) << "a store that nobody wrote";
  header[1] = 1;
  const auto entries = Entries(header, names);
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0].name, "");
  EXPECT_EQ(entries[0].length, 0U);
  EXPECT_TRUE(Entries(std::span(header).first(100), names).empty());
  const Bytes removal = Removal().bytes;
  EXPECT_TRUE(Entries(removal, names).empty());
  EXPECT_EQ(device::Hex(std::span(removal).first(2)), "0100");
}

}  // namespace
