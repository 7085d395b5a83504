#include "photarium/grid/BremsTable.h"

#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "photarium/foundation/constants.h"
#include "photarium/foundation/number.h"
#include "photarium/foundation/parallel.h"
#include "photarium/grid/InverseRows.h"
#include "photarium/grid/TableHeader.h"
#include "photarium/spline/CSpline.h"
#include "photarium/spline/LSpline.h"

namespace {

// What all rows of a table share.
template <class T>
struct Table {
  Table(SpectConfig<T> const& spect, DistributionConfig<T> const& dist,
        Material<T> const& of)
      : material(of),
        step(spect.EBin),
        rows(TableRows(spect.kVp, spect.EBin)),
        fractions(static_cast<std::size_t>(dist.Steps)),
        builtin(spect.Pratt),
        cubic(dist.Cubic) {}

  T energy(std::uint64_t row) const { return T(row + 1) * step; }

  // Atoms per cubic centimetre, times square centimetres per millibarn.
  T density() const {
    return T(Constants::Na) / material.A * T(1e-27) * material.Density;
  }

  Material<T> const& material;
  T step;                 // [keV]
  std::uint64_t rows;     // electron energies
  std::size_t fractions;  // columns behind the cross section
  bool builtin;           // BremsSigma, else TabSigma
  bool cubic;             // interpolation of the inverse
};

// Reports finished rows in percent, on the thread that called for the table.
class Progress {
 public:
  Progress(std::ostream& out, std::uint64_t rows) : out_(out), rows_(rows) {}

  // To be called as often as one likes, by any thread of the team.
  void report() {
    if (omp_get_thread_num() != 0) return;
    auto const percent = static_cast<int>(done_.load() * 100 / rows_);
    if (percent <= last_) return;
    print(percent);
    last_ = percent;
  }

  void count() { ++done_; }

  void print(int percent) {
    out_ << "Progress: " << percent << '\n' << std::flush;
  }

 private:
  std::ostream& out_;
  std::uint64_t rows_;
  std::atomic<std::uint64_t> done_{0};
  int last_ = -1;
};

// The memory that one thread works in, enough for a few rows.
template <class T>
class RowWriter {
 public:
  static constexpr std::size_t Lanes = InverseRows<T>::Lanes;

  explicit RowWriter(Table<T> const& table)
      : table_(table),
        cumulative_(10 * table.fractions),
        fraction_(10 * table.fractions),
        inverse_(table.cubic ? 10 * table.fractions : 0) {}

  // Writes the rows from `first` on, one into each of `texts`: at most Lanes.
  void write(std::uint64_t first, std::span<std::string> texts,
             Progress& progress) {
    progress.report();
    if (table_.cubic)
      writeCubic(first, texts, progress);
    else
      writeLinear(first, texts, progress);
  }

 private:
  void writeCubic(std::uint64_t first, std::span<std::string> texts,
                  Progress& progress) {
    T totals[Lanes] = {};
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
      // Lanes that no row is left for repeat the last one.
      std::size_t const row = std::min(lane, texts.size() - 1);
      if (row == lane) totals[lane] = integrate(table_.energy(first + row));
      inverse_.set(lane, cumulative_, totals[row], fraction_);
    }
    inverse_.solve();
    for (std::size_t lane = 0; lane < texts.size(); ++lane) {
      std::size_t segment = 0;
      writeRow(texts[lane], totals[lane], progress,
               [&](T p) { return inverse_.value(lane, p, segment); });
    }
  }

  void writeLinear(std::uint64_t first, std::span<std::string> texts,
                   Progress& progress) {
    for (std::size_t row = 0; row < texts.size(); ++row) {
      T const total = integrate(table_.energy(first + row));
      LSpline<T, T> const inverse = linearInverse(total);
      writeRow(texts[row], total, progress, [&](T p) {
        return inverse.template at</*sequential=*/true, /*extrapolate=*/true>(
            p);
      });
    }
  }

  // Turns the cumulative sums into probabilities.
  LSpline<T, T> linearInverse(T total) {
    std::size_t const n = forEachAscending<T>(
        cumulative_, total, [&](std::size_t to, T p, std::size_t from) {
          cumulative_[to] = p;
          fraction_[to] = fraction_[from];
        });
    return LSpline<T, T>(std::span<T const>(cumulative_.data(), n),
                         std::span<T const>(fraction_.data(), n));
  }

  // The cumulative cross section for photons of the fractions of `E` [keV].
  T integrate(T E) {
    Material<T> const& material = table_.material;
    T const squared = beta2(E);
    T const velocity = std::sqrt(squared);
    if (table_.builtin) {
      CSpline<T, T> spectrum;
      if (!material.BremsSigma.empty())
        spectrum = material.BremsSigma(velocity, true, true);
      return integrate(E, spectrum,
                       material.Z * material.Z * table_.density() / squared);
    }
    LSpline<T, T> spectrum;
    if (!material.TabSigma.empty())
      spectrum = material.TabSigma(velocity, true, true);
    return integrate(E, spectrum, table_.density() / velocity);
  }

  // Rectangles with the value at the left end of each step; a spectrum that
  // dips below zero counts as zero.
  template <class Spectrum>
  T integrate(T E, Spectrum const& spectrum, T scale) {
    std::size_t const points = cumulative_.size();
    T const low = std::min(T(1), std::min(table_.step, E / 100));
    T const width = (E - low) / T(points - 1);
    T sum = 0;
    for (std::size_t k = 0; k < points; ++k) {
      T const energy = T(k) * width + low;
      T const fraction = energy / E;
      T const y =
          spectrum.template at<true, true>(fraction) * scale / energy * width;
      if (y > 0) sum += y;
      cumulative_[k] = sum;
      fraction_[k] = fraction;
    }
    return sum;
  }

  template <class Inverse>
  void writeRow(std::string& text, T total, Progress& progress,
                Inverse inverse) const {
    progress.report();
    text.clear();
    appendScientific(text, total);
    for (std::size_t j = 0; j < table_.fractions; ++j) {
      text += '\t';
      appendScientific(text, inverse(T(j) / T(table_.fractions - 1)));
    }
    text += '\n';
    progress.count();
  }

  Table<T> const& table_;
  std::vector<T> cumulative_;
  std::vector<T> fraction_;
  InverseRows<T> inverse_;
};

// A team of threads that computes the rows of a table, a block at a time.
template <class T>
class Team {
 public:
  Team(Table<T> const& table, std::ostream& progress)
      : table_(table),
        progress_(progress, table.rows),
        writers_(static_cast<std::size_t>(omp_get_max_threads())),
        texts_(writers_.size() * 8 * Lanes) {}

  void write(std::ostream& out) {
    for (std::uint64_t first = 0; first < table_.rows; first += texts_.size()) {
      auto const count = static_cast<std::size_t>(
          std::min<std::uint64_t>(texts_.size(), table_.rows - first));
      compute(first, count);
      for (std::size_t i = 0; i < count; ++i)
        out.write(texts_[i].data(),
                  static_cast<std::streamsize>(texts_[i].size()));
    }
    progress_.print(100);
  }

 private:
  static constexpr std::size_t Lanes = RowWriter<T>::Lanes;

  void compute(std::uint64_t first, std::size_t count) {
    std::span<std::string> const texts(texts_.data(), count);
    forEachIndex((count + Lanes - 1) / Lanes, [&](std::size_t i) {
      auto const begin = i * Lanes;
      writerOfThread().write(
          first + begin, texts.subspan(begin, std::min(Lanes, count - begin)),
          progress_);
    });
  }

  RowWriter<T>& writerOfThread() {
    auto& writer = writers_[static_cast<std::size_t>(omp_get_thread_num())];
    if (!writer) writer = std::make_unique<RowWriter<T>>(table_);
    return *writer;
  }

  Table<T> const& table_;
  Progress progress_;
  // One for each thread that has had something to do.
  std::vector<std::unique_ptr<RowWriter<T>>> writers_;
  std::vector<std::string> texts_;  // rows that wait for those ahead of them
};

}  // namespace

template <class T>
void BremsTable(std::ostream& out, SpectConfig<T> const& spect,
                DistributionConfig<T> const& dist,
                Material<T> const& material) {
  if (spect.EBin >= spect.kVp)
    throw std::runtime_error("Unreasonable value for maximum kVp.\n");
  if (dist.Steps <= 1)
    throw std::runtime_error("Unreasonable value for number of steps.\n");
  LimitTableSteps(dist.Steps);
  Table<T> const table(spect, dist, material);
  Team<T> team(table, spect.IPC);
  TableHeader<T> header;
  header.Name = material.Name;
  header.Kind = "Brems";
  header.Columns = dist.Steps + 1;
  header.Rows = table.rows;
  header.First = header.Step = spect.EBin;
  header.Last = T(table.rows) * spect.EBin;
  header.Density = material.Density;
  out << header.text();
  team.write(out);
}

template PHOTARIUM_EXPORT void BremsTable(std::ostream&,
                                          SpectConfig<double> const&,
                                          DistributionConfig<double> const&,
                                          Material<double> const&);
