#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// The value of a field of 11 columns without an exponent letter; 0 if blank.
/// False if there is none.
bool endfValue(std::string_view field, double& value);

/// True if a table section (MF 23 or 27) has the lines that its head claims.
bool isWholeTable(std::vector<std::string_view> const& lines);

/// The lines of a table section, less the points that linear interpolation
/// between the others reproduces within `tolerance` times their value. The
/// section stays as it is if `tolerance` is 0 or if it is not linear all over.
class ThinTable {
 public:
  ThinTable(std::vector<std::string_view> const& lines, double tolerance);

  std::vector<std::string_view> const& lines() const { return lines_; }

 private:
  void thin(double tolerance);
  void write(std::vector<std::string_view> const& points);

  std::vector<std::string_view> lines_;
  std::deque<std::string> texts_;  // of lines that changed
};

}  // namespace Tool
