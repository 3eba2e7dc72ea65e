// Bytes that threads share.
#include <gtest/gtest.h>

#include <array>

#include "mcucutil.h"

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

}  // namespace
