// What a snapshot of a board means, section by section, as the page gets it.
//
// No member is ever null, and lists that change often are objects by number, so that a merge patch
// can say what has changed.
#pragma once

#include "live/snapshot.h"
#include "live/state.h"

namespace quivord::live {

// Pure; any thread.
//   board     {folder, exists, troubles: [text], loaded, slot, speed, trace: [kind],
//              daemon: {running, pid}}
Json DescribeBoard(const Snapshot& snapshot);
//   time      {text, about: it can't be told exactly}
Json DescribeTime(const Snapshot& snapshot);
//   screen    {output, open: bool, source: {width, height, state}}
Json DescribeScreen(const Snapshot& snapshot);
//   links     {copper, fiber1, fiber2, redundant: [port], fiber: text}
Json DescribeLinks(const Snapshot& snapshot);
//   wall      {kind, text, screen: [w, h], card: [w, h], cabinets, ports: {n: {cards, window: [x,
//   y, w,
//              h], backup, mode, repeats: n or at: [x, y, …]}}}
Json DescribeWall(const Snapshot& snapshot);
//   cards     {ports: {n: [[count, brightness, red, green, blue, virtual red, screen, mapping,
//              takes part, width, height], …]}, devices: [receiving, multi, boxes, launchers]}
Json DescribeCards(const Snapshot& snapshot);
//   picture   {hdr: {on, text, note}, curves: {text, red, green, blue: [65 values]},
//              pattern: {kind, text, note, first: [x, y], step: [w, h]}}
Json DescribePicture(const Snapshot& snapshot);
//   inputs    {n: {id, type, name, mode, fault}}
Json DescribeInputs(const Snapshot& snapshot);
//   plan      {kind, text, force: {since, what, today}, next: {time, what, in_min}}
Json DescribePlan(const Snapshot& snapshot);
//   outside   {lux, faults: {name: count}}
Json DescribeOutside(const Snapshot& snapshot);
//   log       {passed_over, entries: {number: {at, kind, text}}}
Json DescribeLog(const Snapshot& snapshot);

// The board's clock, microseconds since 1970. Where time passes faster than the PC's it is counted
// from the daemon's start, and the board's own may be behind it.
std::int64_t BoardTime_us(const Snapshot& snapshot);

// All sections of `snapshot`; those that look as in `before`, whose state was `last`, are taken
// over.
State Describe(const Snapshot& snapshot, const Snapshot* before, const State& last);

}  // namespace quivord::live
