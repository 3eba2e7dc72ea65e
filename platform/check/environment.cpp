// platform/envcfg.h: the environment store, its shell tool, the hardware clock's date and time.
#include <platform/envcfg.h>
#include <platform/system.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "check/report.h"

namespace check {
namespace {

constexpr char kKey[] = "quivord_check";  // stays in the store: it has no removal
constexpr char kNoKey[] = "quivord_check_never_set";

bool Is(const char* text, const std::string& wanted) { return text != nullptr && text == wanted; }

// One access as the daemon makes it.
bool SetAndGet(const std::string& key, const std::string& value) {
  const bool good = envcfg_openenv() == 0 && envcfg_setenv(key.c_str(), value.c_str()) == 0 &&
                    Is(envcfg_getenv(key.c_str()), value);
  envcfg_closeenv();
  return good;
}

void Nesting(Report& report) {
  const bool opened = envcfg_openenv() == 0 && envcfg_openenv() == 0;
  const char* const text = envcfg_getenv(kKey);
  const std::string copy = text == nullptr ? "" : text;
  envcfg_closeenv();
  report.Holds(opened && Is(envcfg_getenv(kKey), copy) && Is(text, copy),
               "opens nest, and a text stays until the last close");
  envcfg_closeenv();
  report.Holds(envcfg_getenv(kKey) == nullptr, "a store that is closed gives nothing");
}

void Tool(Report& report) {
  const bool ran = platform::RunShell("envcfg set quivord_check by-tool") == 0;
  envcfg_openenv();
  report.Holds(ran && Is(envcfg_getenv(kKey), "by-tool"), "what the tool envcfg sets is read");
  envcfg_closeenv();
}

void Threads(Report& report) {
  const bool apart = AtOnce(4, [](int i) {
    const std::string key = kKey + std::to_string(i);
    bool good = true;
    for (int round = 0; round < 20; ++round) {
      good = SetAndGet(key, std::to_string(round * 4 + i)) && good;
    }
    return good;
  });
  report.Holds(apart, "several threads each read what they have set");
}

// Three numbers with `between` them, in 50 bytes.
bool IsTriple(int (*get)(char*), char between, int numbers[3]) {
  Buffer text(50);
  if (get(reinterpret_cast<char*>(text.data())) != 0 || !text.Untouched(50)) return false;
  text.data()[49] = 0;
  char first = 0, second = 0;
  return std::sscanf(reinterpret_cast<char*>(text.data()), "%d%c%d%c%d", &numbers[0], &first,
                     &numbers[1], &second, &numbers[2]) == 5 &&
         first == between && second == between;
}

void Date(Report& report) {
  int date[3] = {}, time[3] = {};
  const bool dated = IsTriple(envcfg_get_date_ymd, '-', date);
  report.Holds(
      dated && date[0] >= 1970 && date[1] >= 1 && date[1] <= 12 && date[2] >= 1 && date[2] <= 31,
      "the date is year-month-day, in its buffer");
  const bool timed = IsTriple(envcfg_get_date_hms, ':', time);
  report.Holds(timed && time[0] >= 0 && time[0] < 24 && time[1] >= 0 && time[1] < 60 &&
                   time[2] >= 0 && time[2] < 61,
               "the time is hour:minute:second, in its buffer");
}

}  // namespace

void Environment(Report& report, const Options&) {
  report.Holds(SetAndGet(kKey, "first"), "a key that is set is read back");
  report.Holds(SetAndGet(kKey, "the second, with blanks"), "a key takes a new value");
  const bool opened = envcfg_openenv() == 0;
  report.Holds(opened && envcfg_getenv(kNoKey) == nullptr, "a key that is unset gives nothing");
  envcfg_closeenv();
  Nesting(report);
  Tool(report);
  Threads(report);
  Date(report);
}

}  // namespace check
