// What the handlers of the work queue have in common.
#pragma once

#include "mcuctrace.h"
#include "mcucutil.h"
#include "stub/mcuprocessdatablock.h"

namespace ZEPH_MCUC {

// Runs `work()` between the begin and the finish line of the handler `name`. A null block is logged
// and does nothing. Always 0.
template <class Work>
int RunHandler(const char* name, const char* data, Work work) {
  if (data == nullptr) {
    MCUC_LOG(kLogError, "=== " << name << " ===: data block is null! return.");
    return 0;
  }
  MCUC_LOG(kLogInfo, "====== Begin " << name << " ======");
  work();
  MCUC_LOG(kLogInfo, "====== Finish " << name << " ======");
  return 0;
}

// Logs what a block holds; more than 511 bytes are not shown.
inline void LogBytes(const char* name, std::span<const uint8_t> bytes) {
  if (!CTrace::Wanted(kLogInfo)) return;
  char text[1536];
  Bytes2String(bytes.data(), static_cast<int>(bytes.size()), text, sizeof(text));
  MCUC_LOG(kLogInfo, name << " length = " << bytes.size() << " " << text);
}

inline void LogPenetrate(const char* name, const PenetrateInfo& info) {
  MCUC_LOG(kLogInfo, name << " register = " << CTrace::hex << info.Register);
  LogBytes(name, info.data);
}

// The same as `RunHandler` for a block that holds a register, a length and bytes, which are logged:
// `work(info)`.
template <class Work>
int RunPenetrateHandler(const char* name, const char* data, Work work) {
  return RunHandler(name, data, [&] {
    const PenetrateInfo info = ReadPenetrateInfo(data);
    LogPenetrate(name, info);
    work(info);
  });
}

}  // namespace ZEPH_MCUC
