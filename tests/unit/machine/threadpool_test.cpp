#include "runtime/machine/threadpool.h"

#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace runtime::machine {
namespace {

TEST(ThreadPool, callsEveryNumberOnce) {
  for (const int threads : {1, 2, 5}) {
    ThreadPool pool(threads);
    EXPECT_EQ(pool.threads(), threads);
    for (int round = 0; round < 200; ++round) {
      std::vector<std::atomic<int>> calls(static_cast<std::size_t>(round));
      pool.ForEach(calls.size(), [&](std::size_t i) { ++calls[i]; });
      for (const std::atomic<int>& count : calls) EXPECT_EQ(count, 1);
    }
  }
}

TEST(ThreadPool, throwsTheFailureOfTheLowestNumber) {
  for (const int threads : {1, 3}) {
    ThreadPool pool(threads);
    for (int round = 0; round < 50; ++round) {
      try {
        pool.ForEach(100, [](std::size_t i) {
          if (i >= 20) throw std::runtime_error(std::to_string(i));
        });
        FAIL() << "nothing was thrown";
      } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "20");
      }
    }
    std::atomic<int> calls = 0;
    pool.ForEach(10, [&](std::size_t) { ++calls; });
    EXPECT_EQ(calls, 10) << "the pool works on after a failure";
  }
}

TEST(ThreadPool, runsWorkWithinWorkOnTheSameThread) {
  ThreadPool pool(3);
  std::atomic<int> calls = 0;
  pool.ForEach(8, [&](std::size_t) {
    const std::thread::id outer = std::this_thread::get_id();
    pool.ForEach(5, [&](std::size_t) {
      EXPECT_EQ(std::this_thread::get_id(), outer);
      ++calls;
    });
  });
  EXPECT_EQ(calls, 40);
}

TEST(ThreadPool, usesAsManyThreadsAsTheMachineHas) { EXPECT_EQ(ThreadPool(0).threads(), MachineThreads()); }

}  // namespace
}  // namespace runtime::machine
