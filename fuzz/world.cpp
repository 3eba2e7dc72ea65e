#include "world.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "board/board.h"
#include "home.h"
#include "mcuctrace.h"
#include "stub/startup.h"
#include "support/inprocess.h"

namespace world {
namespace {

using namespace ZEPH_MCUC;

int g_sent = 0;

// Every message that leaves is one envelope and one whole frame.
void CheckSent(const std::uint8_t* message, std::uint32_t length) {
  Want(length > kEnvelopeSize);
  const std::uint8_t* const frame = message + kEnvelopeSize;
  const auto size = static_cast<std::int32_t>(length - kEnvelopeSize);
  Flabel_t label;
  std::copy_n(message + sizeof(ihead_t), sizeof(label), reinterpret_cast<std::uint8_t*>(&label));
  ThirdProtoMCUCMsg decoded;
  Want(label.size == size);
  Want(MCUCMsg::Checkout(frame, size));
  Want(decoded.Decode(frame, size) == 0);
  ++g_sent;
}

// Commands are fixed texts with numbers in them: nothing that came from outside may mean something
// to a shell.
void CheckCommand(std::string_view command) {
  Want(command.find_first_of("`$;|&\\'()\n") == std::string_view::npos);
}

McuQMBThread& Front() {
  static auto* const front = new McuQMBThread(
      [](QMB_proto3rd* msg) { return StubUtil::getInstance()->onDataRecvFromQMBNew(msg); },
      [] { return false; });
  return *front;
}

}  // namespace

void Start() {
  static const bool started = [] {
    home::Make();
    g_logLevel = kLogNothing;
    inprocess::Start();
    return true;
  }();
  static_cast<void>(started);
}

int Deliver(Bytes frame) {
  Start();
  // A block of its own size, so that a read past its end is seen.
  const std::vector<std::uint8_t> bytes(frame.begin(), frame.end());
  ihead_t head{};
  head.ui_id = 0x7E0002;
  Flabel_t label{};
  label.label.large = LABEL_MSG;
  label.label.small = LABEL_MSG_LOCAL;
  label.size = static_cast<std::int32_t>(bytes.size());
  g_sent = 0;
  Front().dealDataBlockNew(&head, &label, bytes.data());
  return g_sent;
}

void PutEnvironment(Bytes text) {
  Start();
  std::ofstream file(board::Folder() / "usr/zeph/etc/envcfg/env", std::ios::binary);
  file.write(reinterpret_cast<const char*>(text.data()), static_cast<std::streamsize>(text.size()));
}

}  // namespace world

// What the link puts in the place of the platform's functions (see CMakeLists.txt): no wait waits,
// and what would be run or sent is looked at.
extern "C" {

void __wrap__ZN8platform17SleepMicrosecondsEm(std::uint64_t) {}
int __wrap__ZN8platform8RunShellEPKc(const char* command) {
  world::CheckCommand(command);
  return 0;
}
std::FILE* __wrap__ZN8platform9OpenShellEPKc(const char* command) {
  world::CheckCommand(command);
  return nullptr;
}
int __wrap__ZN8platform10CloseShellEP8_IO_FILE(std::FILE*) { return 0; }

std::int32_t __wrap_mbus_send(std::uint32_t, const void* message, std::uint32_t length) {
  world::CheckSent(static_cast<const std::uint8_t*>(message), length);
  return 0;
}
}
