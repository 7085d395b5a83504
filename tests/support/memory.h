#pragma once

#include <sys/resource.h>

/// Most memory that the process ever had [kB].
inline long peakMemory() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}
