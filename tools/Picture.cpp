#include "tools/Picture.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "tools/Output.h"
#include "tools/command.h"
#include "tools/system.h"

namespace Tool {
namespace {

// Colours that remain distinct for the colour-blind: M. Okabe, K. Ito, Color
// Universal Design (2008).
constexpr char const* Colours[] = {"#0072B2", "#D55E00", "#009E73", "#CC79A7",
                                   "#E69F00", "#56B4E9", "#000000"};
constexpr std::size_t ColourCount = sizeof(Colours) / sizeof(Colours[0]);

// Names of marks nearer to each other than this share of the axis would
// overlap.
constexpr double MarkDistance = 0.016;

constexpr int Digits = 9;  // of a plotted number

// A text in single quotes, in which gnuplot takes every character for itself
// but the quote, and a line end for the end of the command.
std::string quoted(std::string const& text) {
  std::string out = "'";
  for (char const c : text) {
    if (c == '\'')
      out += "''";
    else
      out += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
  }
  return out + "'";
}

std::string number(double value) {
  std::string text;
  appendGeneral(text, value, Digits);
  return text;
}

bool isShown(double value, bool logarithmic) {
  return std::isfinite(value) && (!logarithmic || value > 0);
}

bool isShown(PicturePage const& page, std::pair<double, double> const& point) {
  return isShown(point.first, page.logX) && isShown(point.second, page.logY);
}

// The data of one curve without the points that have no place.
std::string dataBlock(PicturePage const& page, std::size_t index) {
  std::string block = "$curve" + std::to_string(index) + " << EndOfCurve\n";
  for (auto const& point : page.curves[index].points)
    if (isShown(page, point))
      block += number(point.first) + ' ' + number(point.second) + '\n';
  return block + "EndOfCurve\n";
}

// The page with those curves that have something to show, those of the
// background first.
PicturePage sorted(PicturePage page) {
  std::erase_if(page.curves, [&](PictureCurve const& curve) {
    return std::none_of(curve.points.begin(), curve.points.end(),
                        [&](auto const& p) { return isShown(page, p); });
  });
  std::stable_partition(page.curves.begin(), page.curves.end(),
                        [](auto const& curve) { return curve.isBackground; });
  std::sort(page.marks.begin(), page.marks.end(),
            [](auto const& a, auto const& b) { return a.x < b.x; });
  return page;
}

struct Span {
  double low, high;
};

Span abscissas(PicturePage const& page) {
  Span span{HUGE_VAL, -HUGE_VAL};
  for (auto const& curve : page.curves)
    for (auto const& point : curve.points)
      if (isShown(page, point))
        span = {std::min(span.low, point.first),
                std::max(span.high, point.first)};
  return span;
}

// Share of the axis that lies left of `x`.
double placeOf(double x, PicturePage const& page, Span span) {
  return page.logX ? std::log(x / span.low) / std::log(span.high / span.low)
                   : (x - span.low) / (span.high - span.low);
}

// Thin vertical lines with their names above the frame. Where names would
// overlap, the next one moves aside a little or is left out.
std::string markCommands(PicturePage const& page, Span span) {
  std::string commands;
  double free = 0;  // where the next name may stand
  for (auto const& mark : page.marks) {
    if (!(mark.x > span.low && mark.x < span.high)) continue;
    std::string const x = number(mark.x);
    commands += "set arrow from first " + x + ", graph 0 to first " + x +
                ", graph 1 nohead back lw 0.7 dt 3 lc '#888888'\n";
    double const place = placeOf(mark.x, page, span);
    double const at = std::max(place, free);
    if (at - place > MarkDistance) continue;
    free = at + MarkDistance;
    commands += "set label " + quoted(mark.text) + " at graph " + number(at) +
                ", graph 1.015 rotate by 90 left noenhanced font ',10' tc "
                "'#555555'\n";
  }
  return commands;
}

std::string axisCommands(PicturePage const& page, Span span) {
  constexpr double ManyDecades = 2e4;
  std::string commands;
  if (page.logX) commands += "set logscale x\n";
  if (page.logX && span.high / span.low > ManyDecades)
    commands += "set format x '10^{%L}'\n";
  commands += page.logY ? "set logscale y\nset format y '10^{%L}'\n"
                        : "set offsets 0, 0, graph 0.05, graph 0.03\n";
  commands += "set xlabel " + quoted(page.xLabel) + " noenhanced\n";
  commands += "set ylabel " + quoted(page.yLabel) + " noenhanced\n";
  commands += "set title " + quoted(page.title) + " noenhanced";
  // Room for the names of the marks.
  commands += page.marks.empty() ? "\n" : " offset 0,1.9\nset tmargin 5.6\n";
  return commands;
}

// Dashed lines begin where the colours are used up.
std::string ownStyle(std::size_t index) {
  return std::string("lw 2 lc '") + Colours[index % ColourCount] +
         (index < ColourCount ? "'" : "' dt 2");
}

std::string plotCommand(PicturePage const& page) {
  std::string command = "plot";
  char const* separator = " ";
  std::size_t colour = 0;
  for (std::size_t i = 0; i < page.curves.size(); ++i) {
    auto const& curve = page.curves[i];
    command += separator;
    command += "$curve" + std::to_string(i) + " using 1:2 with lines ";
    command += curve.isBackground ? "lw 7 lc '#cccccc'" : ownStyle(colour++);
    command += " title " + quoted(curve.legend) + " noenhanced";
    separator = ", ";
  }
  return command + "\n";
}

std::string panel(PicturePage const& wanted) {
  PicturePage const page = sorted(wanted);
  Span const span = abscissas(page);
  if (!(span.low < span.high))
    throw std::runtime_error("Nothing to draw: " + page.title);
  std::string text =
      "reset\nset encoding utf8\nset border 31 lw 1\nset tics scale 0.6\n"
      "set grid lw 0.5 lc '#dddddd'\nset key ";
  text += std::string(page.legend) + " noenhanced\nset xrange [" +
          number(span.low) + ":" + number(span.high) + "]\n";
  text += axisCommands(page, span) + markCommands(page, span);
  for (std::size_t i = 0; i < page.curves.size(); ++i)
    text += dataBlock(page, i);
  return text + plotCommand(page);
}

std::string script(std::vector<PicturePage> const& pages, bool isVector) {
  auto const height = [&](std::size_t one) {
    return std::to_string(one * pages.size());
  };
  std::string text = isVector
                         ? "set terminal svg size 900," + height(600) +
                               " enhanced font 'sans-serif,14' "
                               "background 'white'\n"
                         : "set terminal pngcairo size 1200," + height(800) +
                               " enhanced font 'sans-serif,15' "
                               "background 'white'\n";
  bool const several = pages.size() > 1;
  if (several) text += "set multiplot layout " + height(1) + ",1\n";
  for (auto const& page : pages) text += panel(page);
  return several ? text + "unset multiplot\n" : text;
}

}  // namespace

Picture::Picture(std::string const& file) : file_(file) {
  if (file.empty()) return;
  std::string const name = tolower(file);
  isVector_ = name.ends_with(".svg");
  if (!isVector_ && !name.ends_with(".png"))
    throw UsageError("A picture is named .svg or .png, not " + file);
}

void Picture::draw(PicturePage const& page) const {
  draw(std::vector<PicturePage>{page});
}

void Picture::draw(std::vector<PicturePage> const& pages) const {
  if (!isWanted()) return;
  std::string const commands = script(pages, isVector_);
  SafeFile picture(file_);
  if (!System::runGnuplot(commands, picture.descriptor()))
    throw std::runtime_error("gnuplot could not draw " + file_);
  picture.keep();
}

}  // namespace Tool
