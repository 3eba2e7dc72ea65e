// Descriptors, images for a mode, what is taken from a client's image, and what a checker of EDIDs
// says about all that the device shows.
#include "process/calc_edid.h"

#include <gtest/gtest.h>
#include <platform/edid.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "process/calc_inputsource.h"
#include "support/board_kit.h"
#include "support/inprocess.h"

namespace ZEPH_MCUC {
namespace {

using inprocess::Bytes;

std::vector<uint8_t> DescriptorFor(uint16_t width, uint16_t height, uint16_t rate) {
  const auto chosen = ChooseTiming(width, height, rate);
  if (!chosen) return {};
  const Descriptor bytes = EncodeDescriptor(chosen->timing, TuneClock(chosen->timing, rate));
  return {bytes.begin(), bytes.end()};
}

TEST(Edid, DescriptorsOfKnownModes) {
  EXPECT_EQ(DescriptorFor(1920, 1080, 6000),
            Bytes("02 3A 80 18 71 38 2D 40 58 2C 45 00 00 00 00 00 00 18"));
  // One step above what 1000 / 1001 gives: that clock's rate is 59.93 Hz when cut.
  EXPECT_EQ(DescriptorFor(1920, 1080, 5994),
            Bytes("F4 39 80 18 71 38 2D 40 58 2C 45 00 00 00 00 00 00 18"));
  // Calculated: a listed size at a rate without a row, and a size in no list.
  EXPECT_EQ(DescriptorFor(1920, 1080, 5000),
            Bytes("42 2D 80 A0 70 38 22 40 30 20 75 04 00 00 00 00 00 18"));
  EXPECT_EQ(DescriptorFor(1000, 1000, 6000),
            Bytes("40 1C E8 A0 30 E8 27 30 30 20 7A 04 00 00 00 00 00 18"));
  EXPECT_TRUE(DescriptorFor(1920, 1080, 0).empty());
  EXPECT_TRUE(DescriptorFor(0, 0, 6000).empty());

  EXPECT_EQ(ChooseTiming(1920, 1080, 5994)->timing.PixelClock, 148351648U);
  EXPECT_EQ(ChooseTiming(1920, 1080, 6000)->mode, MD_1920X1080_60);
  EXPECT_EQ(ChooseTiming(1920, 1080, 6049)->timing.PixelClock, 148500000U) << "whole hertz";
  EXPECT_EQ(ChooseTiming(1920, 1080, 6050)->mode, INVALID_MODE);
  EXPECT_EQ(ChooseTiming(65535, 65535, 65535)->timing.PixelClock, 0xFFFFFFFFU)
      << "cut, not wrapped";
}

TEST(Edid, ClockIsTunedByAHundredStepsAtMost) {
  struct Case {
    uint16_t width, height, rate;
    uint32_t clock;
  };
  constexpr Case kCases[] = {{1920, 1080, 5994, 14836},
                             {1920, 1080, 5960, 14753},  // 97 steps down
                             {1920, 1080, 6049, 14950},  // 121 would be needed
                             {640, 480, 5994, 2517}};    // to and fro: no clock has this rate
  for (const Case& c : kCases) {
    EXPECT_EQ(TuneClock(ChooseTiming(c.width, c.height, c.rate)->timing, c.rate), c.clock);
  }
}

// --- Images
// ---------------------------------------------------------------------------------------

ModifyEDIDData_t RequestAsTheDaemon(bool dvi) {
  ModifyEDIDData_t request{};
  request.EDIDType = HDMI_4K1K;
  request.ModifyState = dvi ? 15 : 14;
  request.InterfaceType = Typ_HDMI_a;
  request.ColorDepth = Col_8Bit;
  const std::string_view name = dvi ? "ZEPH DUAL_DVI" : "";
  std::copy(name.begin(), name.end(), request.ProductName);
  return request;
}

EdidImage Made(const ModifyEDIDData_t& request) {
  EdidImage image{};
  EXPECT_EQ(ModifyEDID_API.Modify_EDID(request, image.data()), 0);
  return image;
}

std::string_view Text(const EdidImage& image) {
  return {reinterpret_cast<const char*>(image.data()), image.size()};
}

TEST(Edid, TakesTheModeOfAClientsFirstTiming) {
  struct Case {
    const char* bytes;  // 54 to 61
    std::optional<VideoMode> mode;
  };
  const Case kCases[] = {
      {"02 3A 80 18 71 38 2D 40", VideoMode{1920, 1080, 6000}},
      {"F4 39 80 18 71 38 2D 40", VideoMode{1920, 1080, 5994}},
      {"28 68 00 A0 F0 38 1F 40", VideoMode{3840, 1080, 6000}},
      {"08 E8 00 30 F2 70 5A 80", VideoMode{3840, 2160, 6000}},
      {"00 00 00 00 00 00 00 00", std::nullopt},
      {"00 00 80 18 71 38 2D 40", std::nullopt},  // no clock
      {"02 3A 00 18 01 38 2D 40", std::nullopt},  // no pixels
      {"FF FF 10 00 00 10 00 00", std::nullopt},  // 2.56 MHz frames
      {"01 00 80 18 71 38 2D 40", std::nullopt},  // 0.4 hundredths of a hertz
      {"FF FF FF 00 F0 FF 00 F0", std::nullopt},  // its own timing would need a faster clock
  };
  for (const Case& c : kCases) {
    std::array<uint8_t, edid::kRead> image{};
    const auto bytes = Bytes(c.bytes);
    std::copy(bytes.begin(), bytes.end(), image.begin() + edid::kPreferred);
    EXPECT_EQ(PreferredMode(image), c.mode) << c.bytes;
  }
}

// --- Against a checker of EDIDs
// -------------------------------------------------------------------

class Checker : public testing::Test {
 protected:
  void SetUp() override {
    if (board_kit::RunCommand("command -v edid-decode").status != 0) {
      GTEST_SKIP() << "edid-decode is not installed";
    }
  }

  void Add(const std::string& name, const EdidImage& image) {
    const std::size_t size = image[edid::kExtensions] == 0 ? edid::kBlock : edid::kSize;
    board_kit::Put("edids/" + name, std::string(Text(image).substr(0, size)));
    ++images_;
  }

  // The names of those that fail, each with what is wrong; then none is left.
  std::string Failures() {
    EXPECT_GT(std::exchange(images_, 0), 0);
    return board_kit::RunCommand("cd " + board_kit::Named().string() +
                                 "/edids && for f in *; do edid-decode --check \"$f\" >../verdict; "
                                 "grep -q 'conformity: PASS' ../verdict || { echo \"$f\"; "
                                 "sed -n '/^Failures/,/^EDID/p' ../verdict; }; rm \"$f\"; done")
        .output;
  }

 private:
  int images_ = 0;
};

TEST_F(Checker, AcceptsEveryTemplateWithEveryInterfaceAndColour) {
  for (int which = HDMI_2K1K; which <= HDMI2DP_4K2K; ++which) {
    ModifyEDIDData_t request{};
    request.EDIDType = static_cast<EDIDTemplate_t>(which);
    const std::string name = "template-" + std::to_string(which);
    Add(name, Made(request));
    request.ModifyState = 15;
    std::copy_n("A name of 13.", 13, request.ProductName);
    request.InterfaceType = static_cast<InterfaceType_t>(which % 6);
    request.ColorSpace = static_cast<ColorSpace_t>(which % 4);
    request.ColorDepth = static_cast<ColorDepth_t>(which % 7);
    const EdidImage image = Made(request);
    EXPECT_EQ(VerifyEdid(image), EdidFault::kNone);
    EXPECT_NE(Text(image).find("A name of 13."), std::string_view::npos);
    Add(name + "-modified", image);
  }
  EXPECT_EQ(Failures(), "");
}

// All rows of the mode table, sizes and rates that are calculated, rates between rows. One row's
// front porch is 0, which no descriptor may have.
TEST_F(Checker, AcceptsEveryModeButTheOneWithoutFrontPorch) {
  std::vector<VideoMode> modes = {
      {1920, 1080, 5994},  {1920, 1080, 5000}, {1920, 1080, 2398}, {1920, 1080, 2997},
      {1280, 720, 11988},  {960, 540, 7193},   {2048, 1080, 4795}, {3840, 1080, 6000},
      {2560, 1600, 6000},  {3840, 2160, 3000}, {4095, 2160, 6000}, {1920, 1080, 14400},
      {1920, 1080, 24000}, {1000, 1000, 6000}, {1234, 567, 8901},  {800, 600, 12345},
      {640, 480, 5000},    {1920, 1200, 5000}, {3840, 2160, 5994}, {2400, 600, 6001},
  };
  for (const mode_table_t& row : Modes()) {
    const Resolution size = Resolutions()[row.en_res_idx];
    modes.push_back({size.width, size.height, static_cast<uint16_t>(row.v_freq * 10)});
  }
  constexpr VideoMode kNoFrontPorch{800, 600, 7500};  // row 9, MD_800X600_75
  for (const bool dvi : {false, true}) {
    const EdidImage model = Made(RequestAsTheDaemon(dvi));
    for (const VideoMode& mode : modes) {
      EdidImage image{};
      ASSERT_EQ(BuildEdid(model, mode.width, mode.height, mode.rate, &image), EdidFault::kNone);
      if (mode == kNoFrontPorch) continue;
      Add(std::to_string(mode.width) + "x" + std::to_string(mode.height) + "@" +
              std::to_string(mode.rate) + (dvi ? "-dvi" : "-hdmi"),
          image);
    }
  }
  EXPECT_EQ(Failures(), "");

  EdidImage image{};
  ASSERT_EQ(BuildEdid(Made(RequestAsTheDaemon(false)), 800, 600, 7500, &image), EdidFault::kNone);
  Add("no-front-porch", image);
  EXPECT_NE(Failures().find("0 or negative horizontal front porch"), std::string::npos);
}

}  // namespace
}  // namespace ZEPH_MCUC
