#include "support/sweep.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "board/faults.h"
#include "board/files.h"
#include "board/journal.h"
#include "board/power.h"
#include "board/stores.h"
#include "support/board_kit.h"
#include "support/child.h"
#include "support/device.h"
#include "support/inprocess.h"
#include "support/sweep_board.h"

namespace sweep {
namespace {

using board::Fault;
using board::FaultRow;
using board::SetFaultCount;
using support::Complain;
using support::InChild;

constexpr int kFar = 1 << 30;  // more accesses than any operation makes
constexpr int kMostOnce = 4;   // of a kind, in a bounded sweep
constexpr int kMostCuts = 8;
constexpr int kSeeds = 2;    // of lost writes at each cut
constexpr int kRetries = 3;  // tries of an FPGA or flash access

void ClearTrace() { std::ofstream(board_kit::Named() / "trace.log", std::ios::trunc); }

// What is wrong with a run, or empty.
std::string Outcome(const support::ChildResult& run) {
  return run.status == 0 ? run.complaints : "ended with " + std::to_string(run.status);
}

// `regions` with `more`, all free.
std::vector<Region> Freed(std::vector<Region> regions, const std::vector<Region>& more) {
  regions.insert(regions.end(), more.begin(), more.end());
  for (Region& region : regions) region.free = true;
  return regions;
}

void ClearFaults() {
  for (const FaultRow& row : board::kFaultTable) SetFaultCount(row.fault, 0);
}

int Tries(Fault fault) { return fault <= Fault::kFlashWrite ? kRetries : 1; }

// `count` numbers from 1 up, or where those are more than `most`, that many of them with both ends.
std::vector<int> Pick(int count, int most) {
  std::vector<int> picked;
  const int wanted = std::min(count, most);
  for (int i = 0; i < wanted; ++i) {
    picked.push_back(wanted == 1 ? 1 : 1 + i * (count - 1) / (wanted - 1));
  }
  return picked;
}

class Sweep {
 public:
  Sweep(const Operation& operation, const Choice& choice)
      : operation_(operation), choice_{choice.only, choice.bounded && choice.only.empty()} {
    board_kit::Configure("speed = 2000\ntrace = flash\n");
    board::CreateStores();
    const std::string factory = board::FactoryImage();
    PutStore({reinterpret_cast<const std::uint8_t*>(factory.data()), factory.size()});
    MakeNewFiles();
    operation_.prepare();
    files_ = ReadFiles();
    before_.assign(Store().begin(), Store().end());
  }

  std::vector<std::string> Run() {
    if (!TakeReference()) return failures_;
    for (const FaultRow& row : board::kFaultTable) {
      if (row.fault < Fault::kFlashCut) SweepFault(row);
    }
    SweepCuts();
    std::printf("%s: %d runs, %zu failed\n", operation_.name, runs_, failures_.size());
    if (runs_ == 0) failures_.push_back("there is no run " + choice_.only);
    return failures_;
  }

 private:
  // The board as it stands, with power just come.
  static void ComeBack() {
    ClearFaults();
    board::ForgetWrites();
    ClearTrace();
    board::ForgetBrokenReset();
    board::PowerUp();
  }

  // The same, as it was in front of the operation.
  void PutBack() const {
    PutStore(before_);
    PutFiles(files_);
    ComeBack();
  }

  // In a child: the daemon comes up.
  void Start() const {
    device::Join();
    device::Restore(false);
    if (operation_.online) device::Restore(true);
  }

  // In a child: the daemon answers.
  static void Probe() {
    constexpr std::uint32_t kShortcut = 0x02810000;  // from flash; changes nothing in memory
    if (inprocess::Read(kShortcut, 4).m_data.size() != 4) Complain("doesn't serve; ");
  }

  // In a child: the operation, undisturbed, ends in the right state, but for what `lasting` frees.
  void Finish(const Lasting& lasting = {}) const {
    operation_.act();
    std::vector<Region> regions = Freed({}, lasting.store);
    regions.insert(regions.end(), operation_.regions.begin(), operation_.regions.end());
    for (const std::string& wrong :
         {Difference(Store(), after_, regions),
          Difference(ReadCells(operation_.pageEnd), cellsAfter_, lasting.cells),
          Difference(ReadFiles(), filesAfter_)}) {
      if (!wrong.empty()) Complain("done once more: " + wrong + "; ");
    }
  }

  bool TakeReference() {
    PutBack();
    const auto run = InChild([&] {
      Start();
      ClearTrace();
      operation_.act();
    });
    cuts_ = TracedWrites(board_kit::TraceLines());
    for (const auto& write : cuts_) {
      if (write) writes_.push_back(*write);
    }
    after_.assign(Store().begin(), Store().end());
    cellsAfter_ = ReadCells(operation_.pageEnd);
    filesAfter_ = ReadFiles();
    Expect("undisturbed", Outcome(run));
    Expect("undisturbed", Recount(writes_, operation_.regions));
    Expect("undisturbed", Judge(after_, before_, writes_, operation_.regions, {}));
    PutBack();
    Expect("twice", Outcome(InChild([&] {
             Start();
             operation_.act();
             Finish();
           })));
    return failures_.empty();
  }

  // How many accesses of a kind the operation makes.
  int CountAccesses(Fault fault) {
    PutBack();
    InChild([&] {
      Start();
      SetFaultCount(Fault::kSkip, kFar);
      SetFaultCount(fault, 1);
      operation_.act();
    });
    return kFar - board::FaultCount(Fault::kSkip);
  }

  void SweepFault(const FaultRow& row) {
    const std::string name(row.name);
    if (choice_.only.find(":" + name) == std::string::npos && !choice_.only.empty()) return;
    const int count = CountAccesses(row.fault);
    if (count == 0) return;
    for (const int n : Pick(count, choice_.bounded ? kMostOnce : count)) {
      const std::string id = "once:" + name + ":" + std::to_string(n);
      if (Wanted(id)) RunFault(id, row.fault, n - 1, Tries(row.fault));
    }
    if (Wanted("forever:" + name)) RunFault("forever:" + name, row.fault, 0, -1);
  }

  void RunFault(const std::string& id, Fault fault, int passing, int failing) {
    ++runs_;
    PutBack();
    const auto run = InChild([&] {
      Start();
      SetFaultCount(Fault::kSkip, passing);
      SetFaultCount(fault, failing);
      operation_.act();
      if (board::FaultCount(fault) > 0) Complain("the access was not reached; ");
      ClearFaults();
      Probe();
      const Lasting lasting = LastingOf(id);
      const std::string wrong =
          lasting.store.empty()
              ? Judge(Store(), before_, writes_, operation_.regions, {})
              : Difference(Store(), before_, Freed(operation_.regions, lasting.store));
      if (!wrong.empty()) Complain(wrong + "; ");
      Finish(lasting);
    });
    Expect(id, Outcome(run));
  }

  Lasting LastingOf(const std::string& id) const {
    const auto found = std::ranges::find_if(operation_.lasting, [&](const Lasting& lasting) {
      return std::ranges::count(lasting.runs, id) != 0;
    });
    return found == operation_.lasting.end() ? Lasting{} : *found;
  }

  void SweepCuts() {
    const int count = static_cast<int>(cuts_.size());
    for (const int n : Pick(count, choice_.bounded ? kMostCuts : count)) {
      const std::string number = std::to_string(n);
      if (Wanted("torn:" + number)) RunCut("torn:" + number, n, 0, false);
      if (Wanted("whole:" + number)) RunCut("whole:" + number, n, 0, true);
      for (int seed = 1; seed <= (choice_.bounded ? 1 : kSeeds); ++seed) {
        const std::string id = "loss:" + number + ":" + std::to_string(seed);
        if (Wanted(id)) RunCut(id, n, seed * count + n, false);
      }
    }
  }

  // Lets power fail while the `n`-th piece goes to flash, `seed` saying which unsynced ones are
  // lost as well, and starts the daemon again on what flash then holds; `whole` takes back the torn
  // one.
  void RunCut(const std::string& id, int n, int seed, bool whole) {
    ++runs_;
    PutBack();
    const auto cut = InChild([&] {
      Start();
      SetFaultCount(Fault::kFlashLoss, seed);
      SetFaultCount(Fault::kFlashCut, n);
      operation_.act();
    });
    if (cut.status != board::kCutStatus) return Expect(id, "wasn't cut");
    const auto torn = cuts_.begin() + n - 1;
    const auto index = static_cast<std::size_t>(
        std::count_if(cuts_.begin(), torn, [](const auto& write) { return write.has_value(); }));
    if (whole) PutStore(WithWrites(before_, writes_, index));
    const bool tears = !whole && torn->has_value();
    const Damage damage{tears ? std::optional(index) : std::nullopt, seed != 0};
    Expect(id, Judge(Store(), before_, writes_, operation_.regions, damage));
    ComeBack();
    const auto again = InChild([&] {
      Start();
      Probe();
      Finish();
    });
    Expect(id, Outcome(again));
  }

  bool Wanted(const std::string& id) const { return choice_.only.empty() || choice_.only == id; }

  void Expect(const std::string& id, const std::string& complaint) {
    if (complaint.empty()) return;
    failures_.push_back(complaint + "\n  again: scripts/sweep " + operation_.name + " " + id);
  }

  const Operation& operation_;
  const Choice choice_;
  Bytes before_;  // the live store
  Bytes after_;
  Cells cellsAfter_;
  Files files_;  // before the operation
  Files filesAfter_;
  std::vector<std::optional<StoreWrite>> cuts_;  // all writes, each of which is cut
  std::vector<StoreWrite> writes_;               // those to the live store
  int runs_ = 0;
  std::vector<std::string> failures_;
};

}  // namespace

std::vector<std::string> Run(const Operation& operation, const Choice& choice) {
  return Sweep(operation, choice).Run();
}

}  // namespace sweep
