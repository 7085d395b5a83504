#pragma once

#include "photarium/config/findings.h"

namespace Settings {

/// Adds a finding unless the incoming angle [deg] is usable.
template <class T>
void checkAngleIn(T angle, Findings& findings) {
  if (angle < 1 || angle > 90)
    findings.hard("Incoming angle must be between 1 and 90 deg.\n");
}

/// Adds a finding unless the off-axis angle [deg] is usable.
template <class T>
void checkAngleSide(T angle, Findings& findings) {
  if (angle < 0 || angle >= 90)
    findings.hard("Off-axis angle must be between 0 and 90 deg.\n");
}

}  // namespace Settings
