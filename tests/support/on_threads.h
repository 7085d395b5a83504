#pragma once

#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

inline constexpr std::size_t ThreadCount = 16;

/// Runs `work` with the numbers from 0 on, each on a thread of its own, all
/// released at once.
template <class Work>
void onThreads(Work const& work) {
  std::atomic<bool> isReleased{false};
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < ThreadCount; ++i)
    threads.emplace_back([&, i] {
      while (!isReleased) std::this_thread::yield();
      work(i);
    });
  isReleased = true;
  for (std::thread& thread : threads) thread.join();
}
