#pragma once
// The progress display as the computations see it. A long computation reports how far it is; the
// answer tells it whether to go on, so a front end can offer "Cancel" and a worker can be stopped.
#include <string>

namespace velmora {

class ProgressSink {
 public:
  virtual ~ProgressSink() = default;
  // A new stage: title and message of the display.
  virtual void ProgressStart(const std::string& title, const std::string& message) = 0;
  // Percent done, 0..100. False when the user has asked to stop.
  virtual bool ProgressValue(int percent) = 0;
  virtual void ProgressExit() = 0;
};

// Thrown where a stop was asked for: the computation unwinds without storing anything, and the
// workbench reports it as cancelled rather than as an error. It is no std::exception on purpose, so
// that no handler of run-time errors on the way logs it as one.
struct Cancelled {};

// Reports `percent` and throws Cancelled when the sink asks to stop.
inline void ReportProgress(ProgressSink& sink, int percent) {
  if (!sink.ProgressValue(percent)) throw Cancelled();
}

// Ends the display when the scope ends, also on an error or a stop.
class ProgressScope {
 public:
  ProgressScope(ProgressSink& sink, const std::string& title, const std::string& message) : sink_(sink) {
    sink_.ProgressStart(title, message);
  }
  ~ProgressScope() { sink_.ProgressExit(); }
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;

 private:
  ProgressSink& sink_;
};

}  // namespace velmora
