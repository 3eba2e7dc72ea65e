// Requests for the devices behind the ports: what goes down the port, how long it keeps everybody
// else waiting, and what a client learns of a card that doesn't answer.
#include <gtest/gtest.h>

#include "board/board.h"
#include "board/faults.h"
#include "stub/mcucmessagestruct_layout.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/loop.h"
#include "support/trace.h"

namespace {

using namespace ZEPH_MCUC;
using Data = std::vector<std::uint8_t>;

QMB_proto3rd ToDevice(QMB_proto3rd request, std::uint8_t device) {
  request.proto.m_ucDeviceType = device;
  return request;
}

struct Transfer {
  std::uint8_t device;
  std::uint32_t address;
  std::size_t bytes;
  int packets;
  int wait_ms;
};

constexpr std::size_t kMost = frame::kMostData;

constexpr Transfer kTransfers[] = {
    {JSHL_TypeReceiver, 0x05000000, 1, 1, 10},
    {JSHL_TypeReceiver, 0x05000000, 513, 2, 20},
    {JSHL_TypeReceiver, 0x07000000, 513, 2, 10},
    {JSHL_TypeReceiver, 0x05000000, kMost, 128, 1280},
    {JSHL_TypeMultiFunc, 0x05000000, kMost, 256, 5888},
    {JSHL_TypeDistribute, 0x05000000, kMost, 256, 6400},  // the longest that there is
    {JSHL_TypeLauncher3D, 0x05000000, kMost, 128, 640},
};

TEST(CardRequests, WritesGoInPacketsAndTakeTheirTime) {
  device::Begin("card");
  platform::KeepTime();
  support::Trace trace;
  for (const Transfer& transfer : kTransfers) {
    SCOPED_TRACE(std::to_string(transfer.bytes) + " bytes to a device of type " +
                 std::to_string(transfer.device));
    const Data data(transfer.bytes, 7);
    trace.Take();
    const std::int64_t begin = loop::BoardTime_us();
    const auto reply = inprocess::Serve(
        ToDevice(inprocess::WriteRequest(transfer.address, data), transfer.device));
    EXPECT_EQ(reply.m_ucAck, 0);
    EXPECT_EQ((loop::BoardTime_us() - begin) / 1000, transfer.wait_ms);
    EXPECT_EQ(support::Count(trace.Take(), "card "), transfer.packets);
  }
}

TEST(CardRequests, ReadOfACardThatFailsIsRefused) {
  struct Case {
    std::uint8_t device;
    bool linked;
    int ack;
  };
  constexpr Case kCases[] = {{JSHL_TypeReceiver, true, JSHL_Timeout},
                             {JSHL_TypeReceiver, false, JSHL_invalidCMD},
                             {JSHL_TypeMultiFunc, true, JSHL_invalidCMD},
                             {JSHL_TypeDistribute, true, JSHL_invalidCMD},
                             {JSHL_TypeLauncher3D, true, JSHL_invalidCMD}};
  device::Begin("card");
  for (const Case& c : kCases) {
    SCOPED_TRACE(static_cast<int>(c.device));
    device::Global().GigaPhyLinkSta = c.linked ? 0xFFFF : 0;
    board::SetFaultCount(board::Fault::kSkip, 1);  // the second packet of two
    board::SetFaultCount(board::Fault::kCardRead, 1);
    const auto reply =
        inprocess::Serve(ToDevice(inprocess::ReadRequest(0x05000000, 600), c.device));
    EXPECT_EQ(reply.m_ucAck, c.ack);
    EXPECT_TRUE(reply.m_data.empty());
  }
}

}  // namespace
