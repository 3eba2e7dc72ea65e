// The table of named feature registers, their values in words, and reports in words.
#include "proto/feature_names.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>

#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"
#include "support/inprocess.h"
#include "support/rows.h"

namespace ZEPH_MCUC {
namespace {

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
  const std::map<FeatureForm, uint32_t> widths = {
      {FeatureForm::kChoice, 1}, {FeatureForm::kTime, 6}, {FeatureForm::kOffsets, 8}};
  ForAll([&](const FeatureRegister& row) {
    const std::string name = NameOf(&row);
    const auto width = widths.find(row.form);
    EXPECT_LE(row.offset + row.width, feature::kSize) << name;
    EXPECT_NE(std::string(row.meaning), "") << name;
    EXPECT_EQ(row.width, width == widths.end() ? row.width : width->second) << name;
    if (row.form == FeatureForm::kNumber) {
      EXPECT_LT(row.least, row.most) << name;
      EXPECT_LT(uint64_t{row.most}, uint64_t{1} << (8 * row.width)) << name;
    }
    if (row.form == FeatureForm::kPortBits) {
      EXPECT_LE(row.portBits.portsInByte * row.portBits.bitsOfPort, 8) << name;
      EXPECT_LE(row.portBits.firstPort + row.portBits.portsInByte * row.width, 16U) << name;
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

TEST(FeatureWords, ShowEveryForm) {
  for (const auto& row : support::Rows(3, R"(
      screen-width   | 8007         | 1920
      output         | 5a           | open
      output         | 5b           | 0x5b
      bypass         | 02           | service
      role           | a5           | slave
      input-mode     | 21           | 0x21
      fiber-to-net   | 01f0         | 0x01 0xf0
      link-0-3       | f5           | 0 2
      link-8-15      | 0801         | 11 12
      redundancy-4-7 | 82           | 4 7
      fiber-1-links  | 0180         | 0 15
      time           | 260703125909 | 2026-07-03 12:59:09
      time           | 261303125909 | 0x26 0x13 0x03 0x12 0x59 0x09
      bypass-offset  | ceffffff14000000 | -50,20
      bypass-offset  | ceff         |
    )")) {
    const auto* const name = FindFeature(row[0]);
    ASSERT_NE(name, nullptr) << row[0];
    EXPECT_EQ(FeatureText(*name, inprocess::Bytes(row[1].c_str())), row[2]) << row[0];
  }
}

TEST(ReportWords, SayWhatChanged) {
  for (const auto& row : support::Rows(3, R"(
      14000000 | 02       | ready: the FPGA is loaded and has its parameters
      01000002 | 01       | a factory reset begins, mode 1
      02100006 | 80004001 | size of the receiving cards: 128 x 320 px
      02100006 | 8000     |
      02810000 | c8       | the screen is configured by software
      02000001 | 7f       | brightness was sent to the receiving cards 127
      0200001F | 09       | ports with a copper link, of 0 to 3: 0 3
      020001F3 | 02       | ports with a link below fiber 1, of 8 to 15: 9
      02000018 | 00800000
        | port-0-role master, port-1-role backup, port-2-role master, port-3-role master
      020001F0 | ceffffff14000000 | bypass-offset -50,20 px
      020001DA | 03       | fiber-copy 0x03
      020001F8 | 01       | fiber-redundancy, byte 2: 0x01
      020001E1 | 80       | fiber-to-net, byte 1: 0x80
      0200009C | 01       | correction 1
      07000000 | 01       |
    )")) {
    const auto address = static_cast<uint32_t>(std::stoul(row[0], nullptr, 16));
    EXPECT_EQ(ReportText(address, inprocess::Bytes(row[1].c_str())), row[2]) << row[0];
  }
}

}  // namespace
}  // namespace ZEPH_MCUC
