// A device for tests of the daemon without its threads: its board, store, FPGA and log by name.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "proto/data_common.h"
#include "support/raw_peer.h"

namespace device {

// Sets the board up fast and with these kinds traced, and joins the daemon without threads but with
// its bus, so that reports are sent. First thing in a test; more lines of board.conf may follow.
void Begin(const std::string& traced, const std::string& configuration = "");
// The second half of that, on a board as it stands.
void Join();

// Bytes as hexadecimal text.
std::string Hex(std::span<const std::uint8_t> bytes);
// Hexadecimal text as that gives it, from one with blanks between its fields.
std::string Fields(const char* hex);

// The live store and FPGA 1 as another process sees and changes them; nothing is traced, and no
// fault is taken.
std::string Flash(std::uint32_t address, std::size_t length);
void PutFlash(std::uint32_t address, const char* hex);
std::string Fpga(std::uint32_t address, std::size_t length);
void PutFpga(std::uint32_t address, const char* hex);

// The feature image.
std::string Image(std::uint32_t offset, std::size_t length);
void PutImage(std::uint32_t offset, const char* hex);

// A restore as at start, with the FPGA not loaded yet or loaded.
void Restore(bool online);

// A write to feature register 0x02000000 + `offset`, served and carried out.
void WriteFeature(std::uint32_t offset, const char* hex);

// The service daemon as a peer; joined when this returns.
support::RawPeer ConnectOwd();

inline ZEPH_MCUC::Data_Global& Global() { return *ZEPH_MCUC::Data_Global::getInstance(); }

// What is logged from here on: each line as its level and its text, without file and line number.
class Log {
 public:
  explicit Log(int level = 3);
  // The lines since the last call, each closed by a line feed.
  std::string Take();

 private:
  std::map<std::string, std::size_t> seen_;  // bytes of each log file, by its path
};

}  // namespace device
