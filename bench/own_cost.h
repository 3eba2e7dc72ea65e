// What a request costs in the daemon itself, without a bus: on this thread, on a board of this
// program's own.
#pragma once

namespace bench {

struct OwnCost {
  double read4_us = 0;     // a 4-byte read of the test space, from decoded request to encoded reply
  double frame4_us = 0;    // the same from the bytes of its frame
  double read1024_us = 0;  // a 1024-byte read
  double copy1024_us = 0;  // what the platform alone needs for those 1024 bytes
};

// CPU time of each, the best of several rounds. Chooses the board for this process.
OwnCost MeasureOwnCost();

}  // namespace bench
