#include "photarium/grid/TableHeader.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "photarium/foundation/number.h"

template <class T>
std::string TableHeader<T>::text() const {
  std::string text = "#" + Program + "\t0\t" + Name + "\t" + Kind + "\t";
  appendInteger(text, Columns);
  text += '\t';
  appendInteger(text, Rows);
  text += '\t';
  appendGeneral(text, First);
  text += '\t';
  appendGeneral(text, Step);
  text += "\n# Density: ";
  appendGeneral(text, Density);
  text += "\t# [g/cm^3]\n# energy steps of ";
  appendGeneral(text, Step);
  text += " keV, from ";
  appendGeneral(text, First);
  text += " keV to ";
  appendGeneral(text, Last);
  text += " keV\n";
  return text;
}

template <class T>
std::uint64_t TableRows(T kVp, T EBin) {
  T const rows = std::ceil(kVp / EBin);
  if (!(rows >= 1 && rows <= T(MaxTableRows)))
    throw std::runtime_error("Unreasonable number of energies.\n");
  return static_cast<std::uint64_t>(rows);
}

void LimitTableSteps(std::uint64_t steps) {
  if (steps <= MaxTableSteps) return;
  std::string message = "More than ";
  appendInteger(message, MaxTableSteps);
  throw std::runtime_error(message + " steps requested.\n");
}

template struct TableHeader<double>;
template PHOTARIUM_EXPORT std::uint64_t TableRows(double, double);
