#include "workbench/background_go.h"

#include <exception>
#include <future>
#include <memory>

#include "base/progress.h"

namespace velmora::workbench {
namespace {

// The worker's interaction: each call runs on the caller's thread, on the interaction in force
// there, and the worker waits for its answer.
class MarshalledInteraction final : public UserInteraction {
 public:
  MarshalledInteraction(UserInteraction& target, PostToCaller post, const std::atomic<bool>& stop)
      : target_(target), post_(std::move(post)), stop_(stop) {}

  MsgAnswer Message(const std::string& text, const std::string& title, MsgIcon icon, MsgButtons buttons,
                    MsgAnswer defaultAnswer) override {
    return OnCaller<MsgAnswer>([&] { return target_.Message(text, title, icon, buttons, defaultAnswer); });
  }
  void ReportError(const std::string& text, const std::string& place) override {
    OnCaller<bool>([&] {
      target_.ReportError(text, place);
      return true;
    });
  }
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& defaultValue) override {
    return OnCaller<std::optional<std::string>>([&] { return target_.Input(prompt, title, defaultValue); });
  }
  std::vector<std::string> OpenFiles(const FileDialogRequest& request) override {
    return OnCaller<std::vector<std::string>>([&] { return target_.OpenFiles(request); });
  }
  std::string SaveFile(const FileDialogRequest& request) override {
    return OnCaller<std::string>([&] { return target_.SaveFile(request); });
  }
  std::string ChooseFolder(const FileDialogRequest& request) override {
    return OnCaller<std::string>([&] { return target_.ChooseFolder(request); });
  }
  void ProgressStart(const std::string& title, const std::string& message) override {
    OnCaller<bool>([&] {
      target_.ProgressStart(title, message);
      return true;
    });
  }
  bool ProgressValue(int percent) override {
    if (stop_) return false;
    return OnCaller<bool>([&] { return target_.ProgressValue(percent); }) && !stop_;
  }
  void ProgressExit() override {
    OnCaller<bool>([&] {
      target_.ProgressExit();
      return true;
    });
  }

 private:
  template <class Result, class Call>
  Result OnCaller(const Call& call) {
    std::promise<Result> answer;
    std::future<Result> future = answer.get_future();
    post_([&] {
      try {
        answer.set_value(call());
      } catch (...) {
        answer.set_exception(std::current_exception());
      }
    });
    return future.get();
  }

  UserInteraction& target_;
  PostToCaller post_;
  const std::atomic<bool>& stop_;
};

}  // namespace

void CallerQueue::Post(std::function<void()> task) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  ready_.notify_one();
}

void CallerQueue::RunUntil(const std::function<bool()>& done) {
  while (!done()) {
    std::function<void()> task;
    {
      std::unique_lock<std::mutex> lock(mutex_);
      ready_.wait(lock, [this] { return !tasks_.empty(); });
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task();
  }
}

BackgroundGo::~BackgroundGo() {
  stop_ = true;
  if (worker_.joinable()) worker_.join();
}

bool BackgroundGo::Start(int tab, PostToCaller post, std::function<void(GoOutcome)> done) {
  return StartWork([this, tab] { return bench_.RunGo(tab); }, std::move(post), std::move(done));
}

bool BackgroundGo::StartWork(std::function<GoOutcome()> work, PostToCaller post, std::function<void(GoOutcome)> done) {
  if (busy_) return false;
  if (worker_.joinable()) worker_.join();  // an earlier Go that has ended
  busy_ = true;
  stop_ = false;
  Session& session = bench_.Session();
  auto marshalled = std::make_shared<MarshalledInteraction>(session.Ui(), post, stop_);
  auto scope = std::make_shared<ScopedUi>(session, *marshalled);
  worker_ = std::thread([this, work = std::move(work), post, done = std::move(done), marshalled, scope]() mutable {
    GoOutcome outcome = GoOutcome::Failed;
    try {
      outcome = work();
    } catch (const Cancelled&) {
      outcome = GoOutcome::Cancelled;  // a stop that unwound past the work's own handlers
    } catch (...) {
      // The work reports its own failures; what escapes it (a log that cannot be written) ends it
      // here, as nothing may leave a thread's function.
    }
    // The interaction and its scope travel with the end, so that both are released on the caller's thread.
    post([this, outcome, done = std::move(done), marshalled = std::move(marshalled), scope = std::move(scope)]() mutable {
      scope.reset();  // the caller's interaction is in force again
      busy_ = false;
      if (done) done(outcome);
    });
  });
  return true;
}

}  // namespace velmora::workbench
