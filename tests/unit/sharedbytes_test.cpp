// Bytes that threads share, hexadecimal text and shell words.
#include <gtest/gtest.h>

#include <array>

#include "mcucutil.h"
#include "support/board_kit.h"

namespace {

using namespace ZEPH_MCUC;

TEST(SharedBytes, RangesAreCutToTheArray) {
  SharedBytes<8> bytes;
  bytes.write(0, std::array<uint8_t, 8>{1, 2, 3, 4, 5, 6, 7, 8});
  bytes.write(6, std::array<uint8_t, 4>{17, 18, 19, 20});
  bytes.write(9, std::array<uint8_t, 1>{21});
  EXPECT_EQ(bytes.snapshot<8>(0), (std::array<uint8_t, 8>{1, 2, 3, 4, 5, 6, 17, 18}));
  EXPECT_EQ(bytes.snapshot<4>(6), (std::array<uint8_t, 4>{17, 18, 0, 0}));
  std::array<uint8_t, 4> into = {9, 9, 9, 9};
  bytes.read(6, into);
  EXPECT_EQ(into, (std::array<uint8_t, 4>{17, 18, 9, 9}));
}

TEST(SharedBytes, ValuesAreLittleEndian) {
  SharedBytes<8> bytes;
  bytes.setU16(1, 0xA1B2);
  bytes.setU32(3, 0xC3D4E5F6);
  EXPECT_EQ(bytes.snapshot<8>(0),
            (std::array<uint8_t, 8>{0, 0xB2, 0xA1, 0xF6, 0xE5, 0xD4, 0xC3, 0}));
  EXPECT_EQ(bytes.u16(1), 0xA1B2);
  EXPECT_EQ(bytes.u32(3), 0xC3D4E5F6);
}

TEST(Bytes2String, WritesWholeTextsOnly) {
  struct Case {
    int length, max, result;
    const char* text;
  };
  constexpr Case kCases[] = {{3, 10, 9, "0F A0 FF "}, {3, 9, 0, ""}, {1, 4, 3, "0F "},
                             {0, 10, 0, ""},          {1, 1, 0, ""}, {-1, 10, 0, ""}};
  constexpr uint8_t kBytes[] = {0x0F, 0xA0, 0xFF};
  for (const Case& c : kCases) {
    char text[16] = "untouched";
    EXPECT_EQ(Bytes2String(kBytes, c.length, text, c.max), c.result) << c.length << " " << c.max;
    EXPECT_STREQ(text, c.text);
  }
  char text[4] = "abc";
  EXPECT_EQ(Bytes2String(nullptr, 1, text, 4), 0);
  EXPECT_STREQ(text, "");
}

TEST(ShellQuote, GivesTheShellOneWordAsItIs) {
  for (const char* word : {"plain", "", "two words", "it's", "''", "$(id) `id` $HOME", "a\\b\"c",
                           "; rm -r x", "star*", "line\nbreak"}) {
    const auto ran = board_kit::RunCommand("printf '[%s]' " + ShellQuote(word));
    EXPECT_EQ(ran.output, std::string("[") + word + "]");
  }
}

}  // namespace
