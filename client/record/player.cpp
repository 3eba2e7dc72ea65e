#include "record/player.h"

#include <algorithm>

#include "stub/frame_layout.h"

namespace quivord::record {
namespace {

using namespace std::chrono_literals;

// No report for so long: the daemon has said what it had to. It waits a second with some.
constexpr auto kQuiet = 2s;
constexpr auto kLinger = 500ms;     // for reports that the recording doesn't have
constexpr auto kLongGreeting = 5s;  // then the recording begins though reports still come
constexpr auto kAskAgain = 20ms;    // between two reads of the same
constexpr std::uint32_t kSlotShift = 24;

std::int64_t Microseconds(Clock::duration time) {
  return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

bool IsResponse(const Bytes& frame) {
  const auto head = ZEPH_MCUC::ReadFrameHead(frame);
  return head.has_value() && head->tag == ZEPH_MCUC::PROTOCOL_HEADER_TAG_RESPONSE;
}

}  // namespace

bool Played::same() const {
  return std::all_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.allowed(); });
}

Player::Player(std::filesystem::path board, const Recording& recording, Manner manner)
    : recording_(recording),
      manner_(std::move(manner)),
      plan_(PlanOf(recording)),
      peers_(std::move(board), [this](Arrived arrived) { Arrive(std::move(arrived)); }),
      patience_(manner_.patience),
      next_tag_(static_cast<std::uint32_t>(recording.frames.size()) + 1) {
  for (const Step& step : plan_) {
    const std::uint32_t peer = PeerOf(recording_.frames[step.frame]);
    last_frame_[peer] = step.frame;
    if (step.kind == Step::Kind::kAnswer) answered_.insert(step.request);
    if (step.kind == Step::Kind::kReport) listeners_.insert(peer);
  }
}

// A peer of the recorded board's slot belongs into this board's.
std::uint32_t Player::PeerOf(const Frame& frame) const {
  if (frame.peer >> kSlotShift != recording_.slot) return frame.peer;
  return (frame.peer & 0xFFFFFF) | static_cast<std::uint32_t>(manner_.slot) << kSlotShift;
}

Clock::time_point Player::Due(const Frame& frame) const {
  if (manner_.speed == 0) return Clock::now();
  return begin_ +
         std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double, std::micro>(
             static_cast<double>(frame.at_us) / manner_.speed));
}

Result<Played> Player::Play() {
  const auto began = Clock::now();
  Outcome ran = Run();
  if (!ran) return ran.error();
  played_.peers = last_frame_.size();
  played_.seconds = std::chrono::duration<double>(Clock::now() - began).count();
  return std::move(played_);
}

Outcome Player::Run() {
  if (manner_.compare) {
    Outcome greeted = Greet();
    if (!greeted) return greeted;
  }
  begin_ = Clock::now();
  for (const Step& step : plan_) {
    Outcome taken = Take(step);
    if (!taken) return taken;
    if (manner_.on_progress) manner_.on_progress(step.frame + 1, plan_.size());
  }
  return manner_.compare ? AwaitReports() : Outcome(Done{});
}

// Whoever gets reports is there before the first frame, and what the daemon says to newcomers is
// let pass.
Outcome Player::Greet() {
  for (const std::uint32_t peer : listeners_) {
    Outcome joined = peers_.Join(peer);
    if (!joined) return joined;
  }
  if (listeners_.empty()) return Done{};
  const auto late = Clock::now() + kLongGreeting;
  for (std::size_t before = 1; before != reports_.size() && Clock::now() < late;) {
    before = reports_.size();
    Outcome listened =
        ListenUntil(Clock::now() + kQuiet, [&] { return reports_.size() != before; });
    if (!listened) return listened;
  }
  played_.greetings = reports_.size();
  reports_.clear();
  return Done{};
}

Outcome Player::Take(const Step& step) {
  Outcome taken = Done{};
  switch (step.kind) {
    case Step::Kind::kRequest:
      taken = SendFrame(step);
      break;
    case Step::Kind::kAnswer:
      taken = JudgeAnswer(step);
      break;
    case Step::Kind::kReport:
      recorded_reports_.push_back(recording_.frames[step.frame]);
      recorded_reports_.back().peer = PeerOf(recorded_reports_.back());
      break;
  }
  LeaveAfter(step.frame);
  return taken;
}

Outcome Player::SendFrame(const Step& step) {
  const Frame& frame = recording_.frames[step.frame];
  const std::uint32_t peer = PeerOf(frame);
  Outcome waited = ListenUntil(Due(frame), [] { return false; });
  if (!waited) return waited;
  // Frames of two peers could overtake each other on their way.
  const auto others = [&] {
    return std::any_of(open_.begin(), open_.end(),
                       [&](const auto& entry) { return entry.second.peer != peer; });
  };
  waited = ListenUntil(Clock::now() + manner_.timeout, [&] { return !others(); });
  if (!waited) return waited;
  Outcome joined = peers_.Join(peer);
  if (!joined) return joined;
  const auto deadline = Clock::now() + manner_.timeout;
  if (answered_.contains(step.frame)) open_[TagOf(step.frame)] = {peer, deadline};
  ++played_.sent;
  return peers_.Send(peer, TagOf(step.frame), frame.bytes, deadline);
}

Outcome Player::JudgeAnswer(const Step& step) {
  const std::uint32_t tag = TagOf(step.request);
  const auto open = open_.find(tag);
  if (open != open_.end()) {
    Outcome waited = ListenUntil(open->second.deadline, [&] { return arrived_.contains(tag); });
    if (!waited) return waited;
  }
  open_.erase(tag);
  auto answer = arrived_.extract(tag);
  if (answer.empty()) {
    Tell(step, Finding::Kind::kNoAnswer, {});
    return Done{};
  }
  ++played_.answers;
  if (!manner_.compare) return Done{};
  Outcome asked = AskAgain(step, answer.mapped());
  if (!asked) return asked;
  auto places =
      Differences(recording_.frames[step.frame].bytes, answer.mapped(), manner_.may_differ);
  if (step.passing) {
    played_.passing += AllAllowed(places) ? 0 : 1;
  } else if (!places.empty()) {
    Tell(step, Finding::Kind::kAnswer, std::move(places));
  }
  return Done{};
}

// An answer to a write comes before the work. The recorded peer may have left the device more time
// than a replay at speed does.
Outcome Player::AskAgain(const Step& step, Bytes& answer) {
  const Frame& request = recording_.frames[step.request];
  if (step.passing || !IsRead(request.bytes)) return Done{};
  const auto differs = [&] {
    return !AllAllowed(
        Differences(recording_.frames[step.frame].bytes, answer, manner_.may_differ));
  };
  const auto since = Clock::now();
  while (differs() && Clock::now() - since < patience_) {
    Outcome waited = ListenUntil(Clock::now() + kAskAgain, [] { return false; });
    if (!waited) return waited;
    const std::uint32_t peer = PeerOf(request);
    const std::uint32_t tag = next_tag_++;
    const auto deadline = Clock::now() + manner_.timeout;
    open_[tag] = {peer, deadline};
    Outcome sent = peers_.Send(peer, tag, request.bytes, deadline);
    if (!sent) return sent;
    ++played_.asked_again;
    waited = ListenUntil(deadline, [&] { return arrived_.contains(tag); });
    if (!waited) return waited;
    open_.erase(tag);
    auto again = arrived_.extract(tag);
    if (!again.empty()) answer = std::move(again.mapped());
  }
  const auto spent = Clock::now() - since;
  patience_ -= std::min(spent, patience_);
  begin_ += spent;  // the rhythm goes on from here
  return Done{};
}

Outcome Player::AwaitReports() {
  if (!listeners_.empty()) {
    Outcome waited = ListenUntil(Clock::now() + std::max<Clock::duration>(patience_, kLinger),
                                 [&] { return reports_.size() >= recorded_reports_.size(); });
    if (!waited) return waited;
    waited = ListenUntil(Clock::now() + kLinger, [] { return false; });
    if (!waited) return waited;
  }
  played_.reports = reports_.size();
  auto findings = CompareReports(recorded_reports_, reports_, manner_.may_differ);
  std::move(findings.begin(), findings.end(), std::back_inserter(played_.findings));
  return Done{};
}

Outcome Player::ListenUntil(Clock::time_point deadline, const std::function<bool()>& done) {
  while (!done()) {
    if (Clock::now() >= deadline) return Done{};
    Outcome listened = peers_.Listen(deadline);
    if (!listened) return listened;
  }
  return Done{};
}

bool Player::OwnTag(std::uint32_t peer, std::uint32_t tag) const {
  return tag != 0 && tag <= recording_.frames.size() && PeerOf(recording_.frames[tag - 1]) == peer;
}

// A frame that bears the tag of another peer's request was passed on, and isn't an answer. An
// answer that the recording doesn't have, or that comes too late, is no report either.
void Player::Arrive(Arrived arrived) {
  const auto open = open_.find(arrived.tag);
  if (open != open_.end() && open->second.peer == arrived.peer && IsResponse(arrived.frame)) {
    open_.erase(open);
    arrived_[arrived.tag] = std::move(arrived.frame);
  } else if (listeners_.contains(arrived.peer) && !OwnTag(arrived.peer, arrived.tag)) {
    reports_.push_back(
        {Microseconds(Clock::now() - begin_), false, arrived.peer, std::move(arrived.frame)});
  }
}

void Player::Tell(const Step& step, Finding::Kind kind, std::vector<Place> places) {
  const Frame& request = recording_.frames[step.request];
  played_.findings.push_back({.kind = kind,
                              .at_us = request.at_us,
                              .peer = request.peer,
                              .request = request.bytes,
                              .places = std::move(places),
                              .report = {}});
}

// A peer leaves the bus after its last frame, save one that waits for reports.
void Player::LeaveAfter(std::size_t frame) {
  const std::uint32_t peer = PeerOf(recording_.frames[frame]);
  if (!listeners_.contains(peer) && last_frame_[peer] == frame) peers_.Leave(peer);
}

}  // namespace quivord::record
