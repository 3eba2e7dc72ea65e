#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ostream>

#include "support/wall_bytes.h"
#include "wall/draw.h"
#include "wall/palette.h"
#include "wall/picture.h"
#include "wall/words.h"

namespace quivord::wall {

void PrintTo(const Box& box, std::ostream* out) {
  *out << box.width << " x " << box.height << " at " << box.x << ", " << box.y;
}

namespace {

bool Holds(const Box& outer, const Box& inner) {
  constexpr double kRounding = 1e-6;
  return inner.x >= outer.x - kRounding && inner.y >= outer.y - kRounding &&
         inner.right() <= outer.right() + kRounding && inner.bottom() <= outer.bottom() + kRounding;
}

bool Overlap(const Box& a, const Box& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

Wall SmartWall(const Smart& smart, std::uint16_t width = 128, std::uint16_t height = 128) {
  return Understand(*wall_bytes::With(smart, width, height));
}

// Nothing lies over anything else, and all of it on the picture.
void ExpectTidy(const Wall& wall) {
  const Picture picture = Arrange(wall);
  const Box paper{0, 0, picture.width, picture.height};
  std::vector<Box> parts = {picture.title, picture.stage, picture.signs};
  for (std::size_t n = 0; n < wall.mainPorts(); ++n) parts.push_back(picture.Plate(n));
  for (std::size_t n = 0; n < kPorts; ++n) parts.push_back(picture.Socket(n));
  for (std::size_t a = 0; a < parts.size(); ++a) {
    EXPECT_TRUE(Holds(paper, parts[a])) << testing::PrintToString(parts[a]);
    for (std::size_t b = 0; b < a; ++b) {
      EXPECT_FALSE(Overlap(parts[a], parts[b]))
          << testing::PrintToString(parts[a]) << " and " << testing::PrintToString(parts[b]);
    }
  }
  EXPECT_TRUE(Holds(picture.stage, picture.screen));
  for (const Port& port : wall.ports) {
    for (const Corner& corner : port.cabinets) {
      ASSERT_TRUE(Holds(picture.screen, picture.Cabinet(wall, corner)));
    }
  }
  EXPECT_LT(picture.width, 8000);
  EXPECT_LT(picture.height, 8000);
}

TEST(WallPicture, IsTidyAndLabelledForEveryOrdinaryWall) {
  const struct {
    Smart smart;
    std::uint16_t width, height;  // of a card
  } cases[] = {
      {{1, 1, 1, 0}, 128, 128},   {{4, 3, 5, 0}, 128, 128},   {{32, 64, 205, 0}, 128, 128},
      {{64, 32, 205, 1}, 64, 64}, {{24, 2, 5, 4}, 168, 168},  {{2, 24, 5, 1}, 192, 108},
      {{1, 64, 8, 0}, 128, 128},  {{64, 1, 8, 1}, 128, 128},  {{3, 8, 3, 5}, 32, 512},
      {{9, 16, 16, 2}, 480, 270}, {{10, 1, 1, 6}, 4, 4},      {{2, 2, 4, 3}, 10000, 10},
      {{40, 50, 200, 3}, 64, 64}, {{255, 8, 204, 1}, 16, 16}, {{8, 255, 204, 0}, 16, 16},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(SizeText(test.smart.rows, test.smart.columns) + " of " +
                 SizeText(test.width, test.height));
    const Wall wall = SmartWall(test.smart, test.width, test.height);
    ExpectTidy(wall);
    EXPECT_TRUE(Arrange(wall).labelled());
  }
}

TEST(WallPicture, WhateverTheTablesSayItFitsIntoAFile) {
  const auto bytes = wall_bytes::With(Smart{.rows = 4, .columns = 3, .perCable = 5}, 2, 1);
  for (std::size_t at = 0; at < bytes->positions.size(); at += 7) bytes->positions[at] = 0xFF;
  const Wall wall = Understand(*bytes);
  ExpectTidy(wall);
  EXPECT_FALSE(Arrange(wall).labelled());
}

// Whether the picture has the colour at that point.
bool Bears(cairo_surface_t* surface, double x, double y, const Colour& colour) {
  const auto at =
      static_cast<std::ptrdiff_t>(y * kScale) * cairo_image_surface_get_stride(surface) +
      static_cast<std::ptrdiff_t>(x * kScale) * 4;
  const unsigned char* pixel = cairo_image_surface_get_data(surface) + at;
  return std::abs(pixel[0] - colour.blue * 255) < 3 &&
         std::abs(pixel[1] - colour.green * 255) < 3 && std::abs(pixel[2] - colour.red * 255) < 3;
}

TEST(WallPicture, EveryCabinetBearsTheColourOfItsPort) {
  const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "wall.png";
  const Wall wall = SmartWall({.rows = 5, .columns = 6, .perCable = 12, .mode = 6});
  ASSERT_EQ(Draw(wall, file, Format::kPng), "");
  cairo_surface_t* const surface = cairo_image_surface_create_from_png(file.c_str());
  ASSERT_EQ(cairo_surface_status(surface), CAIRO_STATUS_SUCCESS);
  for (std::size_t n = 0; n < wall.mainPorts(); ++n) {
    const Port& port = wall.ports[n];
    for (const Corner& corner : port.cabinets) {
      const Box box = Arrange(wall).Cabinet(wall, corner);
      EXPECT_TRUE(Bears(surface, box.x + box.width * 0.2, box.y + box.height * 0.8,
                        palette::Tint(port.number)))
          << "port " << int{port.number};
    }
  }
  cairo_surface_destroy(surface);
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace quivord::wall
