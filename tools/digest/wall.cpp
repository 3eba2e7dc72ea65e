#include <array>

#include "digest.h"
#include "proto/mosaic.h"
#include "stub/mcucmessagestruct.h"
#include "support/rounds.h"

namespace digest {
namespace {

using namespace ZEPH_MCUC;

MosaicInput RandomWall(support::Random& random) {
  MosaicInput wall;
  wall.rows = static_cast<uint16_t>(random(1, 40));
  wall.columns = static_cast<uint16_t>(random(1, 40));
  wall.boxNumber = static_cast<uint16_t>(random(1, wall.rows * wall.columns));
  wall.mode = static_cast<uint8_t>(random(0, 7));
  wall.cardWidth = static_cast<uint16_t>(random(1, 512));
  wall.cardHeight = static_cast<uint16_t>(random(1, 512));
  return wall;
}

void Layouts(Digest& digest) {
  support::Random random(1);
  for (int i = 0; i < 2000; ++i) {
    const MosaicPlan plan = PlanMosaic(RandomWall(random));
    digest.Add(plan.valid, plan.realWidth, plan.realHeight, plan.setWidth, plan.usedPorts,
               plan.outOfTables);
    for (const PortWindow& window : plan.windows) {
      digest.Add(window.width, window.height, window.x, window.y);
    }
    for (const uint16_t cards : plan.cards) digest.Add(cards);
  }
}

void PositionTables(Digest& digest) {
  support::Random random(2);
  std::array<uint8_t, kPositionSize> tables{};
  for (int i = 0; i < 300; ++i) {
    FillPositionTables(PlanMosaic(RandomWall(random)), tables);
    digest.Add(tables);
  }
}

ThirdProtoMCUCMsg RandomFrame(support::Random& random) {
  ThirdProtoMCUCMsg frame;
  frame.m_usHeader = random.Flip() ? PROTOCOL_HEADER_TAG_REQUEST : PROTOCOL_HEADER_TAG_RESPONSE;
  frame.m_ucAck = static_cast<uint8_t>(random(0, 7));
  frame.m_ucDeviceType = static_cast<uint8_t>(random(0, 4));
  frame.m_ucPortAddress = static_cast<uint8_t>(random(0, 255));
  frame.m_usBoardAddress = static_cast<uint16_t>(random(0, 65535));
  frame.m_ucCode = static_cast<uint8_t>(random(0, 1));
  frame.m_uiRegisterUnitAddress = static_cast<uint32_t>(random(0, 0x7FFFFFFF));
  frame.m_data.resize(static_cast<std::size_t>(random(0, 300)));
  for (uint8_t& byte : frame.m_data) byte = static_cast<uint8_t>(random(0, 255));
  frame.m_usValidDataLength = static_cast<uint16_t>(frame.m_data.size());
  return frame;
}

void Frames(Digest& digest) {
  support::Random random(3);
  std::array<uint8_t, 1024> wire{};
  for (int i = 0; i < 2000; ++i) {
    ThirdProtoMCUCMsg frame = RandomFrame(random);
    const int32_t size = frame.Encode(wire.data(), wire.size());
    digest.Add(size);
    if (size < 0) continue;
    digest.Add(std::span(wire).first(static_cast<std::size_t>(size)));
    ThirdProtoMCUCMsg back;
    const int32_t result = back.Decode(wire.data(), size);
    digest.Add(result, back.m_usHeader, back.m_uiRegisterUnitAddress, back.m_usValidDataLength,
               back.m_usCheckout);
  }
}

constexpr Subject kSubjects[] = {
    {"layouts of walls", Layouts}, {"position tables", PositionTables}, {"frames", Frames}};

}  // namespace

std::span<const Subject> WallSubjects() { return kSubjects; }

}  // namespace digest
