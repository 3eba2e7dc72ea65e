// The table of named feature registers, their values in words, and reports in words.
#include "proto/feature_names.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>

#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"

namespace ZEPH_MCUC {
namespace {

using Bytes = std::vector<uint8_t>;
using enum FeaturePlace;

std::string NameOf(const FeatureRegister* row) {
  return row == nullptr ? "none" : std::string(std::string_view(row->name));
}

template <class Visit>
void ForAll(Visit visit) {
  for (const FeatureGroup& group : FeatureGroups()) {
    for (const FeatureRegister& row : group.registers) visit(row);
  }
}

TEST(FeatureNames, AreWellFormedAndFoundAgain) {
  const std::regex shape("[a-z0-9]+(-[a-z0-9]+)*");
  int count = 0;
  ForAll([&](const FeatureRegister& row) {
    ++count;
    EXPECT_TRUE(std::regex_match(NameOf(&row), shape)) << NameOf(&row);
    EXPECT_EQ(FindFeature(row.name), &row) << "there are two of " << NameOf(&row);
  });
  EXPECT_GT(count, 16 * 5);
  EXPECT_EQ(FindFeature("no-such"), nullptr);
  EXPECT_EQ(NameOf(FindPortFeature(15, "offset-x")), "port-15-offset-x");
  EXPECT_EQ(FindPortFeature(16, "width"), nullptr);
  EXPECT_EQ(FindPortFeature(-1, "width"), nullptr);
  EXPECT_EQ(FindPortFeature(3, "a-suffix-longer-than-any-name"), nullptr);
}

TEST(FeatureNames, FormsFitTheirBytes) {
  ForAll([](const FeatureRegister& row) {
    const std::string name = NameOf(&row);
    EXPECT_LE(row.offset + row.width, feature::kSize) << name;
    EXPECT_NE(std::string(row.meaning), "") << name;
    switch (row.form) {
      case FeatureForm::kNumber:
        EXPECT_LT(row.least, row.most) << name;
        EXPECT_LT(uint64_t{row.most}, uint64_t{1} << (8 * row.width)) << name;
        break;
      case FeatureForm::kChoice:
        EXPECT_EQ(row.width, 1U) << name;
        EXPECT_FALSE(row.choices.empty()) << name;
        break;
      case FeatureForm::kPortBits:
        EXPECT_LE(row.portBits.portsInByte * row.portBits.bitsOfPort, 8) << name;
        EXPECT_LE(row.portBits.firstPort + row.portBits.portsInByte * row.width, 16U) << name;
        break;
      case FeatureForm::kTime:
        EXPECT_EQ(row.width, 6U) << name;
        break;
      case FeatureForm::kOffsets:
        EXPECT_EQ(row.width, 8U) << name;
        break;
      case FeatureForm::kBytes:
        break;
    }
  });
}

// Two names for one byte are a slip, but for the one byte that has two meanings.
TEST(FeatureNames, OverlapNowhereButInTheTestByte) {
  std::map<std::pair<FeaturePlace, uint32_t>, std::string> taken;
  ForAll([&](const FeatureRegister& row) {
    for (uint32_t at = row.offset; at < row.offset + row.width; ++at) {
      const auto [other, is_new] = taken.try_emplace({row.place, at}, NameOf(&row));
      if (!is_new) {
        EXPECT_EQ(other->second + " " + NameOf(&row), "test-mode screen-height");
      }
    }
  });
}

TEST(FeatureNames, StandAtTheirOffsets) {
  const struct {
    const char* name;
    uint32_t offset;
    uint32_t width;
    FeaturePlace place;
  } cases[] = {
      {"time", 0x11, 6, kImage},
      {"role", 0x9D, 1, kImage},
      {"output", 0x1DE, 1, kCell},
      {"uart-overtime", 0x3F, 1, kImage},
      {"real-height", 0x26, 2, kImage},
      {"screen-width", 0x1EC, 2, kImage},
      {"bypass", 0x1F8, 1, kImage},
      {"bypass-offset", 0x1F0, 8, kImage},
      {"fiber-2-links", 0x1F4, 2, kCell},
      {"redundancy-8-15", 0x120, 2, kCell},
      {"port-4-width", 0xB1, 2, kImage},
      {"port-8-role", 0x100, 1, kImage},
      {"port-12-height", 0x157, 2, kImage},
      {"port-15-offset-y", 0x176, 2, kImage},
  };
  for (const auto& test : cases) {
    const FeatureRegister* row = FindFeature(test.name);
    ASSERT_NE(row, nullptr) << test.name;
    EXPECT_EQ(row->offset, test.offset) << test.name;
    EXPECT_EQ(row->width, test.width) << test.name;
    EXPECT_EQ(row->place, test.place) << test.name;
  }
}

TEST(FeatureNames, AreFoundByOffset) {
  EXPECT_EQ(NameOf(FindFeatureAt(kImage, 0x1F0)), "bypass-offset");
  EXPECT_EQ(NameOf(FindFeatureAt(kImage, 0x1F3)), "bypass-offset");
  EXPECT_EQ(NameOf(FindFeatureAt(kCell, 0x1F3)), "fiber-1-links");
  EXPECT_EQ(NameOf(FindFeatureAt(kImage, 0x1EF)), "test-mode");
  EXPECT_EQ(NameOf(FindFeatureAt(kImage, 0x1ED)), "screen-width");
  EXPECT_EQ(FindFeatureAt(kImage, 0x00), nullptr);
  EXPECT_EQ(FindFeatureAt(kCell, 0x200), nullptr);
}

TEST(FeatureWords, ShowEveryForm) {
  const struct {
    const char* name;
    Bytes bytes;
    const char* text;
  } cases[] = {
      {"screen-width", {0x80, 0x07}, "1920"},
      {"output", {0x5A}, "open"},
      {"output", {0x5B}, "0x5b"},
      {"bypass", {2}, "service"},
      {"role", {0xA5}, "slave"},
      {"input-mode", {0x21}, "0x21"},
      {"fiber-to-net", {0x01, 0xF0}, "0x01 0xf0"},
      {"link-0-3", {0xF5}, "0 2"},
      {"link-8-15", {0x08, 0x01}, "11 12"},
      {"link-4-7", {0x00}, "none"},
      {"redundancy-4-7", {0x82}, "4 7"},
      {"redundancy-0-3", {0x55}, "none"},
      {"fiber-1-links", {0x01, 0x80}, "0 15"},
      {"time", {0x26, 0x07, 0x03, 0x12, 0x59, 0x09}, "2026-07-03 12:59:09"},
      {"time", {0x26, 0x13, 0x03, 0x12, 0x59, 0x09}, "0x26 0x13 0x03 0x12 0x59 0x09"},
      {"bypass-offset", {0xCE, 0xFF, 0xFF, 0xFF, 0x14, 0, 0, 0}, "-50,20"},
      {"bypass-offset", {0xCE, 0xFF}, ""},
      {"output", {}, ""},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(FeatureText(*FindFeature(test.name), test.bytes), test.text) << test.name;
  }
}

TEST(FeatureWords, TellWhatARegisterTakes) {
  const struct {
    const char* name;
    const char* range;
  } cases[] = {
      {"uart-overtime", "2 to 119 s"},
      {"power-on-time", "0 to 254"},
      {"bypass", "off, on, service (shown only)"},
      {"link-8-15", "ports 8 to 15"},
      {"input-mode", "a byte, as 0x20"},
  };
  for (const auto& test : cases) EXPECT_EQ(FeatureRange(*FindFeature(test.name)), test.range);
}

TEST(ReportWords, SayWhatChanged) {
  const struct {
    uint32_t address;
    Bytes data;
    const char* text;
  } cases[] = {
      {0x14000000, {2}, "ready: the FPGA is loaded and has its parameters"},
      {0x01000002, {1}, "a factory reset begins, mode 1"},
      {0x02100006, {0x80, 0x00, 0x40, 0x01}, "size of the receiving cards: 128 x 320 px"},
      {0x02810000, {0xC8}, "the screen is configured by software"},
      {0x02000001, {0x7F}, "brightness was sent to the receiving cards 127"},
      {0x0200001F, {0x09}, "ports with a copper link, of 0 to 3: 0 3"},
      {0x02000126, {0x01, 0x08}, "ports with a copper link, of 8 to 15: 8 15"},
      {0x020001F3, {0x02}, "ports with a link below fiber 1, of 8 to 15: 9"},
      {0x020001F4, {0x00}, "ports with a link below fiber 2, of 0 to 7: none"},
      {0x02000018,
       {0, 0x80, 0, 0},
       "port-0-role master, port-1-role backup, port-2-role master, port-3-role master"},
      {0x020001F0, {0xCE, 0xFF, 0xFF, 0xFF, 0x14, 0, 0, 0}, "bypass-offset -50,20 px"},
      {0x020001DA, {0x03}, "fiber-copy 0x03"},
      {0x020001F8, {0x01}, "fiber-redundancy, byte 2: 0x01"},
      {0x020001E1, {0x80}, "fiber-to-net, byte 1: 0x80"},
      {0x020001FB, {0x01, 0x00}, ""},  // runs into a byte without a name
      {0x0200009C, {0x01}, "correction 1"},
      {0x02100006, {0x80, 0x00}, ""},
      {0x02000200, {0x01}, ""},
      {0x07000000, {0x01}, ""},
      {0x0200001F, {}, ""},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(ReportText(test.address, test.data), test.text) << std::hex << test.address;
  }
}

}  // namespace
}  // namespace ZEPH_MCUC
