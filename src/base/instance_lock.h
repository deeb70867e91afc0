#pragma once
// The single-instance test: an exclusive flock on a lock file, held for as long as the object lives
// (the front end keeps it for the life of the process). The kernel drops the lock when the process
// ends, however it ends, so a crash never leaves a stale lock behind.
#include <filesystem>

namespace velmora {

class InstanceLock {
 public:
  InstanceLock() = default;
  ~InstanceLock();
  InstanceLock(InstanceLock&& other) noexcept;
  InstanceLock& operator=(InstanceLock&& other) noexcept;
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;

  enum class Outcome {
    Acquired,      // this process is the only one
    OtherRunning,  // another process holds the lock
    Unavailable,   // the lock file cannot be made (read-only folder): the test cannot be made
  };
  // Creates the lock file when missing (its folder must exist) and tries the lock without waiting.
  static InstanceLock Acquire(const std::filesystem::path& lockFile, Outcome& outcome);

  bool Held() const { return fd_ >= 0; }

 private:
  explicit InstanceLock(int fd) : fd_(fd) {}
  int fd_ = -1;
};

}  // namespace velmora
