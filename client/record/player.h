// Plays a recording to the daemon of a board: the peers' frames in their order and rhythm, each
// from a peer of its own identifier, and a look at what comes back.
//
// A frame goes out when its time has come and all answers are there that had come before it in the
// recording, so causes stay in front of their effects at any speed.
#pragma once

#include <chrono>
#include <functional>
#include <set>
#include <string>

#include "record/compare.h"
#include "record/peers.h"
#include "record/plan.h"

namespace quivord::record {

struct Manner {
  double speed = 1;       // times the recorded rhythm; 0 is as fast as answers come
  bool compare = false;   // else only what isn't answered is told
  std::uint8_t slot = 0;  // of the board
  std::chrono::milliseconds timeout{5000};   // for an answer
  std::chrono::milliseconds patience{5000};  // in all, for answers and reports to become the same
  std::vector<MayDiffer> may_differ;
  std::function<void(std::size_t done, std::size_t of)> on_progress;  // frames
};

struct Played {
  std::size_t sent = 0;
  std::size_t peers = 0;
  std::size_t answers = 0;      // that came
  std::size_t reports = 0;      // that came after the first frame was sent
  std::size_t greetings = 0;    // reports before that, which connecting sets off; not compared
  std::size_t passing = 0;      // answers on the way to another that were different
  std::size_t asked_again = 0;  // reads that were sent once more because their answer differed
  double seconds = 0;
  std::vector<Finding> findings;

  bool same() const;
};

class Player {
 public:
  Player(std::filesystem::path board, const Recording& recording, Manner manner);

  // To the end of the recording, or to the end of a connection.
  Result<Played> Play();

 private:
  struct Open {
    std::uint32_t peer;
    Clock::time_point deadline;
  };

  std::uint32_t PeerOf(const Frame& frame) const;
  std::uint32_t TagOf(std::size_t request) const { return static_cast<std::uint32_t>(request) + 1; }
  // Whether the tag is that of a recorded request of the peer.
  bool OwnTag(std::uint32_t peer, std::uint32_t tag) const;
  Clock::time_point Due(const Frame& frame) const;

  Outcome Run();
  Outcome Greet();
  Outcome Take(const Step& step);
  Outcome SendFrame(const Step& step);
  Outcome JudgeAnswer(const Step& step);
  Outcome AwaitReports();
  // Listens until `done` or the deadline.
  Outcome ListenUntil(Clock::time_point deadline, const std::function<bool()>& done);
  // Sends a read again until its answer is the recorded one or there is no patience left.
  Outcome AskAgain(const Step& step, Bytes& answer);
  void Arrive(Arrived arrived);
  void Tell(const Step& step, Finding::Kind kind, std::vector<Place> places);
  void LeaveAfter(std::size_t frame);

  const Recording& recording_;
  const Manner manner_;
  const std::vector<Step> plan_;
  std::set<std::size_t> answered_;     // requests that have an answer in the recording
  std::set<std::uint32_t> listeners_;  // peers that get reports in the recording
  std::map<std::uint32_t, std::size_t> last_frame_;  // of the other peers
  Peers peers_;

  std::map<std::uint32_t, Open> open_;      // requests without an answer yet, by tag
  std::map<std::uint32_t, Bytes> arrived_;  // answers that were not judged yet, by tag
  std::vector<Frame> reports_;
  std::vector<Frame> recorded_reports_;
  Clock::time_point begin_;  // when the first frame is due
  Clock::duration patience_;
  std::uint32_t next_tag_;
  Played played_;
};

}  // namespace quivord::record
