#pragma once

#include <chrono>
#include <string>

/// What goes to standard error: messages and progress.
namespace Tool {

/// Prints each line of `text` on standard error behind the program's name,
/// unless it was printed before. Empty lines are left out.
void report(std::string const& text);

/// A bar on standard error, for work that takes longer than a second. Shows
/// nothing where standard error is no terminal; goes with the object.
///
///     ProgressBar bar("brems");
///     bar.show(42);  // percent
class ProgressBar {
 public:
  explicit ProgressBar(std::string label);
  ProgressBar(ProgressBar const&) = delete;
  ProgressBar& operator=(ProgressBar const&) = delete;
  ~ProgressBar();

  void show(int percent);

 private:
  std::string label_;
  std::chrono::steady_clock::time_point start_;
  bool onTerminal_;
  bool shown_ = false;
};

}  // namespace Tool
