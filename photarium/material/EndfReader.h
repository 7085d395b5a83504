#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "photarium/material/EndfRecord.h"
#include "photarium/material/Material.h"

/// Reads one element from ENDF-6 text, line by line: the photo-atomic, the
/// relaxation and the electro-atomic sublibrary. Not installed.
///
/// A dispatcher finds out to which section a line belongs; each kind of section
/// has a function of its own. Sections share the counters and the points: one
/// without its head goes on with those of the section before, as if it were
/// more of the same. No count of the file sizes any memory.
template <class T>
class EndfReader {
 public:
  explicit EndfReader(Material<T>& material) : material_(material) {}

  /// Reads `text` and fills the material; throws what Material::readENDF()
  /// does.
  void read(std::string_view text);

 private:
  using Curve = AttenuationCoeff<T>;
  using Law = typename Curve::Interpolation;
  using Data = std::vector<typename Curve::Stretch>;
  using Levels = std::map<SubshellID, Curve>;
  using Rows = std::map<T const, LSpline<T, T>>;

  enum Section { Skipped, Transitions, Tables, Spectra, Angles, Other };

  // Where the points of a table go to: to the data of one curve or to the curve
  // of a level; nowhere if both are null.
  struct Target {
    std::size_t slot = 0;  // its number among all targets
    Data* data = nullptr;
    Levels* levels = nullptr;
    bool cubic = false;
    bool isOverEnergy = true;
  };
  static constexpr std::size_t LevelCount = Q3;
  static constexpr std::size_t FirstCurve = 2 * LevelCount;
  static constexpr std::size_t TargetCount = FirstCurve + 10;

  // One curve of the material and what it is made of.
  struct Result {
    Curve Material<T>::*curve;
    Data data;
    bool isPerAtom;  // barn per atom, or without unit
  };
  // Their order in results_.
  enum ResultIndex {
    Absorption,
    Coherent,
    Incoherent,
    Pair,
    ElectronElastic,
    FormFactor,
    ScatterFunction,
    AnomalousImag,
    AnomalousReal
  };

  // Lines.
  bool nextLine();
  void readControl();
  void enterSection();
  bool isWanted() const;
  Section section() const;
  bool isHead() const { return mf_ == 1 && mt_ == 451; }
  bool isEnd() const;
  void readLine();
  std::string_view field(std::size_t offset) const;
  T number(std::size_t offset) const;
  std::uint32_t whole(std::size_t offset) const;
  bool readFields();

  // Sections.
  void readHead();
  void readTransitions();
  void endLevel();
  void addLevel();
  void addTransition();
  std::string const& levelText(int level);
  void readTable();
  Target target();
  Target levelTarget();
  Target crossSectionTarget();
  Target formFactorTarget();
  Target curveTarget(ResultIndex index, bool cubic, bool isOverEnergy);
  void storeTable();
  void readSpectra();
  bool isSpectrumLine();
  void beginSpectra();
  void readSpectrum();
  void beginSpectrum();
  void storeSpectrum();
  void readAngles();
  void readAngle();
  void beginAngles();
  void storeAngles();
  void readOther();

  // What sections share.
  bool readData();
  void readRanges();
  void beginRanges();
  void clearPoints();
  void addPoints(std::uint32_t& count, std::uint32_t limit);
  void sortPoints();
  void countStored(std::size_t count);

  void finish();
  BiLSpline<T, T> angleTable();

  Material<T>& material_;

  // The line at hand.
  std::string_view rest_;  // the text behind it
  std::string_view line_;
  std::string_view sectionText_;  // MAT, MF and MT
  std::string_view mat_;
  std::uint32_t z_ = 0;
  std::uint32_t mf_ = 0;
  std::uint32_t mt_ = 0;
  std::uint32_t ns_ = 0;
  Section section_ = Skipped;
  Target target_;
  EndfFields fields_{};

  // The material at hand.
  std::string targetMat_;
  std::uint32_t sublibrary_ = 0;
  T weight_ = 0;  // [u]
  T factor_ = 0;  // barn per atom to cm^2/g
  bool isFound_ = false;

  // The table at hand.
  std::vector<std::pair<unsigned int, Law>> ranges_;
  bool inRanges_ = false;
  std::uint32_t rangeCount_ = 0;
  std::uint32_t size_ = 0;
  std::uint32_t count_ = 0;
  typename Curve::Points points_;
  std::bitset<TargetCount> isStored_;  // where these are already
  std::size_t storable_ = 0;  // points and stretches, over the whole text

  // The level at hand: its block of lines is its energy and its transitions.
  std::uint32_t levelCount_ = 0;
  std::uint32_t blockSize_ = 0;
  std::uint32_t blockCount_ = 0;
  int level_ = 0;
  T yield_ = 0;
  std::array<std::string, LevelCount + 1> levelTexts_;

  // The record at hand of the spectra or the angular distribution.
  bool inYields_ = false;
  Law recordLaw_ = Law(0);  // none yet
  T energy_ = 0;            // [keV]
  std::uint32_t recordSize_ = 0;
  std::uint32_t recordCount_ = 0;

  // Results.
  std::vector<Result> results_;
  Data bremsstrahlung_;
  Curve bremsCurve_;           // [barn * 1e-6]
  std::size_t bremsSize_ = 0;  // stretches that it was built from
  Rows spectra_;
  Rows angles_;
  std::vector<T> cosines_;  // of all rows
};

/// Cuts `points` into one stretch for each of `ranges`, pairs of the number of
/// the last point and the law. Neighbours share the point between them.
template <class Ranges, class Points, class Data>
void cutRanges(Ranges const& ranges, Points const& points, Data& data,
               bool cubic) {
  auto first = points.begin();
  auto last = first;
  unsigned int count = 0;
  for (auto const& [end, law] : ranges) {
    for (; count < end && last != points.end(); ++count) ++last;
    data.push_back({Points(first, last), law, cubic});
    if (last != points.begin()) first = std::prev(last);
  }
}

/// A whole number that was read as a real one; the nearest that there is if it
/// does not fit.
template <class N>
N wholeNumber(double value) {
  using Limits = std::numeric_limits<N>;
  if (!(value > static_cast<double>(Limits::min()))) return Limits::min();
  if (value >= static_cast<double>(Limits::max())) return Limits::max();
  return static_cast<N>(value);
}
