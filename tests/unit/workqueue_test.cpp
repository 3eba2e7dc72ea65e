// The work queue: blocks, their order and limit, and replies that don't wait for the work.
#include <gtest/gtest.h>

#include <future>

#include "process/tprocess_ctl.h"
#include "proto/data_common.h"
#include "stub/stubutil.h"
#include "support/board_kit.h"
#include "support/inprocess.h"

namespace {

using namespace ZEPH_MCUC;
using namespace std::chrono_literals;

constexpr auto kNever = 20ms;  // how long an event that must not come is given
constexpr auto kLimit = 10s;   // and one that must

std::vector<int> g_done;  // keys in the order of their jobs

int32_t Note(MCUProcessDataBlock* block) {
  g_done.push_back(block->m_key);
  return 0;
}

MCUProcessDataBlock* Block(int32_t key) {
  auto block = std::make_unique<MCUProcessDataBlock>();
  block->m_key = key;
  return block.release();  // the queue's from now on
}

std::future<void> AddOnAnotherThread(McuProcessThread* queue, int32_t key) {
  return std::async(std::launch::async, [=] { queue->addMessageToList(Block(key)); });
}

TEST(WorkQueue, KeepsTheOrderAndTheThirtyThirdBlockWaitsForRoom) {
  McuProcessThread queue(Note);
  EXPECT_FALSE(queue.RunFirst());
  for (int32_t key = 0; key < 32; ++key) queue.addMessageToList(Block(key));
  const auto added = AddOnAnotherThread(&queue, 32);
  EXPECT_EQ(added.wait_for(kNever), std::future_status::timeout);
  EXPECT_TRUE(queue.RunFirst());  // the list isn't locked while the other thread waits
  EXPECT_EQ(added.wait_for(kLimit), std::future_status::ready);
  while (queue.RunFirst()) continue;
  std::vector<int> all(33);
  for (int i = 0; i < 33; ++i) all[static_cast<std::size_t>(i)] = i;
  EXPECT_EQ(g_done, all);
}

std::promise<void> g_begun;
std::promise<void> g_mayEnd;

TEST(WorkQueue, BlockThatComesDuringAJobWaitsForItsEnd) {
  static McuProcessThread queue([](MCUProcessDataBlock* block) -> int32_t {
    if (block->m_key == 1) {
      g_begun.set_value();
      g_mayEnd.get_future().wait();
    }
    return 0;
  });  // its thread runs until the process ends
  ASSERT_EQ(queue.Init(), 0);
  queue.addMessageToList(Block(1));
  ASSERT_EQ(g_begun.get_future().wait_for(kLimit), std::future_status::ready);
  const auto added = AddOnAnotherThread(&queue, 2);
  EXPECT_EQ(added.wait_for(kNever), std::future_status::timeout);
  g_mayEnd.set_value();
  EXPECT_EQ(added.wait_for(kLimit), std::future_status::ready);
}

TEST(WorkQueue, ReplyComesBeforeTheWork) {
  constexpr std::size_t kOffset = 0x3F;
  const std::vector<uint8_t> byte = {0x5C};
  auto& image = Data_Global::getInstance()->SendParameterReg;
  inprocess::Start();
  board::SetFaultCount(board::Fault::kFlashWrite, -1);  // the work fails, and nobody is told
  const auto reply = inprocess::Write(0x02000000 + kOffset, byte);
  EXPECT_EQ(reply.m_ucAck, 0);
  EXPECT_TRUE(reply.m_data.empty());
  EXPECT_EQ(image[kOffset], 0);
  EXPECT_EQ(inprocess::DrainQueue(), 1);
  EXPECT_EQ(image[kOffset], 0x5C);
}

TEST(WorkQueue, KeyWithoutAHandlerIsDropped) {
  inprocess::Start();
  for (const int32_t key : {ControllerSortKey + 0, 20, 30, -1}) {
    StubUtil::getInstance()->addMessageToList(Block(key));
  }
  EXPECT_EQ(inprocess::DrainQueue(), 4);
}

TEST(DataBlock, ContentIsPinned) {
  auto block = std::make_unique<MCUProcessDataBlock>();
  const std::vector<uint8_t> data = {0xD1, 0xD2, 0xD3};
  ASSERT_TRUE(WritePenetrateInfo(0x02A1B2C3, data, block.get()));
  const std::string bytes("\xC3\xB2\xA1\x02\x03\x00\xD1\xD2\xD3", 9);
  EXPECT_EQ(std::string(block->getData(), 9), bytes);
  EXPECT_EQ(block->getDataLen(), 9);

  const PenetrateInfo info = ReadPenetrateInfo(block->getData());
  EXPECT_EQ(info.Register, 0x02A1B2C3U);
  EXPECT_EQ(info.length, 3);
  EXPECT_EQ(std::vector<uint8_t>(info.data.begin(), info.data.end()), data);
  EXPECT_TRUE(WritePenetrateInfo(0, std::vector<uint8_t>(65529), block.get()));
  EXPECT_FALSE(WritePenetrateInfo(0, std::vector<uint8_t>(65530), block.get()));
  block->m_data[4] = block->m_data[5] = '\xFF';  // more than a block holds
  EXPECT_EQ(ReadPenetrateInfo(block->getData()).data.size(), 65529U);
}

}  // namespace
