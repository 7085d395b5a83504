#pragma once

#include <string>

/// Text that a stream wrote, or is compared with such. The streams of Windows
/// do not tell the sign of a NaN, so there the signs of all are left out.
inline std::string comparable(std::string text) {
#ifdef _WIN32
  for (char const* const sign : {"-nan", "+nan"})
    for (std::size_t at; (at = text.find(sign)) != text.npos;)
      text.erase(at, 1);
#endif
  return text;
}
