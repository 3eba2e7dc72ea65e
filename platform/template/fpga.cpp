// The FPGAs and the cards behind their ports: not here.
#include <platform/fpga.h>
#include <platform/recvcard.h>

#include "missing.h"

namespace {

constexpr char kBus[] = "the FPGA bus (platform/fpga.h)";
constexpr char kReports[] = "the FPGA's report path (platform/fpga.h)";
constexpr char kCards[] = "the receiving cards (platform/recvcard.h)";
constexpr int32_t kFailed = -1;

}  // namespace

int32_t WriteFPGABlock(uint8_t, uint32_t, uint32_t, const uint8_t*) {
  return missing::Say(kBus, kFailed);
}

int32_t ReadFPGABlock(uint8_t, uint32_t, uint32_t, uint8_t*) { return missing::Say(kBus, kFailed); }

int32_t Shal_comif_ioctl(uint32_t, uint32_t, void*) { return missing::Say(kBus, kFailed); }

int32_t FPGA_UDP_Init() { return missing::Say(kReports, kFailed); }

int32_t ReadFPGAformRecvCard(uint8_t, RECVCARD_MESG_T*, uint16_t, uint8_t*) {
  return missing::Say(kCards, kFailed);
}

int32_t WriteFPGAToRecvCard(uint8_t, RECVCARD_MESG_T*, uint16_t, const uint8_t*) {
  return missing::Say(kCards, kFailed);
}
