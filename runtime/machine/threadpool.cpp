#include "runtime/machine/threadpool.h"

#include <algorithm>
#include <atomic>
#include <exception>

#include <sched.h>

namespace runtime::machine {

namespace {

/// Whether the calling thread is at work for a pool: what it hands out then runs on itself.
bool& IsAtWork() {
  thread_local bool atWork = false;
  return atWork;
}

}  // namespace

struct ThreadPool::Task {
  Task(std::size_t numbers, const std::function<void(std::size_t)>& aWork) : count(numbers), work(&aWork) {}

  std::size_t count;
  const std::function<void(std::size_t)>* work;
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::size_t failedAt = SIZE_MAX;
  std::exception_ptr failure;
};

int MachineThreads() {
  // What this process may use, which can be less than what the machine has.
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) == 0) return std::max(1, CPU_COUNT(&processors));
  return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

ThreadPool::ThreadPool(int threads) {
  const int wanted = threads > 0 ? threads : MachineThreads();
  for (int i = 1; i < wanted; ++i) fThreads.emplace_back([this] { Serve(); });
}

ThreadPool::~ThreadPool() {
  {
    const std::lock_guard lock(fMutex);
    fEnds = true;
  }
  fWakeUp.notify_all();
  for (std::thread& thread : fThreads) thread.join();
}

void ThreadPool::Help(Task& task) {
  IsAtWork() = true;
  for (std::size_t i = task.next++; i < task.count; i = task.next++) {
    try {
      (*task.work)(i);
    } catch (...) {
      const std::lock_guard lock(task.mutex);
      if (i < task.failedAt) {
        task.failedAt = i;
        task.failure = std::current_exception();
      }
      task.next = task.count;
    }
  }
  IsAtWork() = false;
}

void ThreadPool::Serve() {
  std::unique_lock lock(fMutex);
  std::uint64_t served = 0;
  while (true) {
    fWakeUp.wait(lock, [&] { return fEnds || (fTask != nullptr && fTasksSoFar != served); });
    if (fEnds) return;
    Task& task = *fTask;
    served = fTasksSoFar;
    ++fHelpers;
    lock.unlock();
    Help(task);
    lock.lock();
    if (--fHelpers == 0) fAllLeft.notify_all();
  }
}

void ThreadPool::ForEach(std::size_t count, const std::function<void(std::size_t)>& work) {
  if (fThreads.empty() || count < 2 || IsAtWork()) {
    for (std::size_t i = 0; i < count; ++i) work(i);
    return;
  }
  Task task(count, work);
  {
    const std::lock_guard lock(fMutex);
    fTask = &task;
    ++fTasksSoFar;
  }
  fWakeUp.notify_all();
  Help(task);
  {
    std::unique_lock lock(fMutex);
    // From here on no further thread takes the task up.
    fTask = nullptr;
    fAllLeft.wait(lock, [this] { return fHelpers == 0; });
  }
  if (task.failure) std::rethrow_exception(task.failure);
}

}  // namespace runtime::machine
