#include "capture.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include "board/board.h"
#include "board/folder.h"
#include "file_fault.h"
#include "pcapng.h"
#include "status.h"
#include "stub/mcucmessagestruct_layout.h"
#include "trace/busline.h"
#include "trace/follower.h"
#include "trace/interrupt.h"

namespace board_tool {
namespace {

namespace trace = quivord::trace;

constexpr std::uint16_t kLinkType = 147;  // LINKTYPE_USER0: what it means is between us and readers
constexpr auto kLook = std::chrono::milliseconds(50);

// What stands in front of each frame: version, flags, two bytes 0, the peer, little-endian. The
// trace has no envelopes, so no packet of ours has one; a reader finds by the flag whether there is
// one between this header and the frame.
constexpr std::size_t kHeaderSize = 8;
constexpr std::uint8_t kVersion = 1;
constexpr std::uint8_t kFromDaemon = 1;  // flag: from the daemon to the peer

std::vector<std::uint8_t> PacketOf(const trace::BusLine& line) {
  std::vector<std::uint8_t> packet(kHeaderSize);
  packet[0] = kVersion;
  packet[1] = line.towards_daemon ? 0 : kFromDaemon;
  ZEPH_MCUC::DWQ_ENCDW(&packet[4], line.peer);
  packet.insert(packet.end(), line.frame.begin(), line.frame.end());
  return packet;
}

// From the trace's clock, which counts from the PC's start, to microseconds since 1970.
std::int64_t ClockOffset_us() {
  using std::chrono::duration_cast;
  using std::chrono::microseconds;
  return duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch() -
                                     std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

int Fail(const std::string& text) {
  std::fprintf(stderr, "quivord-board: %s\n", text.c_str());
  return kFailed;
}

// Copies the trace's lines of the bus; false where the file can't be written.
bool Copy(trace::Follower& follower, Pcapng& capture, std::int64_t offset_us,
          std::size_t& packets) {
  follower.Look([&](std::string_view text) {
    const auto line = trace::ReadBusLine(text);
    if (!line.has_value()) return;
    using Direction = Pcapng::Direction;
    const auto direction = line->towards_daemon ? Direction::kInbound : Direction::kOutbound;
    capture.Add(line->at_us + offset_us, direction, PacketOf(*line));
    ++packets;
  });
  return capture.Flush();
}

}  // namespace

int Capture(const std::string& file, bool once) {
  const auto folder = board::Folder();
  if (!board::Tracing(board::TraceKind::kBus)) {
    return Fail("the board's trace leaves the bus out; put 'trace = bus' into " +
                (folder / "board.conf").string() + " and start its daemon again");
  }
  const bool piped = file == "-";
  std::FILE* const stream = piped ? stdout : std::fopen(file.c_str(), "wb");
  if (stream == nullptr) return Fail(quivord::CannotWrite(file, errno));
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closed(stream, std::fclose);
  trace::WatchInterrupts();
  std::signal(SIGPIPE, SIG_IGN);  // an analyser that was closed shows as a write that fails

  Pcapng capture(stream, kLinkType, "quivord bus");
  trace::Follower follower(folder / "trace.log", once);
  const std::int64_t offset_us = ClockOffset_us();
  std::size_t packets = 0;
  for (;;) {
    const bool last = once || trace::Interrupted();
    if (!Copy(follower, capture, offset_us, packets)) {
      return Fail(quivord::CannotWrite(piped ? "standard output" : file, errno));
    }
    if (last) break;
    std::this_thread::sleep_for(kLook);
  }
  std::fprintf(stderr, "%zu packets in %s\n", packets, piped ? "standard output" : file.c_str());
  return kDone;
}

}  // namespace board_tool
