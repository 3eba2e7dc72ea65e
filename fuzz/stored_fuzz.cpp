// What is read back from flash may be anything: an older program's, torn by a cut, never written.
// One program a stored format (`QUIVORD_FORMAT`): the input lies where the format lies in the live
// store, what is around it is as in a new store, and the daemon reads it as it does at start and at
// a client's request.
#include <algorithm>
#include <string_view>

#include "process/inputSource.h"
#include "process/proc_poll.h"
#include "proto/addr_hardwarebrightnessadjust.h"
#include "proto/calc_flashmap.h"
#include "proto/data_common.h"
#include "support/inprocess.h"
#include "world.h"

using namespace ZEPH_MCUC;

namespace {

struct Piece {
  std::uint32_t address;
  std::size_t length;
};

struct Format {
  const char* name;
  Piece pieces[5];  // the input fills them one behind the other; a length of 0 ends them
  void (*readBack)();
  void (*choose)(std::uint8_t bits) = nullptr;  // takes a byte in front of the pieces
  bool repeats = false;  // what is left for the last piece fills it again and again
};

// Bit 0: the first boot after a factory reset.
void ChooseBoot(std::uint8_t bits) {
  constexpr std::uint8_t kFirst[] = {'f', 'i', 'r', 's', 't', 'b', 'o', 'o', 't', '=', '1', '\n'};
  world::PutEnvironment((bits & 1) != 0 ? world::Bytes(kFirst) : world::Bytes());
}

// As a start does it once the FPGA has loaded.
void Restore() {
  Data_Global* const global = Data_Global::getInstance();
  global->FpgaOnlineFlag = 1;
  global->RestoreFPGA();
}

void Write(std::uint32_t address, const char* hex) {
  inprocess::Write(address, inprocess::Bytes(hex));
  inprocess::DrainQueue();
}

// The parameter image and the tables of positions and numbers.
void ReadImage() {
  Restore();
  inprocess::Read(0x02000000, 512);
  inprocess::Read(0x03000000, 1024);
  inprocess::Read(0x03100000, 768);
}

// The records of layouts, simple and advanced.
void ReadShortcut() {
  Restore();
  inprocess::Read(0x02810000, 256);
  Write(0x02810000, "b9");
}

void ReadSettings() {
  InputSource* const inputs = InputSource::getInstance();
  inputs->InputBoardInit();
  u8 edid[256];
  for (u8 group = 0; group < 16; ++group) inputs->ReadEDIDInfo(group, edid);
}

// A gamma set by its tags, and the modes that choose what is loaded, with one that is none.
void ReadGamma() {
  for (const char* mode : {"00", "58", "78", "59"}) Write(0x02200117, mode);
  inprocess::Read(0x0E000000, 4);
}

void ReadIdentity() {
  Data_Global* const global = Data_Global::getInstance();
  global->SNTransfer();
  global->ReadHardwareInfo();
  inprocess::Read(0x00000000, 256);
  Write(0x00000016, "3132333435363738");
}

// Headers and packs of files for the cards, found and sent: what a client reads of them, and each
// file that the header can name, and one that it can't.
void ReadCardFiles() {
  inprocess::Read(0x0F000000, 1024);
  inprocess::Read(0x0F002000, 64);
  for (const u8 number : {0, 1, 31, 255}) Data_Global::getInstance()->LoadRvCfgFromFlash(number);
}

// Brightness plans, as a start finds them and as some seconds go on; the mix switched off and on.
void ReadPlans() {
  Addr_HardWareBrightnessAdjust::UpdataBrightnessPara();
  for (const char* on : {"00", "01"}) {
    for (int pass = 0; pass < 25; ++pass) Proc_Poll::AutoBrightnessadjust();
    inprocess::Read(0x0A000000, 512);
    Write(0x0A00000C, on);
  }
}

constexpr Format kFormats[] = {
    {"image",
     {{flash::kMorSMode, 1},
      {flash::kScreenSize, 0x60},
      {flash::kNumber, 768},
      {flash::kFeature, 512},
      {flash::kPosition, 40960}},
     ReadImage,
     ChooseBoot,
     true},
    {"shortcut", {{flash::kShortcut, 0x1000}}, ReadShortcut},
    {"settings", {{flash::kEdidRecord, 0x100}}, ReadSettings},
    {"gamma",
     {{flash::kGamma, 4},
      {0xD01000, 4},
      {0xD02000, 4},
      {flash::kHCInteraction, 0x200},
      {0xD03000, 0x6000}},
     ReadGamma},
    {"identity", {{flash::kBasicInfo, 0x100}, {flash::kBasicInfoCopy, 0x100}}, ReadIdentity},
    {"storedfiles", {{flash::kCardFiles, 0x4000}}, ReadCardFiles},
    {"plans", {{flash::kBrightness, 0x1400}}, ReadPlans},
};

constexpr const Format& Chosen() {
  for (const Format& format : kFormats) {
    if (std::string_view(format.name) == QUIVORD_FORMAT) return format;
  }
  return kFormats[0];
}
static_assert(std::string_view(Chosen().name) == QUIVORD_FORMAT);

// Where the input ends, a new store goes on.
void Fill(const Piece& piece, world::Bytes bytes, bool repeats) {
  world::ResetStore(piece.address, piece.length);
  std::size_t at = 0;
  do {
    const world::Bytes part = bytes.first(std::min(bytes.size(), piece.length - at));
    world::PutStore(piece.address + static_cast<std::uint32_t>(at), part);
    at += part.size();
  } while (repeats && !bytes.empty() && at < piece.length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr const Format& kFormat = Chosen();
  world::Start();
  world::Bytes rest(data, size);
  if (kFormat.choose != nullptr) {
    kFormat.choose(rest.empty() ? std::uint8_t{0} : rest[0]);
    rest = rest.subspan(std::min<std::size_t>(rest.size(), 1));
  }
  const Piece* const end = std::ranges::find(kFormat.pieces, std::size_t{0}, &Piece::length);
  for (const Piece* piece = kFormat.pieces; piece != end; ++piece) {
    Fill(*piece, rest, kFormat.repeats && piece + 1 == end);
    rest = rest.subspan(std::min(rest.size(), piece->length));
  }
  kFormat.readBack();
  return 0;
}
