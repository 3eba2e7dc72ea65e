// The socket and the datagrams of the FPGA's reports.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "mcucstdout.h"
#include "mcuctrace.h"
#include "stub/fpgareportthread.h"
#include "stub/mcucmessagestruct_layout.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint16_t kPort = 58200;
constexpr char kInterface[] = "eth0";
constexpr int kReceiveBuffer = 0x400000;
constexpr long kReceiveTimeout_us = 100'000;
constexpr long kSelect_s = 2;

int sockfd = -1;
sockaddr_in g_destination{};

void CloseSocket() {
  if (sockfd >= 0) close(sockfd);
  sockfd = -1;
}

int Fail() {
  CloseSocket();
  return -1;
}

// `text` may take the system's.
void SayFailure(const char* text) {
  char line[128];
  std::snprintf(line, sizeof(line), text, std::strerror(errno));
  SayOnStandardOutput(line);
}

// A step of the set-up. One that must succeed ends it.
struct SocketOption {
  int option;
  const void* value;
  socklen_t size;
  const char* failure;  // may take the system's text
  bool must;
};

bool Set(const SocketOption& option) {
  if (setsockopt(sockfd, SOL_SOCKET, option.option, option.value, option.size) == 0) return true;
  SayFailure(option.failure);
  return !option.must;
}

sockaddr_in Address(in_addr_t host) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(kPort);
  address.sin_addr.s_addr = htonl(host);
  return address;
}

}  // namespace

int udp_port_init_sender() {
  const int on = 1;
  const int off = 0;
  const int buffer = kReceiveBuffer;
  const timeval timeout{0, kReceiveTimeout_us};
  const SocketOption options[] = {
      {SO_BINDTODEVICE, kInterface, sizeof(kInterface), "SO_BINDTODEVICE failed. %s\n", false},
      {SO_BROADCAST, &on, sizeof(on), "set socket error. ", true},
      {SO_NO_CHECK, &off, sizeof(off), "set socket nochecksum error. ", true},
      {SO_RCVBUF, &buffer, sizeof(buffer), "SO_RCVBUF failed. %s\n", false},
      {SO_RCVTIMEO, &timeout, sizeof(timeout), "setsockopt timeout failed.", false}};
  CloseSocket();
  sockfd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (sockfd < 0) {
    SayFailure("create socket error. ");
    return -1;
  }
  for (const SocketOption& option : options) {
    if (!Set(option)) return Fail();
  }
  const sockaddr_in any = Address(INADDR_ANY);
  if (bind(sockfd, reinterpret_cast<const sockaddr*>(&any), sizeof(any)) != 0) {
    SayFailure("bind error. %s\n");
    return Fail();
  }
  g_destination = Address(INADDR_BROADCAST);
  return 0;
}

ReportFault CheckReport(std::span<const uint8_t> datagram, UDP_MESG_T* head) {
  if (datagram.size() < kReportHead) return ReportFault::kTooShort;
  *head = {datagram[0], DWQ_DECWD(&datagram[1]), DWQ_DECDW(&datagram[3]), DWQ_DECWD(&datagram[7])};
  if (head->length > kReportMostData) return ReportFault::kLength;
  const std::size_t end = kReportHead + head->length;
  if (datagram.size() < end + 2) return ReportFault::kTooShort;
  uint16_t sum = 0;
  for (const uint8_t byte : datagram.first(end)) sum = static_cast<uint16_t>(sum + byte);
  return sum == DWQ_DECWD(&datagram[end]) ? ReportFault::kNone : ReportFault::kChecksum;
}

void RecvFpgaReportMsg(uint8_t /*fpga_sel*/, uint8_t* msg, const Relaxed<bool>& keepOn) {
  if (sockfd < 0 || sockfd >= FD_SETSIZE) {  // what select() can't watch
    std::printf("fpga udp select error");
    return;
  }
  while (keepOn) {
    fd_set ready;
    FD_ZERO(&ready);
    FD_SET(sockfd, &ready);
    timeval timeout{kSelect_s, 0};
    const int count = select(sockfd + 1, &ready, nullptr, nullptr, &timeout);
    if (count <= 0) {
      std::printf(count < 0 ? "fpga udp select error" : "fpga udp select timeout");
      continue;
    }
    const ssize_t length = recvfrom(sockfd, msg, kReportBuffer, 0, nullptr, nullptr);
    if (length < 0) {
      std::printf("recv error. %s \n", std::strerror(errno));
      continue;
    }
    UDP_MESG_T head{};
    switch (CheckReport({msg, static_cast<std::size_t>(length)}, &head)) {
      case ReportFault::kLength:
        MCUC_LOG(kLogError, "Recvmsg length is invalid " << head.length);
        break;
      case ReportFault::kTooShort:
      case ReportFault::kChecksum:
        MCUC_LOG(kLogError, "Recvmsg checksum is invalid ");
        break;
      case ReportFault::kNone:
        break;
    }
  }
}

}  // namespace ZEPH_MCUC
