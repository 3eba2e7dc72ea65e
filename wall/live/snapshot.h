// What a board folder holds at one moment, as it was read, not yet understood.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "board/faults.h"
#include "board/settings.h"
#include "colour/gammaset.h"
#include "live/log.h"
#include "proto/calc_brightness.h"
#include "proto/calc_feature.h"
#include "proto/calc_hc.h"
#include "proto/calc_pattern.h"
#include "wall/model.h"

namespace quivord::live {

inline constexpr std::size_t kFeatureCells = 0x200;
inline constexpr std::size_t kEdidBytes = 256;

struct DaemonState {
  int pid = 0;                  // 0: nobody holds the board
  std::int64_t started_us = 0;  // when it took the board, since 1970

  bool operator==(const DaemonState&) const = default;
};

struct PictureBytes {
  std::array<std::uint8_t, ZEPH_MCUC::pattern::kUsed> pattern = {};
  colour::GammaSet gamma = {};
  std::uint8_t tables = 0;  // the switch beside the tables: HDR tables, or a bit depth
  std::array<std::uint8_t, ZEPH_MCUC::hc::kHDRParaSize> request =
      {};  // the last HDR mode asked for

  bool operator==(const PictureBytes&) const = default;
};

struct Snapshot {
  std::string folder;
  bool exists = false;                // the folder is there
  std::vector<std::string> troubles;  // what can't be read, a sentence each without a full stop

  board::Settings settings;  // of `board.conf`, the defaults where it can't be read
  DaemonState daemon;
  bool fpga_loaded = false;

  std::array<std::uint8_t, kFeatureCells> cells = {};  // FPGA cells from 0 up
  wall::DeviceBytes device;  // tables and windows from the FPGA's cells, record and size from flash
  PictureBytes picture;
  std::vector<std::uint8_t> cards;  // records of the list of cards
  std::array<std::uint8_t, ZEPH_MCUC::brightness::kAreaSize> plan = {};
  std::array<std::int32_t, board::kFaultCounters> faults = {};
  std::map<std::uint16_t, std::array<std::uint8_t, kEdidBytes>> edids;  // by input id
  std::string lux = "0";  // what the light sensors see, decimal, or "fail"

  std::int64_t now_us = 0;     // the PC's clock, since 1970
  std::int64_t offset_us = 0;  // what the board's clock adds

  std::deque<LogEntry> log;
  std::int64_t trace_epoch_us = 0;      // when the trace's clock was 0, since 1970
  std::uint64_t trace_passed_over = 0;  // bytes that came too fast to be looked at
};

}  // namespace quivord::live
