#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "photarium/foundation/export.h"

/// Numbers from and to text: the one place where the library converts them.
///
/// Reading has the meaning of a stream extraction in the classic locale with
/// the default flags, at several times its speed; the process locale has no
/// influence. Writing gives the bytes of a stream insertion in the classic
/// locale. Nothing here keeps state: any number of threads may call it.
///
///     std::string_view rest = " +1.5e3keV";
///     double energy = 0;
///     extractNumber(rest, energy);  // true, energy 1500, rest "keV"

/// Takes a number from the front of `text` and cuts it off.
///
/// Leading blanks are skipped, a leading sign is allowed, text behind the
/// number stays in `text`. True if a number was found. Otherwise `value` is
/// what a failed stream extraction leaves: 0 where the text is no number, the
/// largest finite value of the sign where it does not fit, what it was where
/// nothing but blanks is left. An unsigned number with a "-" wraps.
PHOTARIUM_EXPORT bool extractNumber(std::string_view& text, double& value);
PHOTARIUM_EXPORT bool extractNumber(std::string_view& text,
                                    std::int64_t& value);
PHOTARIUM_EXPORT bool extractNumber(std::string_view& text,
                                    std::uint64_t& value);
PHOTARIUM_EXPORT bool extractNumber(std::string_view& text,
                                    std::uint32_t& value);

/// `digits` * 10^`exponent`, rounded to the nearest double: infinity where it
/// is too large, 0 where it is too small. For readers that find the digits of a
/// number on their own.
///
///     decimalValue(15, 2);  // 1500
PHOTARIUM_EXPORT double decimalValue(std::uint64_t digits, int exponent);

/// Takes the next blank-delimited word from the front of `text` and cuts it
/// off, with the blanks ahead of it. Empty if only blanks are left.
PHOTARIUM_EXPORT std::string_view extractWord(std::string_view& text);

/// Appends `value` as a stream with `scientific` and `precision` prints it;
/// with `showSign` a "+" stands ahead of values that have no "-".
PHOTARIUM_EXPORT void appendScientific(std::string& out, double value,
                                       int precision = 6,
                                       bool showSign = false);

/// Appends `value` as a stream with `fixed` and `precision` prints it.
PHOTARIUM_EXPORT void appendFixed(std::string& out, double value,
                                  int precision);

/// Appends `value` as a stream in its default format prints it: general
/// notation with `precision` significant digits.
PHOTARIUM_EXPORT void appendGeneral(std::string& out, double value,
                                    int precision = 6);

/// Appends a whole number in decimal digits.
PHOTARIUM_EXPORT void appendInteger(std::string& out, std::uint64_t value);
