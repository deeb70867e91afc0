#pragma once
// A Go on a worker thread, for a front end whose own thread must stay free (a window's event loop).
// Every message, question, dialog and progress report of the computation is carried back to the
// caller's thread and answered there by the interaction the session had when the Go started; the
// end is reported there too. While it runs, the caller leaves the workbench and its session alone.
#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "base/session.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

// Hands a task to the caller's thread, to be run there soon (a window posts it to its event loop).
using PostToCaller = std::function<void(std::function<void()>)>;

// The simplest caller-side loop: tasks wait here until the caller runs them. Tests and a terminal
// front end use it; a window uses its own event loop instead.
class CallerQueue {
 public:
  void Post(std::function<void()> task);
  // Runs the waiting tasks, waiting for the next one, until `done` holds.
  void RunUntil(const std::function<bool()>& done);
  PostToCaller Poster() {
    return [this](std::function<void()> task) { Post(std::move(task)); };
  }

 private:
  std::mutex mutex_;
  std::condition_variable ready_;
  std::deque<std::function<void()>> tasks_;
};

class BackgroundGo {
 public:
  explicit BackgroundGo(Workbench& bench) : bench_(bench) {}
  // Asks a Go still running to stop and waits for it. The caller's loop must have run the Go's last
  // tasks first (a window keeps this object until the end has been reported).
  ~BackgroundGo();
  BackgroundGo(const BackgroundGo&) = delete;
  BackgroundGo& operator=(const BackgroundGo&) = delete;

  // Starts the Go of `tab` on a worker thread; `done` runs on the caller's thread when it has ended.
  // False (and nothing started) while another Go runs.
  bool Start(int tab, PostToCaller post, std::function<void(GoOutcome)> done);
  // The same for work of the front end's own that drives the workbench as a Go does (a report, the
  // printed pages): it runs on the worker under the same rules and tells how it ended.
  bool StartWork(std::function<GoOutcome()> work, PostToCaller post, std::function<void(GoOutcome)> done);
  bool Busy() const { return busy_; }
  // Asks the running Go to stop at its next progress report (a window's Cancel button).
  void RequestStop() { stop_ = true; }

 private:
  Workbench& bench_;
  std::thread worker_;
  std::atomic<bool> busy_ = false;
  std::atomic<bool> stop_ = false;
};

}  // namespace velmora::workbench
