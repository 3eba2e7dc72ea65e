// The whole way of a request: frames from the bus one behind the other, each decoded, served and
// answered once, deferred work carried out in between, the loop's passes as time goes on.
//
// An input is a row of steps. A step begins with a 16-bit word, low byte first: its low 12 bits are
// the bytes of a frame that follows, 0 a pass of the loop. Of a frame's word,
//   bit 15  leaves the frame as it stands; else tag and sum are made right, and the length of a
//           write that of its data,
//   bit 14  leaves the address as it stands; else its top byte chooses a register space,
//   bit 13  keeps the work queued for now,
//   bit 12  makes the frame sixteen times as long: the same bytes again and again.
#include <algorithm>
#include <vector>

#include "process/tprocess_ctl.h"
#include "proto/data_common.h"
#include "proto/registerspace_names.h"
#include "stub/frame_layout.h"
#include "stub/mcuqmbthread.h"
#include "support/inprocess.h"
#include "world.h"

using namespace ZEPH_MCUC;

namespace {

constexpr unsigned kLengthBits = 0x0FFF;
constexpr unsigned kAsItStands = 0x8000;
constexpr unsigned kOwnAddress = 0x4000;
constexpr unsigned kKeepQueued = 0x2000;
constexpr unsigned kSixteenfold = 0x1000;

void PutInSpace(std::vector<std::uint8_t>* bytes) {
  std::uint8_t* const at = bytes->data() + frame::kRegister;
  const SpaceNames& space = *kSpaces[at[3] % kSpaces.size()];
  const std::uint32_t base = space.top[space.top[1].cmdStr != nullptr ? at[3] >> 7 : 0].key;
  DWQ_ENCDW(at, base | (DWQ_DECDW(at) & 0x00FFFFFF));
}

void MakeRight(std::vector<std::uint8_t>* bytes) {
  std::uint8_t* const p = bytes->data();
  const auto size = static_cast<std::int32_t>(bytes->size());
  DWQ_RENCWD(p, PROTOCOL_HEADER_TAG_REQUEST);
  p[frame::kAck] = 0;
  p[frame::kCode] &= 1;
  p[frame::kDeviceType] %= 5;
  if (p[frame::kCode] == JSHL_PROTOWRITE) {
    DWQ_ENCWD(p + frame::kDataLength, static_cast<std::uint16_t>(size - frame::kShortest));
  }
  const std::int32_t sum = size - frame::kChecksumSize;
  DWQ_ENCWD(p + sum, FrameSum(p + frame::kAck, sum - frame::kAck));
}

// A frame is answered once, whatever else is sent; what is none isn't.
void Deliver(std::vector<std::uint8_t> bytes, unsigned word) {
  const bool whole = bytes.size() >= static_cast<std::size_t>(frame::kShortest);
  if (whole && (word & kOwnAddress) == 0) PutInSpace(&bytes);
  if (whole && (word & kAsItStands) == 0) MakeRight(&bytes);
  const int sent = world::Deliver(bytes);
  Want(whole ? sent >= 1 : sent == 0);
  if ((word & kKeepQueued) == 0) inprocess::DrainQueue();
}

void PassOfTheLoop() {
  Tprocess_ctl::getInstance()->RebootAfterRF();
  McuQMBThread::PollingPass();
}

// A reset has the device reboot, which doesn't happen here.
void Forget() {
  inprocess::DrainQueue();
  Data_Global::getInstance()->RebootRF = EN_NOT_REBOOT;
}

std::vector<std::uint8_t> FrameOf(world::Bytes bytes, unsigned word) {
  std::vector<std::uint8_t> frame;
  for (int times = (word & kSixteenfold) != 0 ? 16 : 1; times > 0; --times) {
    frame.insert(frame.end(), bytes.begin(), bytes.end());
  }
  return frame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  world::Start();
  std::size_t at = 0;
  while (at + 2 <= size) {
    const unsigned word = DWQ_DECWD(data + at);
    at += 2;
    const std::size_t length = std::min<std::size_t>(word & kLengthBits, size - at);
    if (length == 0) {
      PassOfTheLoop();
    } else {
      Deliver(FrameOf({data + at, length}, word), word);
    }
    at += length;
  }
  Forget();
  return 0;
}
