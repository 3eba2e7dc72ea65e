// Trace files: text behind a header that says where the text ends, and a limit to their size.
#pragma once

#include <fcntl.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "mcucmutex.h"

namespace ZEPH_MCUC {

// Guards the trace, the manager and all files.
extern constinit CMutexThreadRecursive g_mutex;

// One file. The first 32 bytes hold the offset of the end of the text in decimal; the writer always
// goes by that number, not by the file's size. All members are used with `g_mutex` held.
class CTraceFile {
 public:
  // Opens `name`, emptied. Where it can't be opened the object exists and drops what it is given.
  CTraceFile(const char* name, unsigned long maxSize, uint8_t shared, int32_t flushFreq);
  ~CTraceFile();
  CTraceFile(const CTraceFile&) = delete;
  CTraceFile& operator=(const CTraceFile&) = delete;

  // Writes one line of `text` at a level named `levelName`.
  void write(const char* levelName, const char* text);

  bool isOpen() const { return m_nMagicNumber == kMagic; }
  bool maxReached() const { return m_bMaxReached != 0; }
  const std::string& name() const { return m_pFileName; }
  void refresh(unsigned long maxSize, int32_t flushFreq);

  CTraceFile* m_pNext = nullptr;  // next in the manager's list

 private:
  static constexpr int32_t kMagic = 20170619;  // stands in `m_nMagicNumber` while the object lives

  int formatLine(char* buffer, std::size_t room, const char* levelName, const char* text) const;
  void write_shared(const char* levelName, const char* text);
  void flush_buffer();
  bool lockShared();
  long readEnd();
  void writeEnd(long end);

  uint8_t m_bMaxReached = 0;
  FILE* m_pFile = nullptr;
  std::string m_pFileName;
  unsigned long m_lMaxSize;
  int32_t m_nFlushFreq;  // lines per flush, and kilobytes of buffer
  uint8_t m_bShared;     // several processes write this file
  struct flock m_lock {};
  struct flock m_unlock {};
  std::string m_buffer;
  unsigned long m_pos = 0;
  int32_t m_current_line = 0;
  int32_t m_nMagicNumber = kMagic;
};

// All open files.
class CTraceFileMgr {
 public:
  // The file that is open under `name`, or a new one.
  CTraceFile* open(const char* name, unsigned long maxSize, uint8_t shared, int32_t flushFreq)
      MCUC_REQUIRES(g_mutex);
  // Closes `file`; a pointer that is not in the list is left alone.
  void close(CTraceFile* file) MCUC_REQUIRES(g_mutex);
  void refresh(unsigned long maxSize, int32_t flushFreq) MCUC_REQUIRES(g_mutex);

 private:
  CTraceFile* m_pHead = nullptr;
  int32_t m_cCount = 0;
};

// The file layer as the trace calls it; a handle is what the open returned. Each takes `g_mutex`.
void* _Open_Trace_Dev(const char* name, unsigned long maxSize, uint8_t shared, int32_t flushFreq);
void _Close_Trace_Dev(void* handle);
void _Write_Trace_Dev(void* handle, const char* module, const char* levelName, const char* text);
void _Refresh_Settings(unsigned long maxSize, int32_t flushFreq);

}  // namespace ZEPH_MCUC
