// Threads that live as long as a run.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace runtime::machine {

/// As many threads as the machine gives this process, at least 1.
int MachineThreads();

/// A fixed number of threads, the caller's among them. One piece of work at a time.
class ThreadPool {
 public:
  /// `threads` 0: as many as the machine has. With 1 everything runs on the calling thread.
  explicit ThreadPool(int threads);
  ~ThreadPool();
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  int threads() const { return static_cast<int>(fThreads.size()) + 1; }

  /// Calls work(0) ... work(count - 1), each once, begun in this order, on all threads; returns when all have ended.
  /// When one throws, those not begun are left out, and the exception of the lowest number that threw is thrown here.
  /// A call from within `work` runs on the thread that makes it.
  void ForEach(std::size_t count, const std::function<void(std::size_t)>& work);

 private:
  struct Task;
  void Serve();
  static void Help(Task& task);

  std::vector<std::thread> fThreads;
  std::mutex fMutex;
  std::condition_variable fWakeUp;
  std::condition_variable fAllLeft;
  Task* fTask = nullptr;  // null: nothing to do
  std::uint64_t fTasksSoFar = 0;
  std::size_t fHelpers = 0;
  bool fEnds = false;
};

}  // namespace runtime::machine
