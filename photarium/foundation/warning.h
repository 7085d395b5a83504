#pragma once

#include <stdexcept>
#include <string>

#include "photarium/foundation/export.h"

/// The work went on, but the user must read this: something was accepted,
/// ignored or corrected. The text holds all findings.
///
/// It ends the operation that throws it like any other exception, yet what was
/// set up to that point stays set, so that a caller may catch it and go on. It
/// is a std::runtime_error: a handler for it stands ahead of that one.
class PHOTARIUM_EXPORT warning : public std::runtime_error {
 public:
  explicit warning(std::string const& findings);
  warning(warning const&) = default;
  warning& operator=(warning const&) = default;
  ~warning() override;
};
