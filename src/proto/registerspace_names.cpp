#include "proto/registerspace_names.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace ZEPH_MCUC {
namespace {

// An access as the checks see it.
struct Access {
  const SpaceNames& space;
  const RowNames& row;
  const AccessRule& rule;
  uint32_t offset;
  int32_t length;
  const char* what;  // "read" or "write"
};

__attribute__((format(printf, 1, 2))) std::string Text(const char* format, ...) {
  char text[160];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

bool Contains(const Area& area, const Access& access) {
  const uint64_t end = uint64_t{access.offset} + static_cast<uint32_t>(access.length);
  return access.offset >= area.begin && end <= area.end;
}

// The area that says best why the access fits none: where it begins, else the first.
const Area& NearestArea(const Access& access) {
  const auto& areas = access.rule.areas;
  const auto begins = std::find_if(areas.begin(), areas.end(), [&](const Area& area) {
    return access.offset >= area.begin && access.offset < area.end;
  });
  return begins == areas.end() ? areas.front() : *begins;
}

Prospect Serve(const Access& access, Service service) {
  switch (service) {
    case Service::kServed:
      return {Meets::kServed, &access.space, "fine"};
    case Service::kNothing:
      return {Meets::kNothing, &access.space,
              Text("a %s here is answered, but moves no bytes", access.what)};
    case Service::kRefused:
      break;
  }
  return {Meets::kRefused, &access.space,
          access.rule.exact.empty()
              ? Text("the %s space takes no %ss", access.space.top[0].cmdStr, access.what)
              : Text("the %s space takes no %s of this length here", access.space.top[0].cmdStr,
                     access.what)};
}

Prospect CheckLength(const Access& access, int32_t least, int32_t most) {
  if (access.length >= least && access.length <= most) return {Meets::kServed, &access.space, ""};
  return {Meets::kLength, &access.space,
          Text("a %s of %d bytes; %s takes %d to %d", access.what, access.length, access.row.cmdStr,
               least, most)};
}

Prospect CheckAreas(const Access& access) {
  const auto& areas = access.rule.areas;
  const auto fits = [&](const Area& area) { return Contains(area, access); };
  if (areas.empty() || std::any_of(areas.begin(), areas.end(), fits)) {
    return Serve(access, access.rule.service);
  }
  const bool dropped = access.rule.outside == Outside::kDropped;
  const Area& area = NearestArea(access);
  return {dropped ? Meets::kDropped : Meets::kPastEnd, &access.space,
          Text("%d bytes from offset 0x%X do not lie inside 0x%X to 0x%X of the %s space",
               access.length, access.offset, area.begin, area.end - 1, access.space.top[0].cmdStr)};
}

Prospect CheckRule(const Access& access) {
  for (const Exact& exact : access.rule.exact) {
    if ((access.offset & exact.mask) == exact.offset && access.length == exact.length) {
      return Serve(access, exact.service);
    }
  }
  if (access.rule.most != 0) {
    Prospect length = CheckLength(access, 0, access.rule.most);
    if (length.meets != Meets::kServed) return length;
  }
  return CheckAreas(access);
}

Prospect Foresee(uint32_t address, int32_t length, bool write) {
  const SpaceNames* space = FindSpace(address);
  if (space == nullptr) {
    return {Meets::kNoSpace, nullptr, Text("no register space has address 0x%08X", address)};
  }
  const RowNames* row = FindRow(*space, address);
  if (row == nullptr) {
    return {Meets::kNoRow, space,
            Text("the %s space has no register 0x%08X", space->top[0].cmdStr, address)};
  }
  const Access access{*space,
                      *row,
                      write ? space->write : space->read,
                      address & space->offsetMask,
                      length,
                      write ? "write" : "read"};
  if (write && length == 0) return {Meets::kLength, space, "nothing to write"};
  const int32_t least = space->rowsChecked ? space->least : 0;
  const int32_t most = space->rowsChecked ? space->most : INT32_MAX;
  Prospect checked = CheckLength(access, write ? std::max(least, row->leastWritten) : least, most);
  return checked.meets == Meets::kServed ? CheckRule(access) : checked;
}

}  // namespace

const SpaceNames* FindSpace(uint32_t address) {
  const uint32_t key = TopTableKey(address);
  for (const SpaceNames* space : kSpaces) {
    for (const TopRow& row : space->top) {
      if (row.cmdStr != nullptr && row.key == key) return space;
    }
  }
  return nullptr;
}

const RowNames* FindRow(const SpaceNames& space, uint32_t address) {
  if (!space.rowsChecked) return &space.rows.front();
  const auto row = std::find_if(
      space.rows.begin(), space.rows.end(),
      [&](const RowNames& candidate) { return candidate.key == (address & space.mask); });
  return row == space.rows.end() ? nullptr : &*row;
}

Prospect ForeseeRead(uint32_t address, int32_t length) { return Foresee(address, length, false); }

Prospect ForeseeWrite(uint32_t address, int32_t length) { return Foresee(address, length, true); }

}  // namespace ZEPH_MCUC
