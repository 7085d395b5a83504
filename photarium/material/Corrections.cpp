#include <algorithm>
#include <cstdint>
#include <exception>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/foundation/warning.h"
#include "photarium/material/Material.h"
#include "photarium/material/readers.h"

namespace {

// Calls `record` with each line of the correction file `file` that holds more
// than blanks and comments, until it returns true.
template <class F>
void eachRecord(std::string const& file, F const& record) {
  std::string text;
  if (!readFile(file, text)) throw std::runtime_error("Could not open file");
  std::string_view rest = text;
  while (!rest.empty()) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    line = trimmed(line.substr(0, line.find('#')));
    if (!line.empty() && record(line)) return;
  }
}

bool skipWords(std::string_view& record, int count) {
  for (; count > 0; --count)
    if (extractWord(record).empty()) return false;
  return true;
}

// A field of the record, the columns skipped ahead of it, and what its number
// is divided by.
template <class T>
struct Column {
  int skipped;
  T EnergyLossConstants<T>::*field;
  T divisor;
};

// Columns from 3 on; energies are in eV, and the file has -C.
template <class T>
constexpr Column<T> Columns[] = {{1, &EnergyLossConstants<T>::J, 1000},
                                 {3, &EnergyLossConstants<T>::C, -1},
                                 {0, &EnergyLossConstants<T>::x0, 1},
                                 {0, &EnergyLossConstants<T>::x1, 1},
                                 {0, &EnergyLossConstants<T>::a, 1},
                                 {0, &EnergyLossConstants<T>::m, 1},
                                 {0, &EnergyLossConstants<T>::delta0, 1},
                                 {1, &EnergyLossConstants<T>::Ef, 1000}};

// False at the first column that is missing or should be a number and is none;
// the fields behind it keep what they had.
template <class T>
bool readColumns(std::string_view record, EnergyLossConstants<T>& constants) {
  for (auto const& [skipped, field, divisor] : Columns<T>) {
    if (!skipWords(record, skipped) || trimmed(record).empty()) return false;
    double value = 0;
    bool const isNumber = extractNumber(record, value);
    constants.*field = T(value) / divisor;
    if (!isNumber) return false;
  }
  return true;
}

}  // namespace

template <class T>
void Material<T>::readCorr(std::string const& file, T J) {
  try {
    eachRecord(file, [&](std::string_view record) {
      if (extractWord(record) != Name) return false;
      EnergyLossConstants<T> constants(Z, J);
      if (!skipWords(record, 1) || !readColumns(record, constants))
        throw std::runtime_error("Error parsing data for " + Name);
      EnergyLoss.clear();
      EnergyLoss[constants] = 1;
      return true;
    });
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& cause) {
    throw std::runtime_error(std::string(cause.what()) + " while reading " +
                             file);
  }
}

template <class T>
void Material<T>::readCorr(std::map<std::string, Material>& elements,
                           std::string const& file) {
  std::string findings;
  try {
    eachRecord(file, [&](std::string_view record) {
      std::string const name(extractWord(record));
      std::uint32_t number = 0;
      bool const isNumbered = extractNumber(record, number);
      EnergyLossConstants<T> constants(T(number), T(0));
      if (!isNumbered || !readColumns(record, constants))
        findings += "Error parsing data for " + name + "\n";
      Material& element = elements[name];
      element.Name = name;
      element.EnergyLoss.clear();
      element.EnergyLoss[constants] = 1;
      return false;
    });
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& cause) {
    throw std::runtime_error(std::string(cause.what()) + " while reading " +
                             file);
  }
  if (!findings.empty())
    throw warning("While reading " + file + ":\n" + findings);
}

template void Material<double>::readCorr(std::string const&, double);
template void Material<double>::readCorr(
    std::map<std::string, Material<double>>&, std::string const&);
