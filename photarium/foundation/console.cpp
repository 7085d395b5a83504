#include "photarium/foundation/console.h"

#include <climits>
#include <ios>
#include <iostream>

#include "photarium/foundation/number.h"

namespace {

// Right-aligned behind what stands in `line`, `width` bytes at least.
void appendPadded(std::string& line, std::string const& number,
                  std::size_t width) {
  if (number.size() < width) line.append(width - number.size(), ' ');
  line += number;
}

void appendQuantity(std::string& line, char const* label, double value) {
  std::string number;
  appendScientific(number, value, 5);
  line += label;
  appendPadded(line, number, 13);
}

}  // namespace

void initStreams(bool scientific, int precision) {
  std::cout.setf(scientific ? std::ios::scientific : std::ios::fixed);
  std::cout.setf(std::ios::boolalpha);
  std::cout.precision(precision);
  std::cerr.setf(std::ios::fixed | std::ios::boolalpha);
  std::cerr.precision(0);
}

std::ostream& VersionInfo(std::ostream& out) {
  return out << "Photarium " PHOTARIUM_VERSION " " << sizeof(void*) * CHAR_BIT
             << "bit OpenMP";
}

template <class T>
std::string SpectInfo(T const& avg, T const& flux, T const& kerma) {
  std::string line = "Avg: ";
  std::string number;
  appendFixed(number, avg, 3);
  appendPadded(line, number, 8);
  appendQuantity(line, " Flux: ", flux);
  if (kerma > 0) appendQuantity(line, " Kerma: ", kerma);
  return line;
}

template std::string SpectInfo(double const&, double const&, double const&);
