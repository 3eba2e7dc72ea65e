// The FPGA report channel: the settings of the FPGA's own reports, a self-test of its memory that a
// client switches on, and the datagrams that reports would come in. Reporting stays switched off:
// status is polled, and normal running never opens the socket.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <span>

#include "mcucutil.h"

namespace ZEPH_MCUC {

class FpgaReportThread {
 public:
  // Whether the self-test is switched on. Handed down at start.
  using TestEntry = bool (*)();

  explicit FpgaReportThread(TestEntry testIsOn) : m_testIsOn(testIsOn) {}
  ~FpgaReportThread() { Release(); }

  // Starts the thread. 0, or the general failure code.
  int32_t Init() { return CreateThread(); }
  int32_t CreateThread();
  void UnInit() { Release(); }
  void Release() { m_bExitFpgaReportThread = true; }

  // Writes the report settings into the FPGA; 0 also where that fails, which is logged.
  int32_t FPGAReport_init();

  // The thread's body: the settings, then the self-test as often as it is on, until `Release`.
  int32_t ActiveReport();

 private:
  const TestEntry m_testIsOn;
  pthread_t m_hFpgaReportThread{};
  Relaxed<bool> m_bExitFpgaReportThread{false};
};

// Writes patterns to the first bytes of the position and the number tables in the FPGA and reads
// them back; differences are logged. The tables' bytes are lost.
void testfpgareadwrite();

// A report's datagram: nine bytes of head, data, a sum.
struct UDP_MESG_T {
  uint8_t PacketType;
  uint16_t Label;
  uint32_t addr;    // register
  uint16_t length;  // bytes of data, at most 1024
};
inline constexpr std::size_t kReportHead = 9;
inline constexpr std::size_t kReportMostData = 1024;
inline constexpr std::size_t kReportBuffer = 2048;

enum class ReportFault : uint8_t { kNone, kTooShort, kLength, kChecksum };

// Reads the head of a datagram and checks what follows it.
ReportFault CheckReport(std::span<const uint8_t> datagram, UDP_MESG_T* head);

// Opens the report socket, UDP port 58200 on "eth0", in place of one that was open. 0, or -1 with a
// line on standard output, and none is open.
int udp_port_init_sender();

// Receives reports into `msg`, of `kReportBuffer` bytes, and checks them, until `keepOn` turns
// false, which it looks at after every datagram and at least every two seconds. Without an open
// socket it returns at once. `fpga_sel` is not used.
void RecvFpgaReportMsg(uint8_t fpga_sel, uint8_t* msg, const Relaxed<bool>& keepOn);

}  // namespace ZEPH_MCUC
