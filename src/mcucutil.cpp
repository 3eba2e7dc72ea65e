#include "mcucutil.h"

#include <platform/system.h>

namespace ZEPH_MCUC {

void Delay(int ms) {
  if (ms > 0) platform::SleepMicroseconds(static_cast<uint64_t>(ms) * 1000);
}

int Bytes2String(const uint8_t* src, int length, char* dst, int max) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  if (dst == nullptr || max <= 0) return 0;
  if (src == nullptr || length <= 0 || length > (max - 1) / 3) length = 0;
  for (int i = 0; i < length; ++i) {
    *dst++ = kDigits[src[i] >> 4];
    *dst++ = kDigits[src[i] & 0x0F];
    *dst++ = ' ';
  }
  *dst = '\0';
  return 3 * length;
}

}  // namespace ZEPH_MCUC
