#include "live/state.h"

#include <gtest/gtest.h>

#include <random>

namespace quivord::live {
namespace {

// An object of a few keys, some of them objects in turn; no null anywhere.
Json RandomObject(std::mt19937& random, int depth) {
  Json object = Json::object();
  for (const char* key : {"a", "b", "c", "d"}) {
    switch (random() % (depth > 0 ? 5 : 4)) {
      case 0:
        break;
      case 1:
        object[key] = random() % 3;
        break;
      case 2:
        object[key] = Json::array({random() % 2, "x"});
        break;
      case 3:
        object[key] = "text";
        break;
      default:
        object[key] = RandomObject(random, depth - 1);
    }
  }
  return object;
}

TEST(LiveState, ADifferenceTurnsOneIntoTheOther) {
  std::mt19937 random(12);
  for (int i = 0; i < 2000; ++i) {
    const Json before = RandomObject(random, 3);
    const Json after = RandomObject(random, 3);
    Json patched = before;
    patched.merge_patch(Difference(before, after));  // the library's own, as the standard has it
    ASSERT_EQ(patched, after) << before << "\n" << Difference(before, after);
    ASSERT_TRUE(Difference(after, after).empty());
  }
}

TEST(LiveState, SectionsThatAreTheSameObjectAreNotCompared) {
  State before;
  const auto section = [](int x) { return std::make_shared<const Json>(Json{{"x", x}}); };
  for (auto& one : before) one = section(1);
  State after = before;
  after[2] = section(2);
  after[3] = section(1);  // another object that says the same
  EXPECT_EQ(Difference(before, after), Json({{SectionNames()[2], {{"x", 2}}}}));
  EXPECT_EQ(Document(after)[SectionNames()[2]], Json({{"x", 2}}));
}

}  // namespace
}  // namespace quivord::live
