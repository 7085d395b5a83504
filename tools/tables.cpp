#include "tools/tables.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "photarium/foundation/elements.h"
#include "photarium/foundation/number.h"
#include "photarium/grid/TableHeader.h"
#include "tools/endf_tape.h"

namespace Tool {
namespace {

constexpr std::size_t PictureRows = 400;
constexpr std::size_t FamilySize = 6;

// The numbers of a row; a word that is none stands for not a number.
std::vector<double> numbersOf(std::string_view line) {
  std::vector<double> numbers;
  for (;;) {
    std::string_view word = extractWord(line);
    if (word.empty()) return numbers;
    double& number = numbers.emplace_back();
    if (!extractNumber(word, number))
      number = std::numeric_limits<double>::quiet_NaN();
  }
}

std::string energyText(double energy) {
  std::string text;
  appendGeneral(text, energy, /*precision=*/4);
  return text + " keV";
}

}  // namespace

RowTap::RowTap(std::streambuf* target, GridConfig<double> const& grid,
               std::size_t ahead)
    : target_(target), step_(grid.EBin), ahead_(ahead) {
  // A table that is refused has no rows either.
  double const rows = std::ceil(grid.kVp / grid.EBin);
  bool const isTable = rows >= 1 && rows <= double(MaxTableRows);
  stride_ = isTable ? std::size_t(rows) / PictureRows + 1 : 1;
}

RowTap::int_type RowTap::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return 0;
  char const byte = traits_type::to_char_type(c);
  take({&byte, 1});
  return target_->sputc(byte);
}

std::streamsize RowTap::xsputn(char const* text, std::streamsize size) {
  take({text, std::size_t(size)});
  return target_->sputn(text, size);
}

int RowTap::sync() {
  return target_->pubsync();
}

void RowTap::take(std::string_view text) {
  for (;;) {
    std::size_t const end = text.find('\n');
    line_ += text.substr(0, end);
    if (end == std::string_view::npos) return;
    endLine();
    text.remove_prefix(end + 1);
  }
}

void RowTap::endLine() {
  std::string const line = std::exchange(line_, "");
  if (line.starts_with('#')) return;
  if (ahead_ > 0)
    --ahead_;
  else if (row_++ % stride_ == 0)
    rows_.push_back({double(row_) * step_, numbersOf(line)});
}

ProgressTap::ProgressTap(Config<double> const& settings,
                         std::string const& label)
    : stream_(settings.IPC), target_(stream_.rdbuf()), bar_(label) {
  stream_.rdbuf(this);
}

ProgressTap::~ProgressTap() {
  stream_.rdbuf(target_);
}

ProgressTap::int_type ProgressTap::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return 0;
  char const byte = traits_type::to_char_type(c);
  if (byte == '\n')
    endLine();
  else
    line_ += byte;
  if (isPeerAlive_)
    isPeerAlive_ =
        !traits_type::eq_int_type(target_->sputc(byte), traits_type::eof());
  return c;
}

int ProgressTap::sync() {
  if (isPeerAlive_) isPeerAlive_ = target_->pubsync() == 0;
  return 0;
}

void ProgressTap::endLine() {
  std::string_view rest = line_;
  std::int64_t percent = 0;
  if (extractWord(rest) == "Progress:" && extractNumber(rest, percent))
    bar_.show(int(percent));
  line_.clear();
}

std::vector<PictureCurve> samplingCurves(std::vector<TableRow> const& rows,
                                         std::size_t skip) {
  std::vector<PictureCurve> curves;
  std::size_t last = rows.size();
  for (std::size_t k = 0; k < FamilySize; ++k) {
    // Equal ratios between the energies.
    double const share = double(k + 1) / FamilySize;
    double const place = std::pow(double(rows.size()), share) - 1;
    auto const index = std::size_t(std::lround(place));
    if (index == last || index >= rows.size()) continue;
    last = index;
    auto const& [energy, numbers] = rows[index];
    PictureCurve& curve =
        curves.emplace_back(PictureCurve{energyText(energy), {}});
    double const steps = double(numbers.size() - skip) - 1;
    for (std::size_t j = skip; j < numbers.size(); ++j)
      curve.points.emplace_back(double(j - skip) / steps, numbers[j]);
  }
  return curves;
}

void reportSome(std::string const& findings) {
  constexpr std::ptrdiff_t most = 10;
  auto const lines = std::count(findings.begin(), findings.end(), '\n');
  std::size_t end = 0;
  for (std::ptrdiff_t i = 0; i < std::min(most, lines); ++i)
    end = findings.find('\n', end) + 1;
  report(lines > most ? findings.substr(0, end) : findings);
  if (lines > most)
    report("... and " + std::to_string(lines - most) + " lines more");
}

std::string importHint(Material<double> const& material,
                       std::string const& what) {
  std::string file = "data/ENDF-VII0/ZZZ_Symbol_000.endf, for each element";
  auto const Z = std::size_t(material.Z);
  if (Z > 0 && Z < ElementsCount && material.Name == Elements[Z])
    file = "data/ENDF-VII0/" + endfFileName(static_cast<unsigned int>(Z));
  return "No " + what + " of " + material.Name + " in " + "the database.\n" +
         "It comes with the ENDF-6 tapes of the element, which are read from " +
         file + ".\n\"photarium import-endf\" puts the published tapes there.";
}

}  // namespace Tool
