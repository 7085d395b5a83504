// The readers of ENDF-6 and ACE text on real files, which lie in the folder
// that PHOTARIUM_TEST_DATA names.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "photarium/material/Material.h"
#include "tests/material/PlainEndfReader.h"
#include "tools/endf_tape.h"

namespace {

std::string dataFile(std::string const& name) {
  char const* const folder = std::getenv("PHOTARIUM_TEST_DATA");
  std::string const path = std::string(folder ? folder : ".").append("/");
  std::ifstream in(path + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

bool has(benchmark::State& state, std::string const& text) {
  if (text.empty()) state.SkipWithError("set PHOTARIUM_TEST_DATA");
  return !text.empty();
}

void setBytes(benchmark::State& state, std::string const& text) {
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(text.size()));
}

// The elements by the names of their files.
constexpr char const* Tapes[] = {"endf/026_Fe_000.endf", "endf/092_U_000.endf",
                                 "endf_mt526/074_W_000.endf"};
constexpr char const* Symbols[] = {"Fe", "U", "W"};

void BM_ReadENDF(benchmark::State& state) {
  auto const which = static_cast<std::size_t>(state.range(0));
  std::string const text = dataFile(Tapes[which]);
  if (!has(state, text)) return;
  std::istringstream in(text);
  for (auto _ : state) {
    Material<double> material(Symbols[which], 0, 0, 0);
    in.clear();
    in.seekg(0);
    material.readENDF(in);
    benchmark::DoNotOptimize(material.Edges.data());
  }
  state.SetLabel(Tapes[which]);
  setBytes(state, text);
}
BENCHMARK(BM_ReadENDF)->DenseRange(0, 2);

// True for a section that ends up in a Material.
bool isUsed(std::string_view control) {
  int mt = 0;
  std::string_view number = control.substr(2, 3);
  while (number.starts_with(' ')) number.remove_prefix(1);
  std::from_chars(number.data(), number.data() + number.size(), mt);
  std::string_view const mf = control.substr(0, 2);
  if (mf == "27" || mf == "28") return mt != 0;
  bool const isLevel = mt >= 534 && mt <= 572;
  bool const isCurve = mt == 502 || mt == 504 || mt == 516 || mt == 522;
  if (mf == "26") return mt == 526 || mt == 527;
  return mf == "23" && (isLevel || isCurve || mt == 526 || mt == 527);
}

// The number fields of a tape with an "e" ahead of the exponent, end to end,
// and their lengths: of the sections that the reader uses or of all.
struct Fields {
  std::string text;
  std::vector<unsigned int> lengths;

  Fields(std::string const& tape, bool all) {
    for (std::size_t i = 0; i + 80 < tape.size(); i += 81) {
      std::string_view const line(tape.data() + i, 80);
      bool const isData = line.substr(70, 5) != " 1451";
      if (!isData || (!all && !isUsed(line.substr(70, 5)))) continue;
      for (std::size_t at = 0; at < 66; at += 11) add(line.substr(at, 11));
    }
  }

  void add(std::string_view field) {
    std::size_t const first = field.find_first_not_of(' ');
    if (first == field.npos) return;
    std::string number(field.substr(first));
    number.resize(number.find_last_not_of(' ') + 1);
    std::size_t const sign = number.find_first_of("+-", 1);
    if (sign != number.npos) number.insert(sign, 1, 'e');
    text += number;
    lengths.push_back(static_cast<unsigned int>(number.size()));
  }
};

// The peer: nothing but the conversion of the same number fields.
void fromChars(benchmark::State& state, bool all) {
  auto const which = static_cast<std::size_t>(state.range(0));
  std::string const text = dataFile(Tapes[which]);
  if (!has(state, text)) return;
  Fields const fields(text, all);
  std::vector<double> values(fields.lengths.size());
  for (auto _ : state) {
    char const* at = fields.text.data();
    for (std::size_t i = 0; i < values.size(); ++i) {
      std::from_chars(at, at + fields.lengths[i], values[i]);
      at += fields.lengths[i];
    }
    benchmark::DoNotOptimize(values.data());
    benchmark::ClobberMemory();
  }
  state.SetLabel(Tapes[which]);
  setBytes(state, text);
}
void BM_FromCharsUsedFields(benchmark::State& state) {
  fromChars(state, /*all=*/false);
}
BENCHMARK(BM_FromCharsUsedFields)->DenseRange(0, 2);
void BM_FromCharsAllFields(benchmark::State& state) {
  fromChars(state, /*all=*/true);
}
BENCHMARK(BM_FromCharsAllFields)->DenseRange(0, 2);

// The peer: string streams and multimaps.
void BM_ReadENDFPlain(benchmark::State& state) {
  std::string const text = dataFile(Tapes[0]);
  if (!has(state, text)) return;
  for (auto _ : state) {
    Material<double> material(Symbols[0], 0, 0, 0);
    std::istringstream in(text);
    PlainEndfReader(material).read(in);
    benchmark::DoNotOptimize(material.Edges.data());
  }
  setBytes(state, text);
}
BENCHMARK(BM_ReadENDFPlain);

void BM_ReadMCNP(benchmark::State& state) {
  std::string const text = dataFile("ace/92000.31p");
  if (!has(state, text)) return;
  std::istringstream in(text);
  for (auto _ : state) {
    Material<double> material("U", 0, 0, 0);
    in.clear();
    in.seekg(0);
    material.readMCNP(in);
    benchmark::DoNotOptimize(material.Edges.data());
  }
  setBytes(state, text);
}
BENCHMARK(BM_ReadMCNP);

// A tape with letters in its exponents becomes the text of an element.
void BM_ImportTape(benchmark::State& state) {
  std::string const text = dataFile("endf_originals/photoat-074_W_000.endf");
  if (!has(state, text)) return;
  for (auto _ : state) {
    Tool::EndfTapes tapes;
    tapes.add("tape", text);
    benchmark::DoNotOptimize(Tool::endfText(tapes.elements().at(74), 0));
  }
  setBytes(state, text);
}
BENCHMARK(BM_ImportTape);

}  // namespace
