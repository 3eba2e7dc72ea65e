#include "mcuctrace.h"

#include <platform/system.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace ZEPH_MCUC {

constinit Relaxed<int> g_logLevel{kLogNothing};
constinit Relaxed<int> log_on{0};

namespace {

constexpr unsigned long kMaxSize = 0x1400000;  // 20 MiB
constexpr int32_t kFlushFreq = 1;              // each line is flushed at once
constexpr int32_t kLastNumber = 9;             // of the files of one run and day

struct LogLevelEntry {
  unsigned long level;
  const char* name;
};
constexpr LogLevelEntry g_logLevelEntry[] = {
    {kLogError, "Error"}, {kLogWarning, "Warning"}, {kLogDebug, "Debug"}, {kLogInfo, "Info"}};

const char* LevelName(unsigned long level) {
  for (const LogLevelEntry& entry : g_logLevelEntry) {
    if (entry.level == level) return entry.name;
  }
  return "";
}

tm LocalTime() {
  const time_t now = platform::Time();
  tm local{};
  localtime_r(&now, &local);
  return local;
}

}  // namespace

CTrace::CTrace(const char* module, const char* privateInfo, uint8_t shared)
    : m_lpszModule(module),
      m_lpszPrivateInfo(privateInfo),
      m_bShared(shared),
      m_processid(getpid()) {
  load(nullptr);
}

CTrace* CTrace::instance() {
  static CTrace* const trace = new CTrace("Log", nullptr, 0);
  return trace;
}

bool CTrace::Wanted(unsigned long level) {
  const int filter = g_logLevel;
  if (level >= 5 || filter == kLogNothing) return false;
  if (filter == 2 && level > 2) return false;
  return filter != 0 || level <= 1;
}

void CTrace::trace_string(unsigned long level, const char* text) {
  if (!Wanted(level)) return;
  const CMutexGuardT guard(g_mutex);
  if (m_hTrace == nullptr) return;
  _Write_Trace_Dev(m_hTrace, m_lpszModule, LevelName(level), text);
  if (TakeDate()) load(m_hTrace);
  if (static_cast<CTraceFile*>(m_hTrace)->maxReached()) load(m_hTrace);
}

// True on a day that the open file is not of; its files are numbered from 0 again.
bool CTrace::TakeDate() {
  const tm now = LocalTime();
  if (now.tm_mday == m_iCurrInfoDay && now.tm_mon + 1 == m_iCurrInfoMonth) return false;
  m_iCurrInfoDay = now.tm_mday;
  m_iCurrInfoMonth = now.tm_mon + 1;
  m_iCurrInfoYear = now.tm_year + 1900;
  m_iCurrCount = 0;
  return true;
}

void CTrace::MakeFileName(char* name, std::size_t size) {
  if (m_lpszPrivateInfo != nullptr) {
    std::snprintf(name, size, "%s", platform::DevicePath(m_lpszPrivateInfo).c_str());
    return;
  }
  std::snprintf(name, size, "%s/%s_info_%02d%02d%04d_%d.%d.log",
                platform::DevicePath(get_trace_dir()).c_str(), get_process_name(), m_iCurrInfoMonth,
                m_iCurrInfoDay, m_iCurrInfoYear, m_iCurrCount, m_processid);
}

uint8_t CTrace::load(void* old) {
  const CMutexGuardT guard(g_mutex);
  if (old == nullptr && m_hTrace != nullptr) return 1;
  char text[512];
  std::snprintf(text, sizeof(text), "mkdir -p %s", get_trace_dir());
  platform::RunShell(text);  // a folder that isn't there shows when the file does not open
  TakeDate();
  MakeFileName(text, sizeof(text));
  m_iCurrCount = m_iCurrCount >= kLastNumber ? 0 : m_iCurrCount + 1;
  if (old != nullptr) _Close_Trace_Dev(old);
  m_hTrace = _Open_Trace_Dev(text, kMaxSize, m_bShared, kFlushFreq);
  read_config();
  return 1;
}

void CTrace::read_config() { _Refresh_Settings(kMaxSize, kFlushFreq); }

const char* CTrace::get_process_name() {
  static const std::string name = [] {
    std::ifstream file("/proc/" + std::to_string(getpid()) + "/cmdline");
    std::string first;
    if (!std::getline(file, first, '\0') || first.empty()) return std::string("trace");
    return first.substr(first.rfind('/') + 1);
  }();
  return name.c_str();
}

}  // namespace ZEPH_MCUC
