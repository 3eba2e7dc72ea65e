#include <cstdio>
#include <cstring>

#include "mcuctrace.h"

namespace ZEPH_MCUC {
namespace {

constexpr uint32_t kKeptFree = 64;  // bytes at the end of the buffer that no line uses

}  // namespace

CTrace::CLogRecorder::CLogRecorder(char* buffer, uint32_t size)
    : m_lpszBuf(buffer), m_dwSize(size) {
  reset();
}

void CTrace::CLogRecorder::reset() {
  m_dwPos = 0;
  m_bHex = false;
  if (m_dwSize > 0) m_lpszBuf[0] = '\0';
}

void CTrace::CLogRecorder::advance(const char* text) {
  if (text == nullptr || m_dwSize <= kKeptFree) return;
  const uint32_t room = m_dwSize - kKeptFree - m_dwPos;
  const auto length = static_cast<uint32_t>(strnlen(text, room));
  std::memcpy(m_lpszBuf + m_dwPos, text, length);
  m_dwPos += length;
  m_lpszBuf[m_dwPos] = '\0';
}

template <class Number>
CTrace::CLogRecorder& CTrace::CLogRecorder::Print(const char* decimalFormat, const char* hexFormat,
                                                  Number value) {
  char text[32];
  std::snprintf(text, sizeof(text), m_bHex ? hexFormat : decimalFormat, value);
  m_bHex = false;
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(char value) {
  const char text[2] = {value, '\0'};
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(int32_t value) {
  return Print("%d", "%x", value);
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(uint32_t value) {
  return Print("%u", "%x", value);
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(long value) {
  return Print("%ld", "%lx", value);
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(unsigned long value) {
  return Print("%lu", "%lx", value);
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(double value) {
  char text[352];  // the largest double has 309 digits before the point
  std::snprintf(text, sizeof(text), "%f", value);
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(const char* text) {
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(const void* pointer) {
  char text[32];
  std::snprintf(text, sizeof(text), "0x%lx", reinterpret_cast<unsigned long>(pointer));
  advance(text);
  return *this;
}

CTrace::CLogRecorder& CTrace::CLogRecorder::operator<<(Ordix base) {
  m_bHex = base == hex;
  return *this;
}

}  // namespace ZEPH_MCUC
