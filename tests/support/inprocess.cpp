#include "support/inprocess.h"

#include "driverutil.h"
#include "process/tprocess_ctl.h"
#include "proto/tshl_ctl.h"
#include "stub/startup.h"

namespace inprocess {
namespace {

using namespace ZEPH_MCUC;

constexpr std::uint32_t kPeer = 0x7E0002;

QMB_proto3rd Request(std::uint8_t code, std::uint32_t address, std::size_t length) {
  Start();
  QMB_proto3rd request;
  request.proto.m_usHeader = PROTOCOL_HEADER_TAG_RESPONSE;  // what a request's tag is read as
  request.proto.m_ucCode = code;
  request.proto.m_uiRegisterUnitAddress = address;
  request.proto.m_usValidDataLength = static_cast<std::uint16_t>(length);
  request.ipcHeader.uiid = kPeer;
  request.ipcHeader.largeLabel = LABEL_MSG;
  return request;
}

int Digit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

}  // namespace

void Start() {
  static const bool started = [] {
    DriverUtil::getInstance()->initialize();
    Tprocess_ctl::getInstance()->initialize();
    Tshl_ctl::getInstance()->initialize();
    StubUtil::getInstance()->wire(DaemonWiring());
    return true;
  }();
  static_cast<void>(started);
}

QMB_proto3rd ReadRequest(std::uint32_t address, std::uint16_t length) {
  return Request(JSHL_PROTOREAD, address, length);
}

QMB_proto3rd WriteRequest(std::uint32_t address, std::span<const std::uint8_t> data) {
  QMB_proto3rd request = Request(JSHL_PROTOWRITE, address, data.size());
  request.proto.m_data.assign(data.begin(), data.end());
  return request;
}

ThirdProtoMCUCMsg Serve(QMB_proto3rd request) {
  StubUtil::getInstance()->onDataRecvFromQMBNew(&request);
  request.proto.m_data.resize(request.proto.m_usValidDataLength);  // as the encoder has decided
  return request.proto;
}

ThirdProtoMCUCMsg Read(std::uint32_t address, std::uint16_t length) {
  return Serve(ReadRequest(address, length));
}

ThirdProtoMCUCMsg Write(std::uint32_t address, std::span<const std::uint8_t> data) {
  return Serve(WriteRequest(address, data));
}

int DrainQueue() {
  Start();
  int jobs = 0;
  while (StubUtil::getInstance()->processThread()->RunFirst()) ++jobs;
  return jobs;
}

std::vector<std::uint8_t> Bytes(const char* hex) {
  std::vector<std::uint8_t> bytes;
  for (; *hex != '\0'; ++hex) {
    if (*hex == ' ') continue;
    bytes.push_back(static_cast<std::uint8_t>(Digit(hex[0]) << 4 | Digit(hex[1])));
    ++hex;
  }
  return bytes;
}

}  // namespace inprocess
