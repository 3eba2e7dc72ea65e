// The trace log: everything the daemon has to say, into one text file per run and day and, as far
// as it takes lines at once, to standard output. Any thread may log; logging never stops the
// daemon.
#pragma once

#include <cstdint>

#include "mcuctracefile.h"
#include "mcucutil.h"

namespace ZEPH_MCUC {

// Levels of a line.
inline constexpr unsigned long kLogError = 0;
inline constexpr unsigned long kLogWarning = 1;
inline constexpr unsigned long kLogDebug = 2;
inline constexpr unsigned long kLogInfo = 3;

// What is logged: 0 levels 0 and 1, 2 levels 0 to 2, 3 all, 4 nothing. `main` sets both.
inline constexpr int kLogNothing = 4;
extern constinit Relaxed<int> g_logLevel;
extern constinit Relaxed<int> log_on;

class CTrace {
 public:
  enum Ordix { hex = 0, decimal = 1 };

  // Builds a line in the caller's buffer of `size` bytes. A line holds at most `size` - 64
  // characters; what is longer is cut. `hex` makes the next integer hexadecimal, that one alone.
  class CLogRecorder {
   public:
    CLogRecorder(char* buffer, uint32_t size);

    CLogRecorder& operator<<(char value);
    CLogRecorder& operator<<(uint8_t value) { return *this << static_cast<uint32_t>(value); }
    CLogRecorder& operator<<(short value) { return *this << static_cast<int32_t>(value); }
    CLogRecorder& operator<<(uint16_t value) { return *this << static_cast<uint32_t>(value); }
    CLogRecorder& operator<<(int32_t value);
    CLogRecorder& operator<<(uint32_t value);
    CLogRecorder& operator<<(long value);
    CLogRecorder& operator<<(unsigned long value);
    CLogRecorder& operator<<(float value) { return *this << static_cast<double>(value); }
    CLogRecorder& operator<<(double value);
    CLogRecorder& operator<<(const char* text);
    CLogRecorder& operator<<(const void* pointer);
    CLogRecorder& operator<<(Ordix base);

    operator char*() { return m_lpszBuf; }

    // Appends as much of `text` as fits.
    void advance(const char* text);
    // Starts over with an empty line.
    void reset();

   private:
    template <class Number>
    CLogRecorder& Print(const char* decimalFormat, const char* hexFormat, Number value);

    char* m_lpszBuf;
    uint32_t m_dwSize;
    uint32_t m_dwPos = 0;
    bool m_bHex = false;
  };

  virtual ~CTrace() = default;

  // The one instance; its first call opens the log file.
  static CTrace* instance();

  // Whether a line of `level` is logged at the present `g_logLevel`.
  static bool Wanted(unsigned long level);

  // Writes one line. A new day, or a file at its size limit, starts a new file behind it.
  void trace_string(unsigned long level, const char* text);

  // Opens the next file in place of `old`; null opens one only where none is open. Returns 1.
  uint8_t load(void* old);

  // Hands size limit and flush frequency to all files.
  void read_config();
  const char* get_trace_dir() const { return "/log"; }
  // The base name that this process was started under, or "trace".
  const char* get_process_name();

 private:
  CTrace(const char* module, const char* privateInfo, uint8_t shared);

  bool TakeDate() MCUC_REQUIRES(g_mutex);
  void MakeFileName(char* name, std::size_t size) MCUC_REQUIRES(g_mutex);

  const char* m_lpszModule;
  const char* m_lpszPrivateInfo;
  uint8_t m_bShared;
  int32_t m_processid;
  void* m_hTrace MCUC_GUARDED_BY(g_mutex) = nullptr;
  int32_t m_iCurrCount MCUC_GUARDED_BY(g_mutex) = 0;
  int32_t m_iCurrInfoDay MCUC_GUARDED_BY(g_mutex) = 0;
  int32_t m_iCurrInfoMonth MCUC_GUARDED_BY(g_mutex) = 0;
  int32_t m_iCurrInfoYear MCUC_GUARDED_BY(g_mutex) = 0;
};

// Logs `message`, a chain of values joined by <<, with the source's name and line in front. Nothing
// is formed for a line that is not logged.
#define MCUC_LOG(level, message)                                                                 \
  do {                                                                                           \
    if (::ZEPH_MCUC::CTrace::Wanted(level)) {                                                    \
      char mcuc_log_buffer[1024];                                                                \
      ::ZEPH_MCUC::CTrace::CLogRecorder mcuc_log_line(mcuc_log_buffer, sizeof(mcuc_log_buffer)); \
      mcuc_log_line << __FILE_NAME__ << " : " << __LINE__ << " " << message; /*NOLINT*/          \
      ::ZEPH_MCUC::CTrace::instance()->trace_string(level, mcuc_log_line);                       \
    }                                                                                            \
  } while (false)

}  // namespace ZEPH_MCUC
