// A daemon on the template, without a bus: every request has its answer, with zeros for what the
// hardware would hold, and one that is too long is refused. Prints for each its register, the ack
// and the bytes that would leave. Run it in a root of its own: the template's paths are a device's.
#include <cstdio>

#include "support/inprocess.h"

namespace {

void Print(std::uint32_t address, const ZEPH_MCUC::ThirdProtoMCUCMsg& reply) {
  std::printf("0x%08x: %d", address, reply.m_ucAck);
  for (const std::uint8_t byte : reply.m_data) std::printf(" %02x", byte);
  std::printf("\n");
}

void Read(std::uint32_t address, std::uint16_t length) {
  Print(address, inprocess::Read(address, length));
}

}  // namespace

int main() {
  constexpr std::uint32_t kPing = 0x00010000, kBrightness = 0x0A000000, kCells = 0xF0000000;
  Read(kPing, 1);
  Read(kBrightness, 513);
  Read(kBrightness, 2);
  Print(kBrightness, inprocess::Write(kBrightness, inprocess::Bytes("01 02")));
  Read(kCells, 4);
}
