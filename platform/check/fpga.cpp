// platform/fpga.h: cells, the ioctl channel, the report path. Written are the cells in which a
// packet waits; nothing sends it.
#include <driverutil_comif.h>
#include <platform/fpga.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include "check/report.h"

namespace check {
namespace {

constexpr std::uint32_t kCells = 0x300000;  // the packet buffer
constexpr std::uint32_t kSize = 256;
constexpr std::uint8_t kFpga = 1;

bool Read(std::uint32_t address, Buffer& buffer, std::uint8_t index = kFpga) {
  return ReadFPGABlock(index, address, static_cast<std::uint32_t>(buffer.size()), buffer.data()) ==
         0;
}

bool Write(std::uint32_t address, Buffer& buffer) {
  return WriteFPGABlock(kFpga, address, static_cast<std::uint32_t>(buffer.size()), buffer.data()) ==
         0;
}

Buffer Pattern(std::size_t size, int seed) {
  Buffer pattern(size);
  for (std::size_t i = 0; i < size; ++i) {
    pattern.data()[i] = static_cast<std::uint8_t>(static_cast<int>(i) * 5 + seed);
  }
  return pattern;
}

void Cells(Report& report) {
  Buffer pattern = Pattern(kSize, 1), seen(kSize), one = Pattern(1, 200);
  report.Holds(Write(kCells, pattern) && Read(kCells, seen) && seen == pattern,
               "cells hold what is written");
  pattern.data()[77] = one.data()[0];
  report.Holds(Write(kCells + 77, one) && Read(kCells, seen) && seen == pattern,
               "a cell is one byte wide");
  Buffer few(8);
  report.Holds(ReadFPGABlock(kFpga, kCells, 0x10004, few.data()) == 0 && few.Untouched(4) &&
                   std::equal(few.data(), few.data() + 4, pattern.data()),
               "a read's length is cut to 16 bits");
  few = Pattern(8, 90);
  std::copy_n(few.data(), 4, pattern.data());
  report.Holds(WriteFPGABlock(kFpga, kCells, 0x10004, few.data()) == 0 && Read(kCells, seen) &&
                   seen == pattern,
               "a write's length is cut to 16 bits");
}

void Refusals(Report& report) {
  Buffer seen(16);
  report.Holds(!Read(kCells, seen, 7) && seen.Untouched(),
               "a read of an FPGA that is not there fails and moves nothing");
  Buffer record(sizeof(ZEPH_MCUC::spidev_ioctl_access_t));
  report.Holds(Shal_comif_ioctl(static_cast<std::uint32_t>(record.size()), 1, record.data()) < 0 &&
                   record.Untouched(),
               "a request that means nothing fails and leaves its record");
}

void Request(Report& report) {
  ZEPH_MCUC::spidev_ioctl_access_t record{};
  record.header.length = sizeof record;
  record.header.type = ZEPH_MCUC::T_SPIDEV;
  record.header.cmd = ZEPH_MCUC::COMIF_READ_TX;
  record.header.index = kFpga;
  record.extra.header.subtype = ZEPH_MCUC::T_SPIDEV_REG;
  record.extra.offset = kCells;
  record.extra.length = kSize;
  Buffer cells(kSize);
  const bool read = Read(kCells, cells) && Shal_comif_ioctl(sizeof record, 1, &record) >= 0;
  report.Holds(read && std::memcmp(record.value, cells.data(), kSize) == 0,
               "the ioctl channel reads the same cells");
}

void Threads(Report& report) {
  const bool apart = AtOnce(4, [](int i) {
    const std::uint32_t place = kCells + static_cast<std::uint32_t>(i) * 64;
    bool good = true;
    for (int round = 0; round < 100; ++round) {
      Buffer pattern = Pattern(64, i * 50 + round), seen(64);
      good = Write(place, pattern) && Read(place, seen) && seen == pattern && good;
    }
    return good;
  });
  report.Holds(apart, "several threads each read what they have written");
}

void OldOrNew(Report& report) {
  std::atomic<bool> ended{false};
  const bool good = AtOnce(2, [&](int i) {
    Buffer cells(kSize);
    bool whole = true;
    if (i == 0) {
      for (int round = 0; round < 200; ++round) {
        std::memset(cells.data(), round % 2 == 0 ? 0x5A : 0x33, kSize);
        whole = Write(kCells, cells) && whole;
      }
      ended = true;
      return whole;
    }
    while (!ended) {
      whole = Read(kCells, cells) && whole;
      whole = std::all_of(cells.data(), cells.data() + kSize,
                          [](std::uint8_t byte) { return byte == 0x5A || byte == 0x33; }) &&
              whole;
    }
    return whole;
  });
  report.Holds(good, "a read beside a write gives each byte old or new");
}

}  // namespace

void Fpga(Report& report, const Options&) {
  Buffer old(kSize), other(16);
  const bool readable = report.Holds(Read(kCells, old), "FPGA 1 is read");
  report.Holds(Read(0, other, 0), "FPGA 0 is read");
  Cells(report);
  Refusals(report);
  Request(report);
  Threads(report);
  Buffer filling(kSize);
  std::memset(filling.data(), 0x33, kSize);
  if (Write(kCells, filling)) OldOrNew(report);
  report.Holds(readable && Write(kCells, old), "the cells are as they were");
  report.Holds(FPGA_UDP_Init() >= 0, "the report path is set up");
}

}  // namespace check
