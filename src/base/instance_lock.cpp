#include "base/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace velmora {

InstanceLock::~InstanceLock() {
  if (fd_ >= 0) ::close(fd_);  // closing the descriptor releases the lock
}

InstanceLock::InstanceLock(InstanceLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

InstanceLock& InstanceLock::operator=(InstanceLock&& other) noexcept {
  if (this != &other) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = std::exchange(other.fd_, -1);
  }
  return *this;
}

InstanceLock InstanceLock::Acquire(const std::filesystem::path& lockFile, Outcome& outcome) {
  const int fd = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) {
    outcome = Outcome::Unavailable;
    return InstanceLock();
  }
  int result;
  do {
    result = ::flock(fd, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  if (result != 0) {
    const bool busy = errno == EWOULDBLOCK;
    ::close(fd);
    outcome = busy ? Outcome::OtherRunning : Outcome::Unavailable;
    return InstanceLock();
  }
  outcome = Outcome::Acquired;
  return InstanceLock(fd);
}

}  // namespace velmora
