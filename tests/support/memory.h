#pragma once

#ifdef _WIN32

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// Behind what it needs.
#include <psapi.h>

/// Most memory that the process ever had [kB].
inline long peakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return static_cast<long>(counters.PeakWorkingSetSize / 1024);
}

#else

#include <sys/resource.h>

/// Most memory that the process ever had [kB].
inline long peakMemory() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

#endif
