#pragma once
// SIGINT and SIGTERM during a run: the first asks the computation to stop (the progress display
// answers "stop" and the run ends with status 130, its scratch tree removed); if the run has not
// ended a few seconds later, or at a second signal, the tree is removed and the process ends at once.
#include <atomic>
#include <filesystem>
#include <thread>

namespace velmora::cli {

class InterruptWatch {
 public:
  // Blocks both signals in the calling thread and the threads it starts afterwards: make it before
  // any other thread.
  InterruptWatch(std::atomic<bool>& stop, std::filesystem::path scratch);
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

 private:
  void Watch();

  std::atomic<bool>& stop_;
  std::filesystem::path scratch_;
  std::atomic<bool> ended_{false};
  std::thread watcher_;
};

}  // namespace velmora::cli
