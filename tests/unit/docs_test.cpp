// Pages that are printed from the program's own tables: stale ones fail.
#include <gtest/gtest.h>

#include "board/files.h"
#include "support/run.h"

namespace {

std::string Page(const std::string& name) {
  return board::ReadWhole(support::Source("docs/" + name)).value_or("");
}

std::string Printed(const std::vector<std::string>& options) {
  std::vector<std::string> command = {support::Built("quivord-registers")};
  command.insert(command.end(), options.begin(), options.end());
  const auto run = support::Run(command);
  EXPECT_EQ(run.status, 0) << run.err;
  return run.out;
}

TEST(Docs, RegistersPageIsFresh) {
  EXPECT_TRUE(Page("registers.md") == Printed({})) << "docs/registers.md: run scripts/docs";
}

TEST(Docs, BoardPageHasTheFactoryStore) {
  const std::string block =
      "<!-- factory store -->\n" + Printed({"--factory-store"}) + "<!-- end -->\n";
  const std::string page = Page("board.md");
  EXPECT_NE(page.find(block), page.npos) << "docs/board.md: run scripts/docs";
}

TEST(Docs, DissectorHasTheNames) {
  const std::string file =
      board::ReadWhole(support::Source("tools/wireshark/quivord.lua")).value_or("");
  const auto begin = file.find("local NAMES = {");
  ASSERT_NE(begin, file.npos);
  EXPECT_TRUE(file.substr(begin, file.find("-- end of names") - begin) == Printed({"--lua"}))
      << "tools/wireshark/quivord.lua: run scripts/docs";
}

}  // namespace
