// Looks at the board while somebody watches, and hands what it sees to the pages.
//
// There is one state, the newest, and each page goes from the one that it has seen last to that. So
// a page that reads slowly, or not at all, costs no memory: it misses what was in between.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "live/observe.h"
#include "live/state.h"

namespace quivord::live {

// All functions may be called from any thread.
class Publisher {
 public:
  static constexpr std::size_t kMostPages = 50;
  static constexpr std::chrono::milliseconds kBeat{100};  // between two looks

  explicit Publisher(std::filesystem::path folder);
  ~Publisher();

  // A page that watches, for as long as this lives.
  class Seat {
   public:
    explicit Seat(Publisher& publisher) : publisher_(publisher) {}
    Seat(const Seat&) = delete;
    Seat& operator=(const Seat&) = delete;
    ~Seat() { publisher_.Leave(); }

   private:
    Publisher& publisher_;
  };

  // Null where all seats are taken.
  std::shared_ptr<Seat> Join();
  bool full() const;

  // A state newer than `seen`, as soon as there is one; null after `patience`, and once closed. To
  // be called by who has a seat, with the state that it was given last, or null.
  std::shared_ptr<const State> Await(const std::shared_ptr<const State>& seen,
                                     std::chrono::milliseconds patience);

  // Ends all waiting. No state comes after it.
  void Close();
  bool closed() const;

 private:
  void Leave();
  void Run();

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t pages_ = 0;
  bool closed_ = false;
  std::shared_ptr<const State> current_;  // null while nobody watches

  // The looking thread's own.
  Observer observer_;
  std::thread thread_;
};

}  // namespace quivord::live
