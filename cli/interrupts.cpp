#include "interrupts.h"

#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <ctime>

#include "run_context.h"
#include "run_files.h"

namespace velmora::cli {
namespace {

constexpr auto kGrace = std::chrono::seconds(3);

sigset_t StopSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

}  // namespace

InterruptWatch::InterruptWatch(std::atomic<bool>& stop, std::filesystem::path scratch)
    : stop_(stop), scratch_(std::move(scratch)) {
  const sigset_t set = StopSignals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  watcher_ = std::thread([this] { Watch(); });
}

InterruptWatch::~InterruptWatch() {
  ended_ = true;
  watcher_.join();
}

// Polls, so that the end of the run needs no signal of its own to wake the watcher.
void InterruptWatch::Watch() {
  const sigset_t set = StopSignals();
  const timespec tick{0, 100'000'000};
  std::chrono::steady_clock::time_point deadline{};
  while (!ended_) {
    const int signal = sigtimedwait(&set, nullptr, &tick);
    const auto now = std::chrono::steady_clock::now();
    if (signal > 0 && !stop_) {
      stop_ = true;
      deadline = now + kGrace;
    } else if ((signal > 0 || (stop_ && now >= deadline)) && !ended_) {
      RemoveTree(scratch_);
      ::_exit(kExitInterrupted);
    }
  }
}

}  // namespace velmora::cli
