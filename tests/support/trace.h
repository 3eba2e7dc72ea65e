// The board's trace as short lines, so that an order of accesses can be compared as text:
//
//   fpga W 0x28 64000000       a write over the FPGA bus, with its data up to 8 bytes
//   fpga W 0x600000 x1024      a longer one, by its length
//   fpga R 0x1f6 x6            a read
//   flash W 0xa60010 01        the live store; the others by their names: flash W tmp 0x1000 00
//   shell sync                 a command that succeeded; another with its status: shell 1 ...
//   owd 0x020001d7 01          a report, by its receiver; replies to requests are left out
//   fpga W 0x28 x4 fail        an access that failed
//   edid W 0x0010              an input board's EDID, without its bytes
//
// Other kinds stand as in the trace.
#pragma once

#include <string>

namespace support {

class Trace {
 public:
  // From the trace's end on.
  Trace();

  // The lines since the last call, each closed by a line feed.
  std::string Take();
  // The same in one line, parted by "; ".
  std::string TakeLine();

 private:
  std::size_t seen_;  // lines
};

// How often a line that begins with `start` stands in `lines`.
int Count(const std::string& lines, const std::string& start);

}  // namespace support
