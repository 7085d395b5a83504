#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "photarium/foundation/warning.h"

namespace Settings {

/// The findings of one operation, thrown together at its end. Each is a line
/// with its end.
class Findings {
 public:
  /// Adds a finding with which the work can go on.
  void soft(std::string_view line) { text_ += line; }

  /// Adds a finding with which it cannot.
  void hard(std::string_view line) {
    text_ += line;
    failed_ = true;
  }

  /// Adds `line` as a hard finding unless `holds`.
  void require(bool holds, std::string_view line) {
    if (!holds) hard(line);
  }

  /// Runs `call` and adds the text of a `warning` that it throws.
  template <class Call>
  void gather(Call const& call) {
    try {
      call();
    } catch (warning const& findings) {
      soft(findings.what());
    }
  }

  /// Runs `call` and adds the text of any exception; all but `warning` are
  /// hard. std::bad_alloc passes.
  template <class Call>
  void gatherAll(Call const& call) {
    try {
      gather(call);
    } catch (std::bad_alloc const&) {
      throw;
    } catch (std::exception const& failure) {
      hard(failure.what());
    }
  }

  /// Throws std::invalid_argument after a hard finding, `warning` after a soft
  /// one.
  void report() const {
    if (failed_) throw std::invalid_argument(text_);
    if (!text_.empty()) throw warning(text_);
  }

 private:
  std::string text_;
  bool failed_ = false;
};

}  // namespace Settings
