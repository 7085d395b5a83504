#pragma once

#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "photarium/config/Config.h"
#include "photarium/config/GridConfig.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "tools/Output.h"
#include "tools/Picture.h"
#include "tools/report.h"

/// What the commands for the tables of Monte Carlo programs have in common.
namespace Tool {

/// A row of a table: an electron energy [keV] and its numbers.
struct TableRow {
  double energy;
  std::vector<double> numbers;
};

/// Takes the rows of a table down while they go on to another buffer: some
/// hundreds at most, evenly spaced, which is enough for a picture.
class RowTap : public std::streambuf {
 public:
  /// `ahead` lines that are no comments stand ahead of the rows.
  RowTap(std::streambuf* target, GridConfig<double> const& grid,
         std::size_t ahead);

  std::vector<TableRow> const& rows() const { return rows_; }

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(char const* text, std::streamsize size) override;
  int sync() override;

 private:
  void take(std::string_view text);
  void endLine();

  std::streambuf* target_;
  double step_;
  std::size_t stride_;
  std::size_t ahead_;
  std::size_t row_ = 0;
  std::string line_;
  std::vector<TableRow> rows_;
};

/// Shows the progress that goes to `IPC` of the settings as a bar, too, as long
/// as the object lives. A peer that fails once gets nothing more; the bar goes
/// on.
class ProgressTap : public std::streambuf {
 public:
  ProgressTap(Config<double> const& settings, std::string const& label);
  ProgressTap(ProgressTap const&) = delete;
  ProgressTap& operator=(ProgressTap const&) = delete;
  ~ProgressTap() override;

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  void endLine();

  std::ostream& stream_;
  std::streambuf* target_;
  bool isPeerAlive_ = true;
  ProgressBar bar_;
  std::string line_;
};

/// Lets `write` write a table to `output`, with `ahead` lines that are no
/// comments ahead of its rows; its warnings are reported. Returns the rows for
/// a picture, if one is wanted.
template <class Write>
std::vector<TableRow> writeTable(Output& output, Picture const& picture,
                                 GridConfig<double> const& grid,
                                 std::size_t ahead, Write write);

/// Sampling curves of a few energies: the numbers of their rows behind the
/// first `skip`, over equidistant probabilities.
std::vector<PictureCurve> samplingCurves(std::vector<TableRow> const& rows,
                                         std::size_t skip);

/// Reports the first lines of `findings` and how many more there are.
void reportSome(std::string const& findings);

/// What to do for electron data of `material`, of which there is no `what`.
std::string importHint(Material<double> const& material,
                       std::string const& what);

template <class Write>
std::vector<TableRow> writeTable(Output& output, Picture const& picture,
                                 GridConfig<double> const& grid,
                                 std::size_t ahead, Write write) {
  RowTap tap(output.stream().rdbuf(), grid, ahead);
  std::ostream tapped(&tap);
  try {
    write(picture.isWanted() ? tapped : output.stream());
  } catch (warning const& findings) {
    reportSome(findings.what());
  }
  return tap.rows();
}

}  // namespace Tool
