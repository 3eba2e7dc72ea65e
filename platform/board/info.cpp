// The device info store and the network settings: the board shows them in its trace alone.
#include <arpa/inet.h>
#include <platform/info.h>
#include <platform/network.h>

#include <cstdio>
#include <string>

#include "board/board.h"

namespace board {
namespace {

constexpr std::int32_t kStore = 1;

bool IsAddress(const char* text) {
  struct in_addr address {};
  return text != nullptr && inet_pton(AF_INET, text, &address) == 1;
}

// One network setting, right or not; 0 when it holds.
std::int32_t SetNetwork(bool right, const std::string& words) {
  const auto order = TraceOrder(TraceKind::kNet);
  const bool done = right && !TakeFault(Fault::kNet);
  if (order) Trace(TraceKind::kNet, words);
  return done ? 0 : -1;
}

}  // namespace
}  // namespace board

int32_t st_info_op(int32_t op, uint32_t address, uint32_t length, const uint8_t* data) {
  const bool done = op == board::kStore && (data != nullptr || length == 0);
  if (board::Tracing(board::TraceKind::kInfo)) {
    char words[48];
    std::snprintf(words, sizeof words, "%d 0x%08x %u ", op, address, length);
    board::Trace(board::TraceKind::kInfo, words + board::Hex(data, data == nullptr ? 0 : length));
  }
  return done ? 0 : -1;
}

int32_t ifcfg_set_eth_mode(int32_t mode) {
  return board::SetNetwork(true, "mode " + std::to_string(mode));
}

int32_t ifcfg_set_curr_ip(const char* ip, const char* mask, const char* gateway) {
  if (ip == nullptr || mask == nullptr || gateway == nullptr) return -1;
  const bool right = board::IsAddress(ip) && board::IsAddress(mask) && board::IsAddress(gateway);
  return board::SetNetwork(right, std::string("addr ") + ip + " " + mask + " " + gateway);
}
