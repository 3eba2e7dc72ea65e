// Configuration files from a description over the device to the cards, and back to none.
#include <gtest/gtest.h>

#include "board/board.h"
#include "board/files.h"
#include "cardfiles/description.h"
#include "support/board_kit.h"
#include "support/ctl.h"
#include "support/on_daemon.h"

namespace {

using board_kit::Named;
using support::CtlJson;
using support::CtlOut;
using support::Words;

constexpr char kFolder[] = "usr/zeph/etc/owd/cabCfg/";

class Files : public support::OnDaemon {
 protected:
  Files() { board_kit::Configure("speed = 200\ntrace = card\n"); }

  // A file of `packs` packs of 4096 bytes each, on this computer; its path.
  static std::string Make(const std::string& name, int packs) {
    std::string text;
    for (int i = 0; i < packs; ++i) {
      text += "0x05000000 fill " + std::to_string(10 + i % 80) + " 4096\n";
    }
    const auto bytes = quivord::cardfiles::Compile(text, nullptr);
    board_kit::Put("local/" + name, {bytes.value().begin(), bytes.value().end()});
    return Local(name);
  }
  static std::string Local(const std::string& name) { return Named() / "local" / name; }

  // A numbered file on the device, as text of bytes.
  static std::string OnDevice(int number) {
    const auto path = Named() / kFolder / ("RvCfgFile_" + std::to_string(number) + ".rcfgx");
    return board::ReadWhole(path).value_or("none");
  }
  static std::string Bytes(const std::string& path) { return board::ReadWhole(path).value_or(""); }
};

TEST_F(Files, RoundTripFromDescriptionToCards) {
  Start();
  EXPECT_EQ(CtlJson({"files", "list"}).at("files").size(), 0U);
  board_kit::Put("local/c.txt", "0x02000001 99\n0x05000000 file table wait 40\n");
  board_kit::Put("local/table", std::string(600, 'T'));
  EXPECT_EQ(CtlJson({"files", "pack", Local("c.txt"), Local("c.rcfgx")}).at("pauses_ms"), 80);
  const std::string a = Make("a.rcfgx", 2);
  CtlOut({"files", "put", a, Local("c.rcfgx")});
  EXPECT_EQ(OnDevice(0), Bytes(a));
  EXPECT_EQ(OnDevice(1), Bytes(Local("c.rcfgx")));
  const auto files = CtlJson({"files", "list"}).at("files");
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[1].at("name"), "c.rcfgx");
  EXPECT_EQ(files[1].at("bytes"), Bytes(Local("c.rcfgx")).size());

  EXPECT_EQ(CtlJson({"files", "send", "c.rcfgx"}).at("packs"), 2);
  std::string packets;
  for (const std::string& line : board_kit::TraceLines()) {
    // Without the bytes and their sum.
    if (line.starts_with("card W")) packets += line.substr(0, line.find(" 0 ")) + "\n";
  }
  EXPECT_EQ(packets,
            "card W 1 255 65535 0x02000001 1\n"
            "card W 1 255 65535 0x05000000 512\n"
            "card W 1 255 65535 0x05000200 88\n");

  CtlOut({"files", "remove"});
  EXPECT_EQ(CtlJson({"files", "list"}).at("files").size(), 0U);
  EXPECT_TRUE(std::filesystem::is_empty(Named() / kFolder));
}

TEST_F(Files, OutliveARestartAndAreReplacedOrRemovedBehindIt) {
  Start();
  for (const char* name : {"1", "2", "3"}) Make(name, 1);
  CtlOut({"files", "put", Named() / "local"});
  Restart();
  EXPECT_EQ(CtlJson({"files", "list"}).at("files").size(), 3U);
  EXPECT_EQ(CtlJson({"files", "send", "2"}).at("name"), "3");
  CtlOut({"files", "put", Local("2")});
  EXPECT_EQ(OnDevice(0), Bytes(Local("2")));
  EXPECT_EQ(OnDevice(1), "none");
  Restart();
  CtlOut({"files", "remove"});
  EXPECT_EQ(OnDevice(0), "none");
}

TEST_F(Files, LargestSetArrivesWhole) {
  board_kit::Configure("speed = 2000\n");
  Start();
  Words put = {"files", "put"};
  for (int i = 0; i < 15; ++i) put.push_back(Make("f" + std::to_string(i), 16));
  put.push_back(Make("last", 13));
  CtlOut(put);
  for (int i = 0; i < 16; ++i)
    EXPECT_EQ(OnDevice(i), Bytes(put[2 + static_cast<std::size_t>(i)])) << i;
  EXPECT_GT(Bytes(put.back()).size() + 15 * Bytes(put[2]).size(), 1'000'000U);
}

TEST_F(Files, WhatADeviceCannotKeepIsNotSent) {
  Start();
  const std::string good = Make("good", 1);
  CtlOut({"files", "put", good});
  board_kit::Put("local/bad", std::string(100, '\xFF'));
  board_kit::Put("local/empty.txt", "# nothing\n");
  std::string many;
  for (int i = 0; i < 17; ++i) many += " %/local/good";
  for (const auto& row : support::Rows(3, R"(
      put %/local/good %/local/bad    | 2 | bad is no configuration file
      put %/local/missing             | 2 | can't be read
      put %/tmp                       | 2 | there is no file to put
      put )" + many + R"(             | 2 | 16 files, not 17
      send 1                          | 1 | keeps no file 1
      pack %/local/empty.txt %/x      | 2 | no line describes a pack
    )")) {
    support::ExpectCtl(row, {"files"});
  }
  EXPECT_EQ(OnDevice(0), Bytes(good));
  EXPECT_EQ(CtlJson({"files", "list"}).at("files").size(), 1U);
}

}  // namespace
