#include "board/mbus_reader.h"

#include <poll.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace board::mbus {
namespace {

// An empty packet and the end of the connection look alike to the read; these tell them apart.
bool OtherSideClosed(int socket) {
  pollfd poll_for{socket, POLLRDHUP, 0};
  return poll(&poll_for, 1, 0) == 1;
}

bool NothingLeft(int socket) {
  int bytes = 0;
  return ioctl(socket, FIONREAD, &bytes) != 0 || bytes == 0;
}

}  // namespace

PacketReader::PacketReader()
    : slots_(std::make_unique_for_overwrite<std::uint8_t[]>(kBatch * kMostMessage)) {
  for (std::size_t i = 0; i < kBatch; ++i) {
    places_[i] = {.iov_base = &slots_[i * kMostMessage], .iov_len = kMostMessage};
    headers_[i].msg_hdr.msg_iov = &places_[i];
    headers_[i].msg_hdr.msg_iovlen = 1;
  }
}

PacketReader::Batch PacketReader::Read(int socket, std::size_t wanted) {
  const auto most = static_cast<unsigned>(std::min(wanted, kBatch));
  int count = 0;
  do {
    count = recvmmsg(socket, headers_.data(), most, MSG_DONTWAIT, nullptr);
  } while (count < 0 && errno == EINTR);
  if (count < 0) return {.ended = errno != EAGAIN};

  const auto begin = headers_.begin();
  const auto end = begin + count;
  const auto empty = [](const mmsghdr& header) { return header.msg_len == 0; };
  if (std::none_of(begin, end, empty) || !OtherSideClosed(socket)) {
    return {.count = static_cast<std::size_t>(count)};
  }
  // The empty ones at the end are the connection's end, or are lost with it.
  const auto last =
      std::find_if_not(std::reverse_iterator(end), std::reverse_iterator(begin), empty);
  return {.count = static_cast<std::size_t>(last.base() - begin), .ended = NothingLeft(socket)};
}

std::span<const std::uint8_t> PacketReader::packet(std::size_t index) const {
  return {&slots_[index * kMostMessage], headers_[index].msg_len};
}

bool PacketReader::oversize(std::size_t index) const {
  return (headers_[index].msg_hdr.msg_flags & MSG_TRUNC) != 0;
}

}  // namespace board::mbus
