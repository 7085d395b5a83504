#include "tools/report.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include "photarium/foundation/text.h"

namespace Tool {

void report(std::string const& text) {
  static std::set<std::string> printed;
  for (auto const& line : split<std::string>(text, "\n", /*keepEmpty=*/false))
    if (printed.insert(line).second)
      std::fprintf(stderr, "photarium: %s\n", line.c_str());
}

ProgressBar::ProgressBar(std::string label)
    : label_(std::move(label)),
      start_(std::chrono::steady_clock::now()),
      onTerminal_(isatty(STDERR_FILENO) != 0) {}

ProgressBar::~ProgressBar() {
  if (shown_) std::fputs("\r\033[K", stderr);  // clears the line
}

void ProgressBar::show(int percent) {
  using namespace std::chrono_literals;
  if (!onTerminal_ || std::chrono::steady_clock::now() - start_ < 1s) return;
  constexpr int Width = 40;
  int const filled = std::clamp(percent, 0, 100) * Width / 100;
  std::string const bar(static_cast<std::size_t>(filled), '#');
  std::fprintf(stderr, "\r%s [%-*s] %3d %%", label_.c_str(), Width, bar.c_str(),
               percent);
  std::fflush(stderr);
  shown_ = true;
}

}  // namespace Tool
