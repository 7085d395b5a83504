#include "photarium/foundation/number.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t Count = 65536;

// Texts of values that rise from `first` to `last` and fall back in steps of
// random size, as the columns of a table do.
std::vector<std::string> column(double first, double last,
                                std::chars_format format, int precision) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> step(0, (last - first) / 50);
  double value = first;
  double sign = 1;
  std::vector<std::string> found(Count);
  for (std::string& text : found) {
    char buffer[400];
    text.assign(buffer, std::to_chars(buffer, buffer + sizeof(buffer), value,
                                      format, precision)
                            .ptr);
    value += sign * step(random);
    if (value > last) sign = -1;
    if (value < first) sign = 1;
  }
  return found;
}

// As column(), but in equal ratios.
std::vector<std::string> decades(double first, double last, int precision) {
  auto found =
      column(std::log10(first), std::log10(last), std::chars_format::fixed, 12);
  for (std::string& text : found) {
    std::string_view rest = text;
    double exponent = 0;
    extractNumber(rest, exponent);
    text.clear();
    appendScientific(text, std::pow(10., exponent), precision);
  }
  return found;
}

// Unordered decimals of one to five digits ahead of the point and one to six
// behind it.
std::vector<std::string> mixed() {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> fraction(0, 1);
  std::vector<std::string> found(Count);
  for (std::string& text : found) {
    int const whole = static_cast<int>(random() % 5);
    int const places = static_cast<int>(random() % 6) + 1;
    appendFixed(text, fraction(random) * std::pow(10., whole), places);
  }
  return found;
}

bool isDecimal(std::string_view word) {
  std::size_t const point = word.find('.');
  return point != word.npos && point + 1 < word.size() &&
         word.find_first_not_of("-.0123456789") == word.npos;
}

// The decimals of a file of the project's own data, over and over, in order.
std::vector<std::string> decimalsOf(char const* name) {
  std::ifstream file(std::string(PHOTARIUM_SOURCE_DIR "/data/") + name);
  std::stringstream content;
  content << file.rdbuf();
  std::string const text = content.str();
  std::vector<std::string> all;
  std::string_view rest = text;
  for (auto word = extractWord(rest); !word.empty(); word = extractWord(rest))
    if (isDecimal(word)) all.emplace_back(word);
  std::vector<std::string> found(Count);
  for (std::size_t i = 0; i < Count; ++i) found[i] = all[i % all.size()];
  return found;
}

// The kinds of number that are read.
std::vector<std::string> kind(std::int64_t index) {
  switch (index) {
    case 0:
      return column(4, 14, std::chars_format::fixed, 6);  // logarithms, keV
    case 1:
      return decades(1e-12, 1e12, 6);
    case 2:
      return decades(1e-9, 1e9, 16);
    case 4:
      return mixed();
    case 5:
      return decimalsOf("ElamDB12.txt");
    case 6:
      return decimalsOf("ELossCorrections.txt");
    default:
      return decades(1e-290, 1e290, 16);
  }
}

std::string joined(std::vector<std::string> const& fields) {
  std::string text;
  for (std::string const& field : fields) text += ' ' + field;
  return text;
}

void BM_ReadPhotarium(benchmark::State& state) {
  std::string const text = joined(kind(state.range(0)));
  for (auto _ : state) {
    std::string_view rest = text;
    double value = 0;
    while (extractNumber(rest, value)) benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{Count});
}
BENCHMARK(BM_ReadPhotarium)->DenseRange(0, 6);

void BM_ReadFromChars(benchmark::State& state) {
  std::string const text = joined(kind(state.range(0)));
  char const* const end = text.data() + text.size();
  for (auto _ : state) {
    double value = 0;
    for (char const* p = text.data(); p != end;) {
      while (*p == ' ') ++p;
      p = std::from_chars(p, end, value).ptr;
      benchmark::DoNotOptimize(value);
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{Count});
}
BENCHMARK(BM_ReadFromChars)->DenseRange(0, 6);

void BM_ReadStream(benchmark::State& state) {
  std::string const text = joined(kind(state.range(0)));
  for (auto _ : state) {
    std::istringstream in(text);
    double value = 0;
    while (in >> value) benchmark::DoNotOptimize(value);
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{Count});
}
BENCHMARK(BM_ReadStream)->DenseRange(0, 6);

std::vector<double> values() {
  std::vector<double> found;
  for (std::string_view text : kind(2))
    extractNumber(text, found.emplace_back());
  return found;
}

void BM_WritePhotarium(benchmark::State& state) {
  auto const numbers = values();
  std::string out;
  for (auto _ : state) {
    out.clear();
    for (double value : numbers) appendScientific(out, value);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{Count});
}
BENCHMARK(BM_WritePhotarium);

void BM_WriteStream(benchmark::State& state) {
  auto const numbers = values();
  std::ostringstream out;
  out << std::scientific;
  for (auto _ : state) {
    out.seekp(0);
    for (double value : numbers) out << value;
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{Count});
}
BENCHMARK(BM_WriteStream);

}  // namespace
