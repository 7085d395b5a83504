#pragma once

#include <array>
#include <istream>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "photarium/foundation/enumerations.h"
#include "photarium/foundation/export.h"
#include "photarium/material/AttenuationCoeff.h"
#include "photarium/material/Edge.h"
#include "photarium/material/EnergyLossConstants.h"
#include "photarium/material/SubshellID.h"
#include "photarium/spline/BiCSpline.h"
#include "photarium/spline/BiLSpline.h"
#include "photarium/spline/records.h"

template <class T>
class MaterialConfig;
template <class T>
class SpectConfig;

/// All that is known of one substance, an element or a composite.
///
/// A material is filled from a database, completed from the correction file and
/// the built-in tables, and then read directly: its data are public.
///
///     PlotConfig<double> config;
///     config.config("--material CuZn --datafile data/ElamDB12.txt", "");
///     Material<double> const brass(config);
///     brass.Absorption(30., /*extrapolate=*/false);  // [cm^2/g] at 30 keV
///
/// A material text is the symbol or the number of an element, or a composite:
/// a formula such as "CdTe" or "Fe0.7Cr0.2Ni0.1", or several with weights by
/// mass between them, such as "SiO2 0.6 Al2O3 0.4". Numbers inside a formula
/// count atoms, unless one of them has a "." or ",": then all are mass parts.
///
/// Threads may build and load materials at the same time. One object is not to
/// be used while it is being filled; once it stands, many threads may read it.
template <class T>
class Material {
 public:
  std::string Name;  // symbol, or the text of a composite
  T Z;               // atomic number; mean by mass of a composite; 0: unknown
  T A;               // [g/mol], atomic weight; mean by mass of a composite
  T Density;         // [g/cm^3]; 0 or less: to be looked up
  /// Stopping constants of the elements to their weights by mass.
  std::map<EnergyLossConstants<T>, T> EnergyLoss;
  /// Absorption edges in the order of the database; those of a composite stand
  /// one element after the other, as they are in the pure element.
  std::vector<Edge<T>> Edges;

  // Cross sections for photons [cm^2/g] of energy [keV].
  AttenuationCoeff<T> Absorption;  // photoelectric
  AttenuationCoeff<T> Incoherent;
  AttenuationCoeff<T> Coherent;
  AttenuationCoeff<T> Pair;  // pair production

  // Bremsstrahlung over beta of the electron and the photon energy as a
  // fraction of the electron's; [mb], scaled.
  BiCSpline<T, T> BremsSigma;  // built-in cross section, see readSigma()
  BiLSpline<T, T> TabSigma;    // cross section of the database
  /// Built-in coefficients of the angular shape, see readShape().
  std::array<BiCSpline<T, T>, 6> Shape;
  /// Elastic scattering of electrons: cumulative distribution over log10 of the
  /// energy [keV] and the cosine of the angle.
  BiLSpline<T, T> ElasticAngle;

  // Of the element's atom, without unit.
  AttenuationCoeff<T> FormFactor;       // coherent scattering
  AttenuationCoeff<T> ScatterFunction;  // incoherent scattering
  AttenuationCoeff<T> AnomalousImag;    // over energy [keV]
  AttenuationCoeff<T> AnomalousReal;    // over energy [keV]

  // Cross sections for electrons and by level [cm^2/g] over energy [keV].
  AttenuationCoeff<T> ElectronElastic;  // large-angle elastic scattering
  std::map<SubshellID, AttenuationCoeff<T>> ElectronIonization;
  std::map<SubshellID, AttenuationCoeff<T>> PhotoIonization;

  /// An element's part of the whole, as update() found it.
  struct Share {
    T Mass;  // weight by mass
    T A;     // [g/mol], atomic weight
  };
  std::map<std::string, Share> Shares;  // by symbol

  // The database text that was read last, shared by all objects. The three
  // change together under a lock of the library's own; other threads may
  // replace them at any time.
  static std::string CacheName;  // path of the text in cachedDB
  static std::string cachedDB;   // the text, normalised
  static DBType CacheType;       // its format

  /// A material by number; then search().
  Material(T z = 0, T a = 0, T density = 0);

  /// A material by name or number; then search().
  Material(std::string name, T z, T a, T density);

  /// Loads what `config` asks for, see update().
  explicit Material(MaterialConfig<T>& config);

  /// Makes name and number agree and fills what is missing from the built-in
  /// tables: a `Name` that is a number becomes the symbol, a symbol gives `Z`;
  /// `Density` and `A` of 0 or less and an empty `EnergyLoss` are looked up.
  void search();

  /// Loads everything that `config` asks for: `config.Material` from the
  /// database, else as a composite of elements that are; stopping constants
  /// from the correction file; jump ratios of the edges from the curve.
  ///
  /// Writes back to `config` the name, the density, the type of the database
  /// and, if none was named, its file, or the files of the elements joined by
  /// ";". They are those that this very call read, whatever other threads load.
  ///
  /// An element replaces the curves that its database holds and appends its
  /// edges; a composite adds to what the object holds. So fill a fresh object.
  ///
  /// Throws std::invalid_argument "Empty material given!"; std::runtime_error
  /// "Error loading material data for ", the material, ":\n" and the cause; at
  /// the end a warning with all findings, after which the data are there.
  /// std::bad_alloc passes as it is: memory that ends never leads to other
  /// data.
  void update(MaterialConfig<T>& config);

  /// The same, and the bremsstrahlung data that `config` asks for: built-in
  /// cross sections if `Pratt` is set, or if the database has none, which sets
  /// it; the angular shape if `ShapeFct` is set.
  void update(SpectConfig<T>& config);

  /// Fills this element from the database `db` below the directory `dir`: a
  /// file, plain or packed, also one that stands there packed with the extra
  /// extension ".phc", or a ";"-separated list of files of one format. The
  /// format is recognised from the contents. The text stays in the cache, so
  /// that the next element of the same `db` needs no disk.
  ///
  /// An empty `db` searches the default files: by `type` those of one format,
  /// or all of them for `Unknown`.
  ///
  /// Throws std::runtime_error: the cause, " while reading ", `db` and, unless
  /// `dir` is empty, " from ", `dir`; what is filled by then stays.
  /// std::bad_alloc passes as it is.
  void readDB(std::string const& db, std::string const& dir, DBType type);

  /// Reads all elements of one ElamDB file, plain or packed, past the cache.
  /// Throws std::runtime_error "Could not open file", "Unknown file format" or
  /// what readElam() throws.
  static void readDB(std::map<std::string, Material>& elements,
                     std::string const& file);

  /// Fills this element from ElamDB text: the first whose symbol is `Name`.
  /// Sets `Z`, `A`, `Density`, appends to `Edges` and assigns `Absorption`,
  /// `Incoherent`, `Coherent` and `Pair`, which is zero up to 2.2 electron
  /// masses as the format has no such data.
  ///
  /// Sets all bits of the stream's exception mask and takes the whole rest of
  /// the stream. Throws std::ios_base::failure "Unexpected end of text" or
  /// "Number expected" with what the standard library adds; std::runtime_error
  /// "Element ", `Name`, " not found", "Unexpected keyword ", the word,
  /// " parsing ElamDB", or "Edge data for non-integer Z not accepted."; a
  /// warning for an unknown level or a section without points. What was set by
  /// then stays set.
  void readElam(std::istream& in);

  /// Reads every element of an ElamDB text into `elements`, by symbol. The end
  /// of the text stands for its "End"; a text that ends inside an element and a
  /// word in place of a number are an unknown, empty keyword.
  static void readElam(std::map<std::string, Material>& elements,
                       std::istream& in);

  /// Fills this element, found by number or symbol, from ENDF-6 text: photo-
  /// atomic, atomic relaxation and electro-atomic data. Lines are 80 columns
  /// wide and numbered; numbers have no exponent letter. Control columns that a
  /// line of 66 to 79 columns lacks are read as 0.
  ///
  /// Throws std::runtime_error "Element ", `Name`, " not found" and for data of
  /// a layout or a size that it cannot use, std::out_of_range "invalid string
  /// position" for a line shorter than its control columns. Curves are assigned
  /// only if the whole text was read.
  void readENDF(std::istream& in);

  /// Fills this element, found by `Z`, from a photo-atomic library in the text
  /// form of ACE. Throws std::runtime_error "Element ", `Name`, " not found"
  /// and "Unexpected fluorescence data parsing MCNP".
  void readMCNP(std::istream& in);

  /// Replaces `EnergyLoss` by the first record of the correction file whose
  /// name is `Name`, with weight 1; without one it stays. `J` [keV] is the mean
  /// excitation energy for what the record leaves open. Throws
  /// std::runtime_error "Could not open file" or "Error parsing data for ",
  /// `Name`; then " while reading " and the file.
  void readCorr(std::string const& file, T J);

  /// Reads all records of the correction file into `elements`, by name. Faulty
  /// records are stored too and end in a warning once the file is read.
  static void readCorr(std::map<std::string, Material>& elements,
                       std::string const& file);

  /// Fills `BremsSigma` from the built-in table, interpolated over Z if it has
  /// no row for this `Z`: then a warning says so, with the data in place.
  void readSigma();

  /// Fills `Shape` in the same way.
  void readShape();

  /// Erases edges below `minEnergy` [keV] and lines below it, lines without
  /// intensity and, unless `keepNonRadiative`, electrons; then edges without
  /// lines, and what lines say of levels that are gone.
  void FilterCharacteristic(T minEnergy, bool keepNonRadiative);

  /// The levels that can be ionized at each key [keV] of `energies`, by photons
  /// or by electrons, with the cross section [1/cm] of each. Photons without
  /// data by level give the whole absorption to the highest edge below. The
  /// pointers are to `Edges` of this object. Throws std::runtime_error "Empty
  /// input spectrum!".
  void IonizationProbabilities(
      std::map<T const, T> const& energies,
      std::map<T const, std::vector<std::pair<Edge<T> const*, T>>>& result,
      bool photons) const;

 protected:
  /// A tabulated stretch: points, interpolation law, cubic spline or linear.
  using Stretch = typename AttenuationCoeff<T>::MapStretch;
  using Fields = triple<std::pair<T, T>, std::pair<T, T>, std::pair<T, T>>;

  /// Normalises a database, packed or plain: lines without carriage returns at
  /// their ends, without the head of an ENDF tape and what follows its end.
  /// Writes the text to `out` and returns the format that it recognised.
  static DBType readDB(std::istream& in, std::ostream& out);

  /// Appends a curve that is zero from 0 to `threshold` and ends there.
  static void initDataVec(std::vector<Stretch>& data, T const& threshold);

  /// initDataVec() up to 2.2 electron masses, above which pairs are produced.
  static void initPairData(std::vector<Stretch>& data);

  /// The six fields of 11 columns of an ENDF line. Throws std::runtime_error
  /// "Error parsing " and the field that is no number.
  static Fields parseENDFline(std::string const& line);

  /// Inserts the three pairs of `line` while `count`, which goes up with each,
  /// is below `limit`.
  static void insertTriple(std::multimap<T, T>& points, Fields const& line,
                           unsigned int& count, unsigned int limit);

  /// Appends one stretch for each of the `ranges`, pairs of the number of its
  /// last point and the law. Neighbours share the point between them.
  static void splitRanges(
      std::vector<std::pair<unsigned int,
                            typename AttenuationCoeff<T>::Interpolation>> const&
          ranges,
      std::multimap<T, T> const& points, std::vector<Stretch>& data,
      bool third);

 private:
  // The text that a load read last, under any number of threads.
  struct Source {
    std::string name;
    DBType type = Unknown;
  };
  class Composite;   // loads and sums the elements of a composite
  class ElamReader;  // one element of an ElamDB text

  // Normalises a text in place and recognises its format.
  static DBType normalise(std::string& text);
  static DBType recognise(std::string_view line);

  // The readers on contiguous text; the stream forms call them.
  void parseElam(std::string_view text);
  static void parseElam(std::map<std::string, Material>& elements,
                        std::string_view text);
  void parseENDF(std::string_view text);
  void parseMCNP(std::string_view text);
  void parse(std::string_view text, DBType type);

  // What readDB() does; `source` becomes what this call read.
  void load(std::string const& db, std::string const& dir, DBType type,
            Source& source);
  void loadDefault(std::string const& dir, DBType type, Source& source);
  void loadFile(std::string const& db, std::string const& dir, Source& source);
  static std::string sourceText(std::string const& db, std::string const& dir,
                                Source& source);
  static DBType readList(std::string const& db, std::string const& dir,
                         std::string& text);
  static void keep(std::string& text, Source const& source);

  // The steps of update().
  void fill(MaterialConfig<T>& config, std::string& findings);
  void loadMaterial(MaterialConfig<T>& config, std::string& findings,
                    Source& source);
  void loadComposite(MaterialConfig<T>& config, std::string& findings,
                     Source& source);
  void setDensity(MaterialConfig<T>& config);
  void correct(MaterialConfig<T> const& config, std::string& findings);
  void setJumpRatios(std::string& findings);
};

extern template class PHOTARIUM_EXPORT Material<double>;
