// What quivordctl's video commands read and say: modes, rectangles, EDIDs, pictures of scalings.
#include <gtest/gtest.h>
#include <platform/edid.h>

#include <algorithm>
#include <filesystem>

#include "support/board_kit.h"
#include "support/rounds.h"
#include "video/edid_facts.h"
#include "video/mode.h"
#include "video/scale_picture.h"

namespace quivord::video {
namespace {

using namespace ZEPH_MCUC;

TEST(VideoWords, ModesAndRectangles) {
  const std::pair<const char*, VideoMode> kModes[] = {
      {"1920x1080@59.94", VideoMode{1920, 1080, 5994}},
      {"1920x1080", VideoMode{1920, 1080, 6000}},
      {"1x1@0.01", VideoMode{1, 1, 1}},
      {"65535x65535@655.35", VideoMode{65535, 65535, 65535}},
      {"800x600@7.5", VideoMode{800, 600, 750}},
  };
  for (const auto& [text, mode] : kModes) EXPECT_EQ(ParseMode(text), mode) << text;
  for (const char* text : {"1920x1080@", "1920x1080@0", "1920x1080@655.36", "1920x1080@59.940",
                           "1920x1080@59.", "1920x1080@-60", "1920x1080@60Hz", "65536x1080",
                           "0x1080", "01920x1080", "1920", "1920x", "", "+5x5"}) {
    EXPECT_EQ(ParseMode(text), std::nullopt) << text;
  }
  EXPECT_EQ(ModeText({1920, 1080, 5994}), "1920 × 1080 at 59.94 Hz");

  const std::pair<const char*, const char*> kRectangles[] = {
      {"960x540", "960 × 540 at (0, 0)"},
      {"960x540+10-20", "960 × 540 at (10, -20)"},
      {"1x1-65535+65535", "1 × 1 at (-65535, 65535)"},
  };
  for (const auto& [text, wanted] : kRectangles) {
    const auto rectangle = ParseRectangle(text);
    EXPECT_EQ(rectangle ? RectangleText(*rectangle) : "", wanted) << text;
  }
  for (const char* text : {"960x540+10", "960x540+10+", "960x540+-10+5", "960x540 10 20",
                           "960x0+1+1", "960x540+1+99999", "960x540+1+1+1"}) {
    EXPECT_FALSE(ParseRectangle(text)) << text;
  }
}

EdidImage Template(EDIDTemplate_t which) {
  ModifyEDIDData_t request{};
  request.EDIDType = which;
  EdidImage image{};
  ModifyEDID_API.Modify_EDID(request, image.data());
  return image;
}

// Whatever mode is asked for, the device finds this one and no other, or nothing is made.
TEST(VideoWords, EdidForAModeSaysExactlyThatMode) {
  const EdidImage model = Template(HDMI_4K1K);
  int made = 0;
  const auto check = [&](const VideoMode& mode) {
    const auto image = EdidForMode(model, mode);
    if (!image) return;
    ++made;
    ASSERT_EQ(VerifyEdid(*image), EdidFault::kNone);
    ASSERT_EQ(PreferredMode(std::span(*image).first<edid::kRead>()), mode) << ModeText(mode);
  };
  for (const Resolution& size : Resolutions()) check({size.width, size.height, 6000});
  EXPECT_EQ(made, 22) << "every listed size at 60 Hz";
  support::Random random(88);
  for (int i = 0; i < 300; ++i) {
    check(
        {uint16_t(random(320, 4000)), uint16_t(random(240, 2200)), uint16_t(random(2300, 12100))});
  }
  EXPECT_GT(made, 200);
  EXPECT_FALSE(EdidForMode(model, {4095, 4095, 6000}).has_value());
  EXPECT_FALSE(EdidForMode(model, {1920, 1080, 0}).has_value());
}

TEST(VideoWords, FactsOfAnEdid) {
  const EdidImage image = Template(HDMI_4K1K);
  const auto facts = ReadEdid(image);
  ASSERT_TRUE(facts.has_value());
  EXPECT_EQ(FaultText(*facts), "");
  EXPECT_EQ(facts->name, "ZEPH HDMI1.4");
  EXPECT_EQ(facts->manufacturer, "ZEP");
  EXPECT_EQ(facts->timings.size(), 4U);
  EXPECT_EQ(TimingText(facts->timings[0]), "3840 × 1080 at 60.00 Hz, 266.640 MHz");
  EXPECT_EQ(facts->standard.size(), 6U);
  EXPECT_EQ(ModeText(facts->standard[3]), "1280 × 1024 at 60.00 Hz");
  EXPECT_EQ(facts->vics, (std::vector<unsigned>{16, 90, 31, 34}));
  EXPECT_TRUE(facts->hdmi && facts->basic_audio);
  EXPECT_EQ(ReadEdid(Template(DP_4K2K))->input, "digital DisplayPort, 8 bits a colour");
  EXPECT_EQ(ReadEdid(Template(VGA_2K1K))->input, "analog");
  EXPECT_FALSE(ReadEdid(std::span(image).first<127>()).has_value());

  EdidImage spoilt = image;
  spoilt[95] = 0xE9;  // the name's first letter is none that a text may hold
  EXPECT_NO_THROW(EdidJson(*ReadEdid(spoilt)).dump());
  spoilt = image;
  spoilt[130] ^= 0x80;
  EXPECT_EQ(FaultText(*ReadEdid(spoilt)), "the checksum of block 1 is wrong");
  spoilt[0] = 1;
  EXPECT_EQ(FaultText(*ReadEdid(spoilt)), "it doesn't begin as an EDID does");
}

TEST(VideoWords, PicturesOfScalings) {
  const std::pair<pos_t, const char*> kCases[] = {
      {{-200, 100, 2400, 1350}, ""},
      {{5000, 5000, 10, 10}, "nothing of the layer lies in the output region"},
      {{0, 0, 1, 1080}, "a width or height of one pixel can't be scaled"},
  };
  for (const auto& [layer, said] : kCases) {
    ScalePlan plan{
        .scaler = 0, .source = {0, 0, 640, 360}, .layer = layer, .output = {0, 0, 1920, 1080}};
    Calculate(plan);
    EXPECT_EQ(Obstacle(plan), said);
    for (const auto& [name, format] :
         {std::pair{"p.png", draw::Format::kPng}, {"p.svg", draw::Format::kSvg}}) {
      const auto file = board_kit::Named() / name;
      EXPECT_EQ(DrawScaling(plan, file, format), "");
      EXPECT_GT(std::filesystem::file_size(file), 1000U);
    }
  }
  ScalePlan plan{
      .scaler = 3, .source = {0, 0, 2, 2}, .layer = {0, 0, 4, 4}, .output = {0, 0, 4, 4}};
  Calculate(plan);
  EXPECT_NE(DrawScaling(plan, "/nowhere/p.png", draw::Format::kPng), "");
  EXPECT_EQ(PlanJson(plan)["back"]["image"].get<std::string>().size(), 84U);
}

}  // namespace
}  // namespace quivord::video
