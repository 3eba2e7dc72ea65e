// The registers of a board's sending card, read and written as commands do it, the feature
// registers by their names.
//
// A reply to a write comes before the work. Nobody who sets something should have to know: what is
// set here is read back until it shows.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <span>

#include "command.h"
#include "proto/calc_feature.h"
#include "proto/feature_names.h"
#include "register.h"

namespace ctl {

// How long a value may take to show after it was written.
inline constexpr std::chrono::seconds kSettleTime{5};

// What daemon and FPGA hold at one moment.
struct FeaturePage {
  std::array<std::uint8_t, ZEPH_MCUC::feature::kSize> image{};
  std::array<std::uint8_t, ZEPH_MCUC::feature::kSize> cells{};

  // The bytes of a register, where they are up to date.
  std::span<const std::uint8_t> Bytes(const ZEPH_MCUC::FeatureRegister& row) const;

  // Whether the FPGA has its parameters: no restore leaves a 0 there.
  bool Restored() const { return cells[ZEPH_MCUC::feature::kInputMode] != 0; }
};

// A write, and how to see that it has taken effect.
struct Change {
  std::uint32_t address;
  std::vector<std::uint8_t> data;
  std::uint32_t shown_at;
  std::uint16_t shown_length;
  std::function<bool(std::span<const std::uint8_t>)> shows;
};

class Device {
 public:
  // Connects; where it can't, or the options mean another device than the sending card, the reason
  // has been said and the exit status is in `exit`.
  static std::unique_ptr<Device> Open(const Context& context, Exit& exit);

  // All of it, without making the daemon fetch anything into its image. `kDone` or why not.
  Answer ReadPage(FeaturePage& page);

  // The bytes of one register.
  Answer Read(const ZEPH_MCUC::FeatureRegister& row);

  // `length` bytes at any address; a reply may be shorter.
  Answer Read(std::uint32_t address, std::uint16_t length);

  // Reads until `shows`, `kSettleTime` at most. `data` is what was read last; an answer of
  // `kRefused` with data says that it didn't show.
  using Shows = std::function<bool(std::span<const std::uint8_t>)>;
  Answer Await(std::uint32_t address, std::uint16_t length, const Shows& shows);

  // Writes, then awaits.
  Answer Write(const Change& change);

  // `length` bytes at `address`, all of them or a refusal.
  Answer ReadBytes(std::uint32_t address, std::size_t length);

  // Writes and doesn't look whether it shows; what the device would refuse or lose isn't sent.
  Answer Send(std::uint32_t address, std::vector<std::uint8_t> data);

  // Waits until the device has carried out what it was asked for before, `limit` at most. Other
  // clients' requests may wait meanwhile, as behind any write.
  Answer AwaitWork(std::chrono::milliseconds limit = kSettleTime);

  // What a device behind a port answers.
  Answer ReadBehind(const quivord::Target& target, std::uint32_t address, std::uint16_t length);

 private:
  Device(const Options& options, std::unique_ptr<quivord::Client> client)
      : options_(options), client_(std::move(client)) {}

  const Options& options_;
  std::unique_ptr<quivord::Client> client_;
};

// The register of a cell of the FPGA.
constexpr std::uint32_t CellRegister(std::uint32_t bus) { return 0xF0000000 + bus; }

// Where a read of `row` is up to date.
std::uint32_t FeatureAddress(const ZEPH_MCUC::FeatureRegister& row);

}  // namespace ctl
