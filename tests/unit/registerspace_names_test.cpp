#include "proto/registerspace_names.h"

#include <gtest/gtest.h>

#include <set>
#include <span>
#include <string>

namespace ZEPH_MCUC {
namespace {

struct Case {
  uint32_t address;
  int32_t length;
  Meets meets;
};

TEST(RegisterSpaceNames, TopTableHasEachKeyOnceAndFindsItsSpace) {
  std::set<uint32_t> keys;
  for (const SpaceNames* space : kSpaces) {
    for (const TopRow& row : space->top) {
      if (row.cmdStr == nullptr) continue;
      EXPECT_TRUE(keys.insert(row.key).second) << space->className;
      EXPECT_EQ(TopTableKey(row.key), row.key) << space->className;
      EXPECT_EQ(FindSpace(row.key), space) << space->className;
    }
  }
  EXPECT_EQ(keys.size(), 23U);
}

void ExpectProspects(std::span<const Case> cases, Prospect (*foresee)(uint32_t, int32_t)) {
  for (const Case& test : cases) {
    const Prospect prospect = foresee(test.address, test.length);
    EXPECT_EQ(prospect.meets, test.meets)
        << std::hex << test.address << std::dec << ", " << test.length << ": " << prospect.text;
    EXPECT_FALSE(prospect.text.empty());
  }
}

TEST(RegisterSpaceNames, AccessesMeetWhatTheDaemonDoes) {
  using enum Meets;
  constexpr Case kReads[] = {
      {0x00000000, 256, kServed},    {0x00000000, 0, kServed},    {0x000000FA, 7, kPastEnd},
      {0x00010000, 4, kNothing},     {0x01000002, 1, kNothing},   {0x01000006, 1, kNoRow},
      {0x020001FC, 4, kServed},      {0x020001FD, 4, kPastEnd},   {0x0200104B, 1, kServed},
      {0x0200104B, 2, kPastEnd},     {0x02000000, 0, kLength},    {0x02000000, 1025, kLength},
      {0x02010000, 4, kNoSpace},     {0x02100100, 393, kDropped}, {0x022001FF, 1, kServed},
      {0x03000000, 0xA000, kServed}, {0x03009FFF, 2, kPastEnd},   {0x031002FF, 1, kServed},
      {0x031002FF, 2, kPastEnd},     {0x08000000, 1, kNothing},   {0x08000000, 128, kServed},
      {0x08000000, 127, kRefused},   {0x08000001, 128, kRefused}, {0x1201003B, 4, kServed},
      {0x1201003C, 4, kPastEnd},     {0x18000000, 255, kLength},  {0x18000000, 256, kServed},
      {0x18000004, 256, kNoRow},     {0xF0000100, 4095, kServed}, {0xF0000100, 4096, kLength}};
  constexpr Case kWrites[] = {
      {0x00000000, 256, kServed},  {0x000000FA, 7, kPastEnd},     {0x01000001, 1, kServed},
      {0x01000003, 4, kLength},    {0x01000003, 5, kServed},      {0x01000006, 1, kNoRow},
      {0x0210001C, 4, kServed},    {0x0210001E, 4, kDropped},     {0x022001FE, 1, kServed},
      {0x022001FF, 1, kPastEnd},   {0x02300000, 513, kLength},    {0x02300FFF, 1, kServed},
      {0x02300FFF, 2, kPastEnd},   {0x02700000, 4, kNothing},     {0x03009FF8, 16, kDropped},
      {0x03000000, 0, kLength},    {0x03100000, 0x301, kPastEnd}, {0x08000000, 64, kServed},
      {0x0A001400, 1, kPastEnd},   {0x0E001C00, 1024, kServed},   {0x0E001FFF, 2, kDropped},
      {0x0E302000, 1, kServed},    {0x0E302000, 2, kDropped},     {0x0F0FFFFF, 2, kPastEnd},
      {0x0F800FFF, 1, kServed},    {0x0F801000, 1, kPastEnd},     {0x18000000, 256, kRefused},
      {0xF0000100, 4096, kServed}, {0xF0000100, 4097, kLength},   {0xF0000100, 0, kLength}};
  ExpectProspects(kReads, ForeseeRead);
  ExpectProspects(kWrites, ForeseeWrite);
}

}  // namespace
}  // namespace ZEPH_MCUC
