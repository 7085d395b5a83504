#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Tool {

/// A curve of a picture.
struct PictureCurve {
  std::string legend;
  std::vector<std::pair<double, double>> points;
  bool isBackground = false;  // wide and grey, behind the others, such as a sum
};

/// A named place on the abscissa, such as an absorption edge.
struct PictureMark {
  std::string text;
  double x;
};

/// What a picture shows. Texts are printed as they stand.
struct PicturePage {
  std::string title;
  std::string xLabel;  // with its unit
  std::string yLabel;  // with its unit
  bool logX = true;
  bool logY = true;
  char const* legend = "top right";  // its place, as gnuplot names it
  std::vector<PictureCurve> curves{};
  std::vector<PictureMark> marks{};
};

/// A picture in a file, drawn by gnuplot.
///
///     Picture const picture(line.value("plot"));  // throws for "brass.gif"
///     ...
///     if (picture.isWanted()) picture.draw(page);
///
/// Values that a logarithmic axis cannot show are left out. The file appears
/// complete or not at all. No text reaches gnuplot other than as data or
/// quoted.
class Picture {
 public:
  /// An empty name asks for no picture. Throws UsageError for a name that ends
  /// neither in .svg nor in .png.
  explicit Picture(std::string const& file);

  bool isWanted() const { return !file_.empty(); }

  /// Draws `page`; belongs behind isWanted(). Throws std::runtime_error if
  /// gnuplot is missing or fails, or if the file cannot be written.
  void draw(PicturePage const& page) const;

  /// The same for several pages, one below the other.
  void draw(std::vector<PicturePage> const& pages) const;

 private:
  std::string file_;
  bool isVector_ = false;
};

}  // namespace Tool
