// The fault counters by name, for whoever sets them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "board/board.h"

namespace board {

inline constexpr std::size_t kFaultCounters = 16;
inline constexpr std::size_t kFaultFileSize = kFaultCounters * 4;

struct FaultRow {
  Fault fault;
  std::string_view name;
  std::string_view effect;  // a line for people
};

// All counters that can be set by name, ordered by their index in the file.
inline constexpr std::array<FaultRow, 15> kFaultTable = {{
    {Fault::kFpgaWrite, "fpga-write", "an FPGA write fails and moves nothing"},
    {Fault::kFpgaRead, "fpga-read", "an FPGA read fails and moves nothing"},
    {Fault::kFlashRead, "flash-read", "a flash read fails and moves nothing"},
    {Fault::kFlashWrite, "flash-write", "a flash write fails and moves nothing, in all stores"},
    {Fault::kCardRead, "card-read", "a read from a card fails"},
    {Fault::kCardWrite, "card-write", "a write to a card fails"},
    {Fault::kBusSend, "bus-send", "a send over the bus fails"},
    {Fault::kEnvOpen, "env-open", "opening the environment store fails"},
    {Fault::kNet, "net", "a network setting fails"},
    {Fault::kEdidRead, "edid-read", "reading an input board's EDID fails"},
    {Fault::kEdidWrite, "edid-write", "writing an input board's EDID fails"},
    {Fault::kClockChip, "clock-chip", "the clock chip's ioctl fails"},
    {Fault::kFlashCut, "flash-cut", "the COUNT-th flash write from now is torn by a power cut"},
    {Fault::kFlashLoss, "flash-loss", "seed: a cut drops some of the writes since the last sync"},
    {Fault::kSkip, "skip", "so many accesses that would fail pass first"},
}};

// The counter that `name` means.
std::optional<Fault> FaultByName(std::string_view name);

// The counter's value now, and how it is set; other processes see it at once.
int FaultCount(Fault fault);
void SetFaultCount(Fault fault, int count);

// Adds 1 to a counter. Takes 1 off a counter above 0 and says what is left; -1 where it wasn't.
void CountUp(Fault fault);
int CountDown(Fault fault);

}  // namespace board
