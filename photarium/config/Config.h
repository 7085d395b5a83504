#pragma once

#include <cstddef>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "photarium/foundation/enumerations.h"
#include "photarium/foundation/export.h"
#include "photarium/streams/IPCStream.h"

/// Key and value of each entry of one section; keys are in lower case.
using OptionMap = std::map<std::string, std::string>;

/// The entries of each section, by its name as it stands in the file.
using SectionMap = std::map<std::string, OptionMap>;

/// What a settings class tells of one of its keys, for help and documents.
struct Setting {
  std::string key;      // as options and files name it, in lower case
  std::string label;    // as its line names it, empty where it has no line
  std::string value;    // present value as it is printed
  std::string unit;     // without brackets, empty where it has none
  std::string meaning;  // a few words
};

/// The keys that a command line sets, in order and in lower case, one for each
/// option. A switch such as "--no-lines" gives "lines". Arguments that are no
/// option are passed over.
PHOTARIUM_EXPORT std::vector<std::string> OptionKeys(
    std::vector<std::string> const& arguments);

/// Root of the settings classes: command line and config file become fields,
/// and fields become text again.
///
/// A program builds the class that fits it, hands it the command line, checks
/// and reads the fields:
///
///     GridConfig<double> settings;
///     settings.config(argc, argv, "grid");    // throws the help for --help
///     settings.check();
///     std::cout << settings.write("", true);  // "kVp: 100.0000" and so on
///
/// Options are "--name value", "--name=value", "--name:value", "name=value" and
/// the switches "--name" and "--no-name". Names are case insensitive. An option
/// that no class knows is passed over, see knownKeys(). The options "config",
/// "directory", "section" (repeatable), "sections" (a list) and "help" have a
/// meaning of their own.
///
/// A config file has sections in square brackets, comments behind "#" and
/// entries "name = value" with blanks around the "=". Weakest first, settings
/// come from the constructor, the section "General", the sections named by
/// "--section" or else the program's default section, and the command line. A
/// section includes others by its entries "sections" and "section"; they are
/// applied ahead of it. Within a section keys apply in the order of their
/// bytes. A file is looked for below the directory; where none is given, the
/// name's part ahead of its last slash becomes the directory, so that "/a.cfg"
/// is "a.cfg" with no directory: a file in the root needs "--directory=/".
///
/// Classes with fields of their own override parse(), write(), check() and
/// settings(); each names the order of its bases. An object belongs to one
/// thread.
template <class T>
class Config {
 public:
  /// Largest number of layers or detector elements that "count" accepts. A
  /// larger one is a finding and changes nothing. A file may have it applied
  /// MaxRepeats times, which takes seconds with this limit.
  static constexpr std::size_t MaxCount = 10000;

  /// Largest config file [bytes]. A larger one ends in std::runtime_error
  /// "Config file too large: " and its name.
  static constexpr std::size_t MaxFileSize = std::size_t{1} << 28;

  /// Most entries of a config file, its section headers included. More of them
  /// end in std::runtime_error "More than 1000000 entries while reading " and
  /// the file's name, so that memory stays bounded where each takes but a few
  /// bytes of the file.
  static constexpr std::size_t MaxEntries = 1000000;

  /// Sections that include each other may ask for a list that grows
  /// exponentially with the file. Each section is applied once for free; more
  /// repeated applications than this, over all sections, end in
  /// std::runtime_error "Sections repeated too often!\n".
  static constexpr std::size_t MaxRepeats = 100000;

  /// Largest total of names, keys and values in repeated applications [bytes],
  /// with the same end.
  static constexpr std::size_t MaxRepeatedText = std::size_t{1} << 28;

  Config();

  /// Copies all settings except `Sections`, which starts empty, and the
  /// connection of `IPC`.
  Config(Config const& other);
  Config& operator=(Config const&) = delete;
  virtual ~Config();

  /// The fields as text, each in a line "Label: value" behind `prefix`, with
  /// the unit as "\t# [unit]". With `chain` the lines of all bases stand ahead,
  /// those of Config first. Numbers do not depend on any locale.
  virtual std::string write(std::string const& prefix, bool chain) const = 0;

  /// Tests and corrects the settings. Throws std::invalid_argument if one
  /// cannot be used, `warning` if all can but something is to be told; the text
  /// holds all findings, and corrections have been made in either case.
  ///
  /// Here: `Time` must be positive.
  virtual void check();

  /// Applies the arguments behind the first, which names the program, on top of
  /// the config file. `section` names the program's default section, empty for
  /// none.
  ///
  /// A second call adds to the `Sections` of the first. The command line is one
  /// of them, "CmdLine": a call without options behind one with options, on the
  /// same object, ends in "Section CmdLine not found!\n".
  ///
  /// Always returns true. Throws std::runtime_error with the text for the user
  /// on wrong arguments, on "--help", and where the config file or a section
  /// cannot be read; throws `warning` for values that do not parse, which ends
  /// the section at hand with its other keys set.
  bool config(int argc, char** argv, std::string section);

  /// The same for a command line in one text. Blanks and line ends separate
  /// arguments, double or single quotes hold them together.
  bool config(std::string const& line, std::string section);

  /// The same for separate arguments.
  bool config(std::vector<std::string> const& arguments, std::string section);

  std::string Directory;              // of the config file and the data files
  std::string ConfigFile;             // name of the config file
  std::vector<std::string> Sections;  // to apply; once parsed in that order
  mutable IPCStream IPC;              // progress connection, closed by default
  std::string DataFile;               // database file
  DBType DataType = Unknown;          // format of the database file
  T Time = 1;                         // measurement time [s]
  bool Bin = false;                   // spectra hold contents, not densities
  bool Interpolation = true;          // convert spectra by interpolation

 protected:
  /// Applies one section, with `chain` to all bases too. Throws `warning` with
  /// a line for each value that did not parse, and the std::runtime_error of
  /// enumeration and list readers at once.
  virtual void parse(OptionMap const& options, bool chain) = 0;

  /// Flattens `Sections` and applies them.
  virtual void parse(SectionMap const& data);

  /// Replaces `sections` by the flattened list, in which each name follows the
  /// sections that it includes; a name among `ancestors` includes nothing, so
  /// that cycles end. Applies the list if `ancestors` is empty. Throws
  /// std::runtime_error where a section is missing, or where repeated sections
  /// exceed MaxRepeats or MaxRepeatedText.
  virtual void parse(SectionMap const& data, std::vector<std::string>& sections,
                     std::vector<std::string>& ancestors);

  /// Reads a number, or "inf" to "infinity" with an optional "-". Sets the fail
  /// state of `in` where there is neither.
  void parse(std::istream& in, T& value);

  /// Reads the config file into `data`. A file that is not named or cannot be
  /// opened is passed over if `optional`, else std::runtime_error tells. A file
  /// above MaxFileSize is refused.
  void read(SectionMap& data, bool optional);

  /// Reads the config file and applies `Sections` as they stand.
  void read(bool optional);

  /// The help text: an introduction and write("--", true).
  std::string usage() const;

  /// Name of the section that is applied whenever a file is read: "General".
  static std::string const DefaultSection;

 public:
  /// What this class tells of each of its keys, in the order of its lines; with
  /// `chain` ahead of them those of its bases.
  virtual std::vector<Setting> settings(bool chain) const;

  /// Every key that the object knows, its bases included, sorted.
  std::vector<std::string> knownKeys() const;
};

extern template class PHOTARIUM_EXPORT Config<double>;
