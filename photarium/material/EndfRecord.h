#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Records of the ENDF-6 format: lines of six fields of 11 columns, then the
// control columns MAT (4), MF (2), MT (3) and NS (5). Not installed.
//
// A number has no exponent letter: "1.234567-5" is 1.234567e-5, a sign behind
// the first character begins the exponent. A blank field is 0. Text behind a
// number that stands alone is ignored, as a stream extraction does.

/// Widths and offsets of a line.
inline constexpr std::size_t EndfFieldWidth = 11;
inline constexpr std::size_t EndfControlColumn = 66;

/// The number in `field`. False if there is none or if it is too large.
bool endfNumber(std::string_view field, double& value);

/// The same for a number without a sign; a decimal point ends it.
bool endfNumber(std::string_view field, std::uint32_t& value);

/// The number in a control field, 0 where it is none.
std::uint32_t endfControl(std::string_view field);

using EndfFields = std::array<double, 6>;

/// Stands for "no field" as the result of endfFields().
inline constexpr std::size_t EndfNoField = 6;

/// Reads the six fields of `line`, which has 66 columns at least. Returns the
/// index of the first field that is no number, or EndfNoField.
std::size_t endfFields(std::string_view line, EndfFields& fields);

/// "Error parsing " and `field` without the blanks around it.
std::string endfError(std::string_view field);
