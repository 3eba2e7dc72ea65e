#include "mcuctracefile.h"

#include <platform/system.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "mcucstdout.h"

namespace ZEPH_MCUC {

constinit CMutexThreadRecursive g_mutex;

namespace {

constinit CTraceFileMgr g_trace_mgr;

constexpr long kHeaderSize = 32;
constexpr unsigned log_uuid = 0;  // stands in each line and is never set
constexpr std::size_t kLineMax = 1024;

}  // namespace

CTraceFile::CTraceFile(const char* name, unsigned long maxSize, uint8_t shared, int32_t flushFreq)
    : m_pFileName(name),
      m_lMaxSize(maxSize),
      m_nFlushFreq(flushFreq),
      m_bShared(shared),
      m_buffer(static_cast<std::size_t>(flushFreq) * 1024 + 1, '\0') {
  m_lock.l_type = F_WRLCK;
  m_unlock.l_type = F_UNLCK;
  m_pFile = std::fopen(name, shared != 0 ? "a+" : "w+t");
  if (m_pFile == nullptr) return;
  if (m_bShared == 0) {
    writeEnd(kHeaderSize);
    return;
  }
  chmod(name, 0666);
  std::fclose(m_pFile);
  m_pFile = std::fopen(name, "r+");
  if (m_pFile == nullptr || !lockShared()) return;
  char last = 0;
  if (pread(fileno(m_pFile), &last, 1, kHeaderSize - 1) != 1) writeEnd(kHeaderSize);  // a new file
  fcntl(fileno(m_pFile), F_SETLK, &m_unlock);
}

CTraceFile::~CTraceFile() {
  if (m_pFile != nullptr) {
    flush_buffer();
    std::fclose(m_pFile);
  }
  m_nMagicNumber = 0;
}

void CTraceFile::refresh(unsigned long maxSize, int32_t flushFreq) {
  m_lMaxSize = maxSize;
  if (flushFreq == m_nFlushFreq) return;
  flush_buffer();
  m_nFlushFreq = flushFreq;
  m_buffer.assign(static_cast<std::size_t>(flushFreq) * 1024 + 1, '\0');
}

int CTraceFile::formatLine(char* buffer, std::size_t room, const char* levelName,
                           const char* text) const {
  timeval now{};
  platform::GetTimeOfDay(&now, nullptr);
  const time_t seconds = now.tv_sec;
  tm t{};
  localtime_r(&seconds, &t);
  const int length =
      std::snprintf(buffer, room, "[%02d/%02d/%04d %02d:%02d:%02d.%03ld pid=%d uuid=0x%x] %s:%s\n",
                    t.tm_mon + 1, t.tm_mday, t.tm_year + 1900, t.tm_hour, t.tm_min, t.tm_sec,
                    static_cast<long>(now.tv_usec / 1000), getpid(), log_uuid, levelName, text);
  return std::clamp(length, 0, static_cast<int>(room) - 1);
}

void CTraceFile::write(const char* levelName, const char* text) {
  if (m_pFile == nullptr) return;
  if (m_bShared != 0) {
    write_shared(levelName, text);
    return;
  }
  m_pos += static_cast<unsigned long>(
      formatLine(m_buffer.data() + m_pos, m_buffer.size() - m_pos, levelName, text));
  if (++m_current_line >= m_nFlushFreq) flush_buffer();
}

void CTraceFile::flush_buffer() {
  if (m_pFile == nullptr || m_pos == 0) return;
  const long end = readEnd();
  if (m_lMaxSize != 0 && m_lMaxSize <= static_cast<unsigned long>(end)) {
    m_bMaxReached = 1;  // this line is its last, also where what lies behind can't be cut off
    static_cast<void>(ftruncate(fileno(m_pFile), end) == 0);
  }
  std::fseek(m_pFile, end, SEEK_SET);
  const std::size_t written = std::fwrite(m_buffer.data(), 1, m_pos, m_pFile);
  SayOnStandardOutput({m_buffer.data(), m_pos});
  writeEnd(end + static_cast<long>(written));
  m_pos = 0;
  m_current_line = 0;
}

void CTraceFile::write_shared(const char* levelName, const char* text) {
  char line[kLineMax + 1];
  const int length = formatLine(line, sizeof(line), levelName, text);
  if (!lockShared()) return;
  long end = readEnd();
  if (m_lMaxSize != 0 && m_lMaxSize <= static_cast<unsigned long>(end)) {
    if (ftruncate(fileno(m_pFile), end) == 0) end = kHeaderSize;
  }
  std::fseek(m_pFile, end, SEEK_SET);
  const std::size_t written = std::fwrite(line, 1, static_cast<std::size_t>(length), m_pFile);
  writeEnd(end + static_cast<long>(written));
  fcntl(fileno(m_pFile), F_SETLK, &m_unlock);
}

bool CTraceFile::lockShared() {
  while (fcntl(fileno(m_pFile), F_SETLKW, &m_lock) != 0) {
    if (errno != EINTR && errno != EAGAIN) return false;
  }
  return true;
}

// The header's number. One that can't be read counts as an empty file's: text never lands on it.
// Read past the stream, whose buffer may be older than what another process wrote since.
long CTraceFile::readEnd() {
  char header[kHeaderSize + 1] = {};
  if (pread(fileno(m_pFile), header, kHeaderSize, 0) != kHeaderSize) return kHeaderSize;
  return std::max(kHeaderSize, std::strtol(header, nullptr, 10));
}

void CTraceFile::writeEnd(long end) {
  std::fseek(m_pFile, 0, SEEK_SET);
  std::fprintf(m_pFile, "%-31ld\n", end);
  std::fflush(m_pFile);
}

CTraceFile* CTraceFileMgr::open(const char* name, unsigned long maxSize, uint8_t shared,
                                int32_t flushFreq) {
  for (CTraceFile* file = m_pHead; file != nullptr; file = file->m_pNext) {
    if (file->name() == name) return file;
  }
  auto* file = new CTraceFile(name, maxSize, shared, flushFreq);
  file->m_pNext = m_pHead;
  m_pHead = file;
  ++m_cCount;
  return file;
}

void CTraceFileMgr::close(CTraceFile* file) {
  for (CTraceFile** link = &m_pHead; *link != nullptr; link = &(*link)->m_pNext) {
    if (*link != file) continue;
    *link = file->m_pNext;
    --m_cCount;
    delete file;
    return;
  }
}

void CTraceFileMgr::refresh(unsigned long maxSize, int32_t flushFreq) {
  for (CTraceFile* file = m_pHead; file != nullptr; file = file->m_pNext) {
    file->refresh(maxSize, flushFreq);
  }
}

void* _Open_Trace_Dev(const char* name, unsigned long maxSize, uint8_t shared, int32_t flushFreq) {
  const CMutexGuardT guard(g_mutex);
  return g_trace_mgr.open(name, maxSize, shared, flushFreq);
}

void _Close_Trace_Dev(void* handle) {
  const CMutexGuardT guard(g_mutex);
  g_trace_mgr.close(static_cast<CTraceFile*>(handle));
}

void _Write_Trace_Dev(void* handle, const char* /*module*/, const char* levelName,
                      const char* text) {
  const CMutexGuardT guard(g_mutex);
  auto* file = static_cast<CTraceFile*>(handle);
  if (file != nullptr && file->isOpen()) file->write(levelName, text);
}

void _Refresh_Settings(unsigned long maxSize, int32_t flushFreq) {
  const CMutexGuardT guard(g_mutex);
  g_trace_mgr.refresh(maxSize, flushFreq);
}

}  // namespace ZEPH_MCUC
