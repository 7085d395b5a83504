#pragma once

#include <cstddef>
#include <exception>
#include <vector>

/// Calls `work(i)` for every i below `count`, spread over a team of threads.
///
/// No exception leaves the team: once every call is done, the one of the lowest
/// index is thrown again, whatever the number of threads.
///
///     std::vector<double> squares(n);
///     forEachIndex(n, [&](std::size_t i) { squares[i] = double(i) * i; });
template <class Work>
void forEachIndex(std::size_t count, Work const& work) {
  std::vector<std::exception_ptr> failures(count);
#pragma omp parallel for schedule(static)
  for (std::size_t i = 0; i < count; ++i) {
    try {
      work(i);
    } catch (...) {
      failures[i] = std::current_exception();
    }
  }
  for (std::exception_ptr const& failure : failures)
    if (failure) std::rethrow_exception(failure);
}
