#pragma once

#include <cstddef>
#include <ios>
#include <ostream>
#include <string>

#include "photarium/foundation/number.h"

/// Rows of numbers on their way to a stream, which gets them in large blocks.
///
/// The stream is set to scientific notation of precision 6, as if the numbers
/// had been inserted one by one. What has not been sent by flush() is lost.
class TableText {
 public:
  explicit TableText(std::ostream& out) : out_(out) {
    out.setf(std::ios_base::scientific, std::ios_base::floatfield);
    out.precision(6);
    showSign_ = (out.flags() & std::ios_base::showpos) != 0;
  }
  TableText(TableText const&) = delete;
  TableText& operator=(TableText const&) = delete;

  void number(double value) { appendScientific(text, value, 6, showSign_); }

  void endRow() {
    text += '\n';
    if (text.size() >= block) flush();
  }

  void flush() {
    out_.write(text.data(), static_cast<std::streamsize>(text.size()));
    text.clear();
  }

  std::string text;  // of the block, for what is no number

 private:
  static constexpr std::size_t block = 1 << 16;

  std::ostream& out_;
  bool showSign_;
};
