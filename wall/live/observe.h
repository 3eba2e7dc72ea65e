// Looks at a board folder. Asks the daemon nothing, changes nothing, takes no lock.
#pragma once

#include <filesystem>

#include "live/log.h"
#include "live/snapshot.h"
#include "live/tail.h"

namespace quivord::live {

// One thread at a time.
class Observer {
 public:
  explicit Observer(std::filesystem::path folder);

  // What the folder holds now. What can't be read is 0 and named among the troubles; never throws
  // for what is in the folder.
  Snapshot Look();

  // To be called before a time in which nobody looks.
  void Rest() { tail_.Rest(); }

 private:
  void LookAtSettings(Snapshot& snapshot);
  void LookAtDaemon(Snapshot& snapshot) const;
  void LookAtCells(Snapshot& snapshot) const;
  void LookAtStore(Snapshot& snapshot) const;
  void LookAtCards(Snapshot& snapshot) const;
  void LookAtSurroundings(Snapshot& snapshot) const;
  void LookAtTrace(Snapshot& snapshot);

  std::filesystem::path folder_;
  Tail tail_;
  Log log_;
  std::int64_t trace_epoch_us_;
};

}  // namespace quivord::live
